// The guard: how a failure becomes a message and an exit code.
#pragma once

#include <cstddef>
#include <functional>
#include <ostream>

#include "console/display/DisplayText.h"

namespace kelvane::console {

// Runs it and returns its exit code. Where it raises, the cause goes to the messages on a line of
// its own, wrapped at words where it is wider than the columns (0: any width will do), and the exit
// code is the Failure's; kInternalError of what is no Failure.
int guarded(std::ostream& messages, Charset charset, const std::function<int()>& run,
            std::size_t columns = 0);

}  // namespace kelvane::console
