// Programs that a worker started and that outlived it.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "console/checks/Finding.h"
#include "console/job/Processes.h"

namespace kelvane::console {

// The update engines of this shared folder whose worker is not among the processes. The folder ends
// with "/".
Findings engineProcessFindings(const std::string& sharedFolder,
                               const std::vector<platform::RunningProcess>& processes);

// Workers for different jobs of the shared folder, or several for one, that run at the same time.
Findings workerProcessFindings(const std::string& sharedFolder, const std::set<std::string>& logIds,
                               const std::vector<platform::RunningProcess>& processes);

// The system's tools that remove or copy the bundle's application while its worker is not among
// the processes.
Findings installationProcessFindings(const std::string& bundle,
                                     const std::vector<platform::RunningProcess>& processes);

}  // namespace kelvane::console
