// The processes that run on this system.
#pragma once

#include <string>
#include <vector>

namespace kelvane::console {

struct RunningProcess {
  long id = 0;
  std::vector<std::string> arguments;  // the first is how it was called
  std::string currentFolder;           // empty where the system does not tell
};

// Those of which the system tells the arguments. One source file for each system.
std::vector<RunningProcess> runningProcesses();

// Whether a worker runs the job: a process with this log id and a shared folder that is the same
// one, however it is written, as its last two arguments; or one called "Kelvane" with the log id
// alone, in the shared folder.
bool workerRuns(const std::string& logId, const std::string& sharedFolder);

// The same, among these processes.
bool workerRuns(const std::string& logId, const std::string& sharedFolder,
                const std::vector<RunningProcess>& processes);

}  // namespace kelvane::console
