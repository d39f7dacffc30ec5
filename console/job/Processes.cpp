#include "console/job/Processes.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "console/job/JobStatus.h"

namespace kelvane::console {

namespace fs = std::filesystem;

using platform::RunningProcess;
using platform::Value;

namespace {

constexpr char kWorkerName[] = "Kelvane";

bool isWorkersName(const std::string& program) {
  return fs::path(program).filename() == kWorkerName;
}

// How a worker of the folder is called.
struct Call {
  std::string logId;
  bool byItsName = false;
};

// The worker may have any name, also stand behind an interpreter's, where it is called with both
// arguments; without a folder it works in its current one, and is known by its name alone.
std::optional<Call> callIn(const fs::path& folder, const RunningProcess& process) {
  const std::vector<std::string>& arguments = process.arguments;
  const std::size_t count = arguments.size();
  std::error_code unknown;
  if (count == 2 && isWorkersName(arguments[0]) &&
      fs::equivalent(process.currentFolder, folder, unknown)) {
    return Call{arguments[1], true};
  }
  if (count >= 3 &&
      fs::equivalent(fs::path(process.currentFolder) / arguments[count - 1], folder, unknown)) {
    return Call{arguments[count - 2], isWorkersName(arguments[count - 3])};
  }
  return std::nullopt;
}

// Whether the called worker has its job still before it, as far as the records tell.
bool isAtWork(const Call& call, const Value& records) {
  bool isKnown = false;
  for (const Value& record : records.elements()) {
    const JobStatus job = statusOf(record.isDictionary() ? record : Value());
    if (job.logId != call.logId) continue;
    if (!job.isFinished()) return true;
    isKnown = true;
  }
  return !isKnown && call.byItsName;
}

}  // namespace

bool workerRuns(const std::string& logId, const std::string& sharedFolder) {
  return workerRuns(logId, sharedFolder, platform::runningProcesses());
}

bool workerRuns(const std::string& logId, const std::string& sharedFolder,
                const std::vector<RunningProcess>& processes) {
  return std::any_of(processes.begin(), processes.end(), [&](const RunningProcess& process) {
    const std::optional<Call> call = callIn(sharedFolder, process);
    return call && call->logId == logId;
  });
}

std::string runningJob(const std::string& sharedFolder, const Value& records,
                       const std::vector<RunningProcess>& processes) {
  for (const RunningProcess& process : processes) {
    const std::optional<Call> call = callIn(sharedFolder, process);
    if (call && isAtWork(*call, records)) return call->logId;
  }
  return {};
}

std::size_t workersNamed(const std::string& logId, const std::string& sharedFolder,
                         const std::vector<RunningProcess>& processes) {
  const auto count =
      std::count_if(processes.begin(), processes.end(), [&](const RunningProcess& process) {
        const std::optional<Call> call = callIn(sharedFolder, process);
        return call && call->logId == logId && isWorkersName(process.arguments.front());
      });
  return static_cast<std::size_t>(count);
}

}  // namespace kelvane::console
