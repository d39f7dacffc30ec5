// The user's agreement to what cannot be taken back.
#pragma once

#include <string>

#include "console/commands/Submission.h"

namespace kelvane::console {

// Raises Failure unless the user agrees: kNotConfirmed, and kInterrupted where the question is
// interrupted. Where nobody can be asked, that is agreement.
void requireConfirmed(const std::string& question, const Surroundings& surroundings);

}  // namespace kelvane::console
