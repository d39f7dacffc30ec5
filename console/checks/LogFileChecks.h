// The log file: whether the worker can write it.
#pragma once

#include <string>

#include "console/checks/Finding.h"

namespace kelvane::console {

// Of the log at this path, as the worker would be given it.
Findings logFileFindings(const std::string& path);

// Of a copy of the log: whether it is there, and its size.
Findings logCopyFindings(const std::string& path);

}  // namespace kelvane::console
