#include "console/explain/LogStretch.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

#include "contract/JobFile.h"

namespace kelvane::console {
namespace {

using Run = std::span<const LogEntry>;

constexpr char kLookedAt[] = "logId = ";
constexpr char kState[] = ", stateId = ";

// What writes the job file, and what ends an operation, tells of no step.
constexpr const char* kHousekeeping[] = {"run",
                                         "updateJSONFile",
                                         "writeJSONFile",
                                         "readJSONFileDict",
                                         "initUpgradeFWStatus",
                                         "updateFWUpdateStatus"};
constexpr char kEnd[] = " end, retDict = ";

bool isRun(const LogEntry& entry) { return entry.function == "run"; }

// Whether a worker begins with this entry. The settings come before the job file; an error of the
// job runner's own follows its other lines, unless it is the first of another worker.
bool isStart(const LogEntry& entry, const LogEntry* before) {
  if (entry.function == "init") return true;
  if (!isRun(entry)) return false;
  if (entry.message.rfind("currentJobArray = ", 0) == 0) {
    return before == nullptr || before->function != "init";
  }
  if (entry.level != "error") return entry.message.rfind(kLookedAt, 0) != 0;
  return before == nullptr || !isRun(*before);
}

std::vector<Run> runsOf(const std::vector<LogEntry>& entries) {
  const Run all(entries);
  std::vector<Run> runs;
  std::size_t start = 0;
  for (std::size_t i = 1; i <= all.size(); ++i) {
    if (i < all.size() && !isStart(all[i], &all[i - 1])) continue;
    runs.push_back(all.subspan(start, i - start));
    start = i;
  }
  return runs;
}

// The job that a worker takes is the last one that it looks at, and waits.
bool hasTaken(Run run, const std::string& logId) {
  const auto last = std::find_if(run.rbegin(), run.rend(), [](const LogEntry& entry) {
    return isRun(entry) && entry.message.rfind(kLookedAt, 0) == 0;
  });
  if (last == run.rend()) return false;
  const std::string& text = last->message;
  const std::string waiting = std::string(kState) + job::kWait + ". ";
  const std::size_t state = text.rfind(kState);
  return text.rfind(kLookedAt + logId + ", inputParmsDict = ", 0) == 0 &&
         state != std::string::npos && text.compare(state, waiting.size(), waiting) == 0;
}

bool isStep(const LogEntry& entry) {
  return std::find(std::begin(kHousekeeping), std::end(kHousekeeping), entry.function) ==
             std::end(kHousekeeping) &&
         entry.message.find(kEnd) == std::string::npos;
}

std::string lineOf(const LogEntry& entry) {
  std::string first = entry.message.substr(0, entry.message.find('\n'));
  first.erase(0, std::min(first.find_first_not_of(' '), first.size()));
  return entry.time + " " + entry.function + ": " + first;
}

}  // namespace

LogStretch stretchOf(const std::vector<LogEntry>& entries, const std::string& logId) {
  LogStretch stretch;
  const std::vector<Run> runs = runsOf(entries);
  const auto found =
      std::find_if(runs.rbegin(), runs.rend(), [&logId](Run run) { return hasTaken(run, logId); });
  if (found == runs.rend()) return stretch;
  stretch.isFound = true;
  for (const LogEntry& entry : *found) {
    if (entry.level == "error") stretch.errors.push_back(lineOf(entry));
    if (isStep(entry)) stretch.lastStep = lineOf(entry);
  }
  return stretch;
}

}  // namespace kelvane::console
