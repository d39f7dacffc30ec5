#include "console/job/LogStretch.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "console/job/ExitCode.h"
#include "console/job/LoggedRecords.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

using Entries = std::span<const LogEntry>;

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

bool isOfAnotherCommand(const LogEntry& entry, const std::string& command) {
  return std::any_of(std::begin(kMethods), std::end(kMethods), [&](const Method& method) {
    return entry.function == method.name && command != method.command;
  });
}

bool isStep(const LogEntry& entry) {
  return std::find(std::begin(kHousekeeping), std::end(kHousekeeping), entry.function) ==
             std::end(kHousekeeping) &&
         entry.function != kStartFunction && entry.level != "error" &&
         entry.message.find(kEndOfJob) == std::string::npos;
}

constexpr std::string_view kEngineSaid = "execute EngineRunner result = ";

// What the worker logs behind the end of the update engine or of one of the system's tools.
bool isBehindAProgram(const LogEntry& entry) {
  return entry.message.starts_with(kEngineSaid) || entry.function == "syncDownloadFiles" ||
         (entry.function == "updateSW" && entry.message.starts_with("result = "));
}

// Takes over what a worker's entries tell; an error that comes again is counted.
class StepReader {
 public:
  explicit StepReader(LogStretch& stretch) : stretch_(stretch) {}

  void take(const LogEntry& entry) {
    stretch_.hasBegun = stretch_.hasBegun || entry.message.starts_with(kRecordsWritten);
    if (entry.level == "error") {
      if (++counts_[entry.function + ": " + entry.message] == 1) errors_.push_back(&entry);
      stretch_.gaveUp = stretch_.gaveUp || entry.function != kStartFunction;
    } else if (isStep(entry)) {
      stretch_.lastStep = lineOf(entry);
      if (entry.message.starts_with(kEngineSaid)) {
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
      auto& lines = entry->function == kStartFunction ? stretch_.startErrors : stretch_.errors;
      lines.push_back(std::move(line));
    }
  }

 private:
  LogStretch& stretch_;
  std::vector<const LogEntry*> errors_;
  std::map<std::string, int> counts_;
};

// The worker takes the input entries one after the other: what was begun with another image is
// another job's.
void takeFlashes(Entries entries, const Value& record, LogStretch& stretch) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray()) return;
  stretch.flashes = flashStepsIn(entries);
  for (std::size_t i = 0; i < stretch.flashes.size(); ++i) {
    FlashSteps& flash = stretch.flashes[i];
    const Value input = i < inputs.count() ? inputs.at(i) : Value();
    const std::string image = platform::describe(memberOf(input, job::kFilePath));
    flash.wwn = stringOf(memberOf(input, job::kWwn));
    stretch.isMixed = stretch.isMixed || flash.image != image;
    if (flash.fault.empty()) continue;
    flash.firmwareAtFault = firmwareBeforeTheEnd(entries, stringOf(memberOf(record, job::kLogId)),
                                                 stringOf(memberOf(input, job::kWwn)));
  }
}

std::string lastErrorIn(Entries entries) {
  const auto error = std::find_if(entries.rbegin(), entries.rend(),
                                  [](const LogEntry& entry) { return entry.level == "error"; });
  return error == entries.rend() ? "" : lineOf(*error);
}

}  // namespace

std::span<const LogEntry> entriesOf(const std::vector<LogEntry>& entries, const Value& record) {
  return LoggedJobs(entries).find(record).value_or(LoggedJob()).entries;
}

LogStretch stretchOf(const LoggedJobs& jobs, const Value& record) {
  LogStretch stretch;
  const std::optional<LoggedJob> found = jobs.find(record);
  const LogEntry* begin = found ? found->entries.data() : nullptr;
  stretch.startsOfOthers = jobs.startsOf(stringOf(memberOf(record, job::kLogId)), begin);
  if (!found) {
    stretch.errorWithoutJob = lastErrorIn(jobs.lastWithoutJob());
    return stretch;
  }
  const std::string command = stringOf(memberOf(record, job::kJobId));
  stretch.isFound = true;
  stretch.hasEnded = found->hasEnded;
  if (found->hasEnded) {
    stretch.endedWith = stringOf(memberOf(recordAtTheEnd(found->entries.back()), job::kResult));
  }
  stretch.isMixed = found->isMixed;
  StepReader reader(stretch);
  for (const LogEntry& entry : found->entries) {
    if (!isOfAnotherCommand(entry, command)) reader.take(entry);
  }
  reader.finish();
  stretch.history = historyOf(found->entries, stringOf(memberOf(record, job::kLogId)));
  if (command == job::kUpdateFW) takeFlashes(found->entries, record, stretch);
  return stretch;
}

LogStretch stretchOf(const std::vector<LogEntry>& entries, const Value& record) {
  return stretchOf(LoggedJobs(entries), record);
}

LogStretch stretchIn(const std::string& sharedFolder, const Value& record) {
  return stretchIn(placesIn(sharedFolder), record);
}

LogStretch stretchIn(const Places& places, const Value& record) {
  return JobsLog(places).stretchOf(record);
}

JobsLog::JobsLog(const Places& places) {
  try {
    if (places.log.empty()) absence_ = "The log is not at hand.";
    if (!places.log.empty()) entries_ = parseLog(readLogAt(places.log));
  } catch (const Failure& failure) {
    absence_ = failure.what();
  }
  jobs_.emplace(entries_);
}

LogStretch JobsLog::stretchOf(const Value& record) const {
  LogStretch stretch = console::stretchOf(*jobs_, record);
  stretch.absence = absence_;
  return stretch;
}

}  // namespace kelvane::console
