// A question to the user in a terminal.
#pragma once

#include <istream>
#include <string>

#include "console/display/Screen.h"

namespace kelvane::console {

void showQuestion(const std::string& question, const Screen& screen);

// Whether the next line is a yes; what is not a clear one is a no.
bool isAgreement(std::istream& answers);

}  // namespace kelvane::console
