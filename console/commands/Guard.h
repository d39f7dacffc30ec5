// The guard: how a failure becomes a message and an exit code.
#pragma once

#include <functional>
#include <ostream>

#include "console/display/DisplayText.h"

namespace kelvane::console {

// Runs it and returns its exit code. Where it raises, the cause goes to the messages on a line of
// its own, and the exit code is the Failure's; kInternalError of what is no Failure.
int guarded(std::ostream& messages, Charset charset, const std::function<int()>& run);

}  // namespace kelvane::console
