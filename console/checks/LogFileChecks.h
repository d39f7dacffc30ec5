// The log file: whether the worker can write it.
#pragma once

#include <string>

#include "console/checks/Finding.h"

namespace kelvane::console {

// Of the log at this path, as the worker would be given it.
Findings logFileFindings(const std::string& path);

}  // namespace kelvane::console
