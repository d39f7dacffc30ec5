// The shared folder with all that the worker finds in it.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "console/checks/RecordChecks.h"

namespace kelvane::console {

// The folder is as the worker is given it, with a "/" at its end.
Findings sharedFolderFindings(const std::string& sharedFolder, const WorkerRuns& workerRuns);

}  // namespace kelvane::console
