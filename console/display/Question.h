// A question to the user in a terminal.
#pragma once

#include <string>

#include "console/display/Screen.h"

namespace kelvane::console {

// Whether the user agrees; what is not a clear yes is a no. Where nobody can be asked, nothing is
// shown, and that is agreement.
bool confirmed(const std::string& question, const Screen& screen);

}  // namespace kelvane::console
