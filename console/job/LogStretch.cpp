#include "console/job/LogStretch.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "console/job/ExitCode.h"
#include "console/job/LoggedValue.h"
#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

using Run = std::span<const LogEntry>;

constexpr char kLookedAt[] = "logId = ";
constexpr char kInputs[] = ", inputParmsDict = ";
constexpr char kState[] = ", stateId = ";
constexpr std::string_view kJobFileRead = "currentJobArray = ";
constexpr std::string_view kEnd = " end, retDict = ";
constexpr char kStart[] = "init";

// What writes the job file, and what ends an operation, tells of no step.
constexpr const char* kHousekeeping[] = {"run",
                                         "updateJSONFile",
                                         "writeJSONFile",
                                         "readJSONFileDict",
                                         "initUpgradeFWStatus",
                                         "updateFWUpdateStatus"};

// Methods that one command alone uses.
struct Method {
  const char* name;
  const char* command;
};
constexpr Method kMethods[] = {
    {"updateFW", job::kUpdateFW},
    {"flashCPLD", job::kUpdateFW},
    {"getDevIdByWWN", job::kUpdateFW},
    {"initUpgradeFWStatus", job::kUpdateFW},
    {"updateFWUpdateStatus", job::kUpdateFW},
    {"updateSW", job::kUpdateSW},
    {"getOnlineUpdateData", job::kGetOnlineUpdateData},
    {"downloadOnlineUpdateFile", job::kDownloadOnlineUpdateFile},
};

bool isRun(const LogEntry& entry) { return entry.function == "run"; }

bool startsWith(const std::string& text, std::string_view start) {
  return text.rfind(start, 0) == 0;
}

// Whether a worker begins with this entry. The settings come before the job file; an error of the
// job runner's own follows its other lines, unless it is the first of another worker.
bool isStart(const LogEntry& entry, const LogEntry* before) {
  if (entry.function == kStart) return true;
  if (!isRun(entry)) return false;
  if (startsWith(entry.message, kJobFileRead)) {
    return before == nullptr || before->function != kStart;
  }
  if (entry.level != "error") return !startsWith(entry.message, kLookedAt);
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

// The log id of the job that the worker took, the last one that it looked at, if that was waiting.
std::optional<std::string> takenIn(Run run) {
  const auto last = std::find_if(run.rbegin(), run.rend(), [](const LogEntry& entry) {
    return isRun(entry) && startsWith(entry.message, kLookedAt);
  });
  if (last == run.rend()) return std::nullopt;
  const std::string& text = last->message;
  const std::string waiting = std::string(kState) + job::kWait + ". ";
  const std::size_t inputs = text.find(kInputs);
  const std::size_t state = text.rfind(kState);
  if (inputs == std::string::npos || state == std::string::npos || state < inputs ||
      text.compare(state, waiting.size(), waiting) != 0) {
    return std::nullopt;
  }
  const std::size_t start = std::string_view(kLookedAt).size();
  return text.substr(start, inputs - start);
}

Value get(const Value& value, const char* key) {
  return value.isDictionary() ? value.get(key) : Value();
}

// Whether the record, as the worker read it, asks for the same as this one. What cannot be read out
// of the log is taken for it.
bool asksForTheSame(Run run, const std::string& logId, const Value& record) {
  const auto read = std::find_if(run.begin(), run.end(), [](const LogEntry& entry) {
    return isRun(entry) && startsWith(entry.message, kJobFileRead);
  });
  if (read == run.end()) return true;
  const Value records = parseLogged(std::string_view(read->message).substr(kJobFileRead.size()));
  if (!records.isArray()) return true;
  bool isFound = false;
  for (const Value& found : records.elements()) {
    if (get(found, job::kLogId) != Value(logId)) continue;
    isFound = true;
    if (get(found, job::kJobId) == asLogged(get(record, job::kJobId)) &&
        get(found, job::kInputParameters) == asLogged(get(record, job::kInputParameters))) {
      return true;
    }
  }
  return !isFound;
}

// The log id of the job whose last line this is.
std::optional<std::string> endedBy(const LogEntry& entry) {
  const std::size_t end = entry.message.find(kEnd);
  if (end == std::string::npos) return std::nullopt;
  const Value record = parseLogged(std::string_view(entry.message).substr(end + kEnd.size()));
  const Value logId = get(record, job::kLogId);
  return logId.isString() ? std::optional(logId.string()) : std::nullopt;
}

// The entries from the worker's first one to the job's last line, where that is there.
struct Span {
  Run entries;
  bool hasEnded = false;
  bool isMixed = false;
};

Span spanOf(const std::vector<Run>& runs, std::vector<Run>::const_iterator taken, const Run all,
            const std::string& logId) {
  const auto begin = static_cast<std::size_t>(taken->data() - all.data());
  const std::size_t endOfRun = begin + taken->size();
  // A worker that goes on behind another's start; one that takes the log id again ends the search.
  std::size_t limit = all.size();
  for (auto later = std::next(taken); later != runs.end(); ++later) {
    if (takenIn(*later) != logId) continue;
    limit = static_cast<std::size_t>(later->data() - all.data());
    break;
  }
  for (std::size_t i = begin; i < limit; ++i) {
    if (endedBy(all[i]) != logId) continue;
    return {all.subspan(begin, i + 1 - begin), true, i >= endOfRun};
  }
  return {*taken, false, false};
}

// Whether a worker that began before this one ends behind its start.
bool isWithinAnother(const std::vector<Run>& runs, const Run& taken) {
  std::set<std::string> open;  // the jobs whose last lines are still to come
  for (const Run& run : runs) {
    if (const auto logId = takenIn(run)) {
      if (run.data() < taken.data()) {
        open.insert(*logId);
      } else {
        open.erase(*logId);
      }
    }
    for (const LogEntry& entry : run) {
      const std::optional<std::string> ended = endedBy(entry);
      if (!ended || open.erase(*ended) == 0) continue;
      if (&entry > taken.data()) return true;
    }
  }
  return false;
}

bool isOfAnotherCommand(const LogEntry& entry, const std::string& command) {
  return std::any_of(std::begin(kMethods), std::end(kMethods), [&](const Method& method) {
    return entry.function == method.name && command != method.command;
  });
}

bool isStep(const LogEntry& entry) {
  return std::find(std::begin(kHousekeeping), std::end(kHousekeeping), entry.function) ==
             std::end(kHousekeeping) &&
         entry.function != kStart && entry.level != "error" &&
         entry.message.find(kEnd) == std::string::npos;
}

constexpr std::string_view kEngineSaid = "execute EngineRunner result = ";

// What the worker logs behind the end of the update engine or of one of the system's tools.
bool isBehindAProgram(const LogEntry& entry) {
  return startsWith(entry.message, kEngineSaid) || entry.function == "syncDownloadFiles" ||
         (entry.function == "updateSW" && startsWith(entry.message, "result = "));
}

// Takes over what a worker's entries tell; an error that comes again is counted.
class Reader {
 public:
  explicit Reader(LogStretch& stretch) : stretch_(stretch) {}

  void take(const LogEntry& entry) {
    if (entry.level == "error") {
      if (++counts_[entry.function + ": " + entry.message] == 1) errors_.push_back(&entry);
      stretch_.gaveUp = stretch_.gaveUp || entry.function != kStart;
    } else if (isStep(entry)) {
      stretch_.lastStep = lineOf(entry);
      if (startsWith(entry.message, kEngineSaid)) {
        const std::string said = entry.message.substr(kEngineSaid.size());
        stretch_.engineSaid = said.substr(said.find_last_of('\n') + 1);
      }
      stretch_.gaveUp = false;
      stretch_.hasStarted = stretch_.hasStarted || isBehindAProgram(entry);
    }
  }

  void finish() {
    for (const LogEntry* entry : errors_) {
      std::string line = lineOf(*entry);
      const int count = counts_[entry->function + ": " + entry->message];
      if (count > 1) line.append(" (").append(std::to_string(count)).append(" times)");
      auto& lines = entry->function == kStart ? stretch_.startErrors : stretch_.errors;
      lines.push_back(std::move(line));
    }
  }

 private:
  LogStretch& stretch_;
  std::vector<const LogEntry*> errors_;
  std::map<std::string, int> counts_;
};

std::string textOf(const Value& value) { return value.isString() ? value.string() : ""; }

// The worker takes the input entries one after the other: what was begun with another image is
// another job's.
void takeFlashes(Run entries, const Value& record, LogStretch& stretch) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray()) return;
  stretch.flashes = flashStepsIn(entries);
  for (std::size_t i = 0; i < stretch.flashes.size(); ++i) {
    FlashSteps& flash = stretch.flashes[i];
    const Value input = i < inputs.count() ? inputs.at(i) : Value();
    const std::string image = platform::describe(get(input, job::kFilePath));
    stretch.isMixed = stretch.isMixed || flash.image != image;
    if (flash.fault.empty()) continue;
    flash.firmwareAtFault = firmwareBeforeTheEnd(entries, textOf(get(record, job::kLogId)),
                                                 textOf(get(input, job::kWwn)));
  }
}

