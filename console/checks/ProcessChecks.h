// Programs that a worker started and that outlived it.
#pragma once

#include <string>
#include <vector>

#include "console/checks/Finding.h"
#include "console/job/Processes.h"

namespace kelvane::console {

// The update engines of this shared folder whose worker is not among the processes. The folder ends
// with "/".
Findings engineProcessFindings(const std::string& sharedFolder,
                               const std::vector<platform::RunningProcess>& processes);

// The system's tools that remove or copy the bundle's application while its worker is not among
// the processes.
Findings installationProcessFindings(const std::string& bundle,
                                     const std::vector<platform::RunningProcess>& processes);

}  // namespace kelvane::console
