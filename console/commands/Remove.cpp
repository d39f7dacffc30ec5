#include "console/commands/Remove.h"

#include <algorithm>
#include <optional>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/Turn.h"
#include "console/display/JsonText.h"
#include "console/job/ExitCode.h"
#include "console/job/JobStatus.h"
#include "console/job/StandardError.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

using LogIds = std::vector<std::string>;

constexpr char kKeepOption[] = "--keep";

// As the user names it: of a log id that is no string, and keeps the worker from writing, the
// number.
std::string logIdOf(const Value& record) {
  if (!record.isDictionary()) return {};
  const Value& logId = record.get(job::kLogId);
  if (logId.isNumber()) return logId.digits();
  return logId.isString() ? logId.string() : "";
}

bool isIn(const LogIds& logIds, const std::string& logId) {
  return std::find(logIds.begin(), logIds.end(), logId) != logIds.end();
}

bool isFinished(const Value& record) {
  return record.isDictionary() && statusOf(record).isFinished();
}

void requireThere(const LogIds& logIds, const Value& records, const std::string& path) {
  for (const std::string& logId : logIds) {
    const auto& all = records.elements();
    if (std::none_of(all.begin(), all.end(),
                     [&](const Value& record) { return logIdOf(record) == logId; })) {
      std::string message = "no job " + logId;
      throw Failure(kNotFound, message.append(" in ").append(path).append("; nothing was removed"));
    }
  }
}

// Which records stay.
class Choice {
 public:
  explicit Choice(const RemoveOptions& options) : named_(options.logIds), keep_(0) {
    if (options.finished == !named_.empty()) {
      throw Failure(kBadUsage, "either log ids or --finished is to be given");
    }
    for (const std::string& logId : named_) requireText(logId, "the log id");
    if (!options.keep.empty()) readKeep(options);
  }

  Value remaining(const Value& records) const {
    const std::vector<Value>& all = records.elements();
    const auto finished =
        static_cast<std::size_t>(std::count_if(all.begin(), all.end(), isFinished));
    std::size_t before = 0;  // the finished ones in front of the record
    Value kept = Value::array();
    for (const Value& record : all) {
      const bool isOld = isFinished(record) && before++ + keep_ < finished;
      if (named_.empty() ? !isOld : !isIn(named_, logIdOf(record))) kept.append(record);
    }
    return kept;
  }

  const LogIds& named() const { return named_; }

 private:
  void readKeep(const RemoveOptions& options) {
    if (!options.finished) throw Failure(kBadUsage, "--keep goes with --finished alone");
    keep_ = countIn(options.keep, kKeepOption);
  }

  LogIds named_;
  std::size_t keep_;
};

// The log ids of the records that are no longer there, each as often as it was there.
LogIds removedFrom(const Value& before, const Value& after) {
  LogIds removed;
  auto left = after.elements().begin();
  for (const Value& record : before.elements()) {
    if (left != after.elements().end() && *left == record) {
      ++left;
    } else {
      removed.push_back(logIdOf(record));
    }
  }
  return removed;
}

LogIds removeFrom(const JobFile& file, const Choice& choice) {
  LogIds removed;
  const auto without = [&](const Value& records) {
    if (removed.empty()) requireThere(choice.named(), records, file.path());
    Value remaining = choice.remaining(records);
    if (remaining.count() == records.count()) return Value();
    removed = removedFrom(records, remaining);
    return remaining;
  };
  file.change(without, [&](const Value& records) {
    return choice.remaining(records).count() == records.count();
  });
  return removed;
}

std::string removedText(const std::string& logId, std::ptrdiff_t records) {
  const std::string several = std::to_string(records) + " records";
  if (logId.empty()) return (records == 1 ? "a record" : several) + " without a log id";
  return "job " + logId + (records == 1 ? "" : " (" + several + ")");
}

void showRemoved(const LogIds& removed, const Screen& screen) {
  LogIds different;
  for (const std::string& logId : removed) {
    if (!isIn(different, logId)) different.push_back(logId);
  }
  if (screen.json) {
    Value all = Value::array();
    for (const std::string& logId : different) all.append(displayText(logId, Charset::utf8));
    screen.out << jsonLine(Value::dictionary({{"removed", all}})) << std::endl;
    return;
  }
  if (removed.empty()) screen.out << "nothing to remove" << std::endl;
  for (const std::string& logId : different) {
    const auto records = std::count(removed.begin(), removed.end(), logId);
    screen.out << "removed " << displayText(removedText(logId, records), screen.charset)
               << std::endl;
  }
}

constexpr char kFinishedFlag[] = "--finished";
constexpr char kJobs[] = "log_ids";

int runRemove(const Given& given, const Surroundings& surroundings) {
  return removeJobs({.sharedFolder = given.text(kSharedOption),
                     .logIds = given.texts(kJobs),
                     .finished = given.has(kFinishedFlag),
                     .keep = given.text(kKeepOption)},
                    surroundings);
}

}  // namespace

int removeJobs(const RemoveOptions& options, const Surroundings& surroundings) {
  const std::string sharedFolder = existingShared(options.sharedFolder);
  const Choice choice(options);
  const JobFile file(sharedFolder);
  if (!platform::exists(file.path())) {
    throw Failure(kNotFound, "there is no job file " + file.path());
  }
  requireChangeable(file);
  const TurnWish wish = {.sharedFolder = sharedFolder, .advice = "nothing was removed"};
  const JobFileLock lock = takeTurn(file, wish, surroundings);
  const LogIds removed = removeFrom(file, choice);
  for (const std::string& logId : removed) discardStandardError(sharedFolder, logId);
  showRemoved(removed, surroundings.screen);
  return kSuccess;
}

Command removeCommand() {
  return {.name = "remove",
          .description = "Take jobs out of the job file",
          .options = {sharedOption(),
                      jsonFlag(),
                      {.names = {kFinishedFlag},
                       .kind = ValueKind::none,
                       .description = "Remove all finished jobs"},
                      {.names = {kKeepOption},
                       .valueName = "N",
                       .description = "Of the finished jobs, let the last N stay"}},
          .arguments = {{.names = {kJobs},
                         .kind = ValueKind::logId,
                         .valueName = "LOG_ID",
                         .description = "A job",
                         .repeated = true}},
          .footer =
              "Not while a job is running. The other records stay as they are.\n"
              "Examples:\n"
              "  kelvane-console remove --shared ~/Shared 16 17\n"
              "  kelvane-console remove --shared ~/Shared --finished --keep 20",
          .run = runRemove};
}

}  // namespace kelvane::console
