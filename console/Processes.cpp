#include "console/Processes.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace kelvane::console {

namespace fs = std::filesystem;

namespace {

constexpr char kWorkerName[] = "Kelvane";

bool isWorkerOf(const RunningProcess& process, const std::string& logId, const fs::path& folder) {
  const std::vector<std::string>& arguments = process.arguments;
  if (arguments.size() < 3 || arguments[1] != logId) return false;
  if (fs::path(arguments[0]).filename() != kWorkerName) return false;
  std::error_code unknown;
  return fs::equivalent(fs::path(process.currentFolder) / arguments[2], folder, unknown);
}

}  // namespace

bool workerRuns(const std::string& logId, const std::string& sharedFolder) {
  const std::vector<RunningProcess> all = runningProcesses();
  return std::any_of(all.begin(), all.end(), [&](const RunningProcess& process) {
    return isWorkerOf(process, logId, sharedFolder);
  });
}

}  // namespace kelvane::console
