// What can be told of a copy from another system: of its files, and of nothing that they lead to.
#pragma once

#include "console/checks/Finding.h"
#include "console/job/Places.h"

namespace kelvane::console {

Findings copyFindings(const Places& places);

}  // namespace kelvane::console
