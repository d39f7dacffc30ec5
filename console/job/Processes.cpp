#include "console/job/Processes.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kelvane::console {

namespace fs = std::filesystem;

using platform::RunningProcess;

namespace {

constexpr char kWorkerName[] = "Kelvane";

// The worker may have any name, also stand behind an interpreter's, where it is called with both
// arguments; without a folder it works in its current one, and is known by its name alone.
bool isWorkerOf(const RunningProcess& process, const std::string& logId, const fs::path& folder) {
  const std::vector<std::string>& arguments = process.arguments;
  const std::size_t count = arguments.size();
  std::error_code unknown;
  if (count == 2 && arguments[1] == logId) {
    return fs::path(arguments[0]).filename() == kWorkerName &&
           fs::equivalent(process.currentFolder, folder, unknown);
  }
  return count >= 3 && arguments[count - 2] == logId &&
         fs::equivalent(fs::path(process.currentFolder) / arguments[count - 1], folder, unknown);
}

}  // namespace

bool workerRuns(const std::string& logId, const std::string& sharedFolder) {
  return workerRuns(logId, sharedFolder, platform::runningProcesses());
}

bool workerRuns(const std::string& logId, const std::string& sharedFolder,
                const std::vector<RunningProcess>& processes) {
  return std::any_of(processes.begin(), processes.end(), [&](const RunningProcess& process) {
    return isWorkerOf(process, logId, sharedFolder);
  });
}

std::size_t workersNamed(const std::string& logId, const std::string& sharedFolder,
                         const std::vector<RunningProcess>& processes) {
  const auto count =
      std::count_if(processes.begin(), processes.end(), [&](const RunningProcess& process) {
        return !process.arguments.empty() &&
               fs::path(process.arguments.front()).filename() == kWorkerName &&
               isWorkerOf(process, logId, sharedFolder);
      });
  return static_cast<std::size_t>(count);
}

}  // namespace kelvane::console
