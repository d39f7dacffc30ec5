// The bundle that holds the worker.
#pragma once

#include <string>

#include "console/checks/Finding.h"

namespace kelvane::console {

std::string workerIn(const std::string& bundle);

// Where the bundle stands, the worker in it, its settings and its framework.
Findings bundleFindings(const std::string& bundle);

}  // namespace kelvane::console
