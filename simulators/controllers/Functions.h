// The names of the framework's functions that return a status.
#pragma once

#include <string_view>

namespace kelvane::simulator {

bool hasStatus(std::string_view function);

// Closing calls still close when a fault gives their status: otherwise the fault of one controller
// would be another's.
bool isClosing(std::string_view function);

}  // namespace kelvane::simulator