// Nothing where no worker took the job.
std::optional<Span> spanOfJob(const std::vector<LogEntry>& entries, const Value& record) {
  const std::string logId = textOf(get(record, job::kLogId));
  const std::vector<Run> runs = runsOf(entries);
  const auto found = std::find_if(runs.rbegin(), runs.rend(), [&](Run run) {
    return takenIn(run) == logId && asksForTheSame(run, logId, record);
  });
  if (found == runs.rend()) return std::nullopt;
  const auto taken = std::prev(found.base());
  Span span = spanOf(runs, taken, entries, logId);
  span.isMixed = span.isMixed || isWithinAnother(runs, *taken);
  return span;
}

}  // namespace

std::span<const LogEntry> entriesOf(const std::vector<LogEntry>& entries, const Value& record) {
  const std::optional<Span> span = spanOfJob(entries, record);
  return span ? span->entries : Run();
}

LogStretch stretchOf(const std::vector<LogEntry>& entries, const Value& record) {
  LogStretch stretch;
  const std::string command = textOf(get(record, job::kJobId));
  const std::optional<Span> span = spanOfJob(entries, record);
  if (!span) return stretch;
  stretch.isFound = true;
  stretch.hasEnded = span->hasEnded;
  stretch.isMixed = span->isMixed;
  Reader reader(stretch);
  for (const LogEntry& entry : span->entries) {
    if (!isOfAnotherCommand(entry, command)) reader.take(entry);
  }
  reader.finish();
  if (command == job::kUpdateFW) takeFlashes(span->entries, record, stretch);
  return stretch;
}

LogStretch stretchIn(const std::string& sharedFolder, const Value& record) {
  try {
    return stretchOf(parseLog(readLog(sharedFolder)), record);
  } catch (const Failure& failure) {
    LogStretch none;
    none.absence = failure.what();
    return none;
  }
}

}  // namespace kelvane::console
