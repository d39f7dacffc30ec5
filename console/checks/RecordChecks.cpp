#include "console/checks/RecordChecks.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <map>
#include <string_view>

#include "console/application/Application.h"
#include "console/checks/ImageChecks.h"
#include "console/display/ShellQuoting.h"
#include "console/job/JobStatus.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kNoUpdates[] =
    "No job of the file can be updated. A firmware job that is started may be flashed all the "
    "same, "
    "and stays in state WAIT; other jobs are not begun.";

std::string inBrackets(std::size_t index) {
  return std::string("[").append(std::to_string(index)).append("]");
}

std::string valueText(const Value& value) {
  return platform::printJsonLine(value).value_or("a value that JSON has no form for");
}

// --- the parameters of each command

std::string stringFault(const Value& object, const std::string& name,
                        std::initializer_list<const char*> keys) {
  if (!object.isDictionary()) return name + " is no object";
  for (const char* key : keys) {
    if (!object.has(key)) return name + " has no \"" + key + "\"";
    if (!object.get(key).isString()) return name + " has a \"" + key + "\" that is no string";
  }
  return {};
}

std::string arrayFault(const Value& inputs) {
  if (!inputs.isArray()) return "input_parameters is no array";
  return inputs.count() == 0 ? "input_parameters is an empty array" : "";
}

std::string productFault(const Value& parameters, const std::string& name) {
  return stringFault(parameters, name, {job::kProductId, job::kVersion, job::kUrl, job::kFolder});
}

std::string queryFault(const Value& inputs) { return productFault(inputs, job::kInputParameters); }

std::string downloadFault(const Value& inputs) {
  const std::string fault = arrayFault(inputs);
  return fault.empty() ? productFault(inputs.at(0), job::kInputParameters + inBrackets(0)) : fault;
}

std::string installationFault(const Value& inputs) {
  return stringFault(inputs, job::kInputParameters, {job::kFilePath});
}

std::string entryFault(const Value& inputs, std::size_t index) {
  return stringFault(inputs.at(index), job::kInputParameters + inBrackets(index),
                     {job::kWwn, job::kFilePath});
}

std::string firmwareFault(const Value& inputs) {
  std::string fault = arrayFault(inputs);
  for (std::size_t i = 0; fault.empty() && i < inputs.count(); ++i) fault = entryFault(inputs, i);
  return fault;
}

// What the worker does at an entry that lacks something, once it has flashed those before it.
std::string endAtEntry(const Value& entry) {
  if (!entry.isDictionary()) {
    return "No progress is written, and at this entry the worker gives up: the job stays in state "
           "WAIT.";
  }
  if (!entry.has(job::kWwn)) return "At this entry the job ends with 1026 (0x0402).";
  if (!entry.get(job::kWwn).isString()) {
    return "No progress is written, and at this entry the job ends with 1026 (0x0402).";
  }
  if (!entry.has(job::kFilePath)) {
    return "At this entry the job ends as with an image that cannot be read.";
  }
  return "At this entry the worker gives up: the job stays in state RUN.";
}

// What a firmware job with a fault does all the same.
std::string firmwareMeaning(const Value& inputs) {
  if (!arrayFault(inputs).empty()) return "No controller is flashed.";
  std::size_t index = 0;
  while (index < inputs.count() && entryFault(inputs, index).empty()) ++index;
  if (index == inputs.count()) return {};
  return (index == 0 ? "" : "The controllers before it are flashed. ") +
         endAtEntry(inputs.at(index)) + " Later ones are not started.";
}

struct Command {
  const char* name;
  std::string (*inputFault)(const Value& inputs);
};

constexpr Command kCommands[] = {{job::kGetOnlineUpdateData, queryFault},
                                 {job::kDownloadOnlineUpdateFile, downloadFault},
                                 {job::kUpdateSW, installationFault},
                                 {job::kUpdateFW, firmwareFault}};

bool isKnown(const std::string& command) {
  return std::any_of(std::begin(kCommands), std::end(kCommands),
                     [&](const Command& known) { return command == known.name; });
}

std::string commandFault(const std::string& command, const Value& inputs) {
  for (const Command& known : kCommands) {
    if (command == known.name) return known.inputFault(inputs);
  }
  return "job_id is \"" + command + "\", which is no command of the worker's";
}

// --- one record

std::string packagePathFault(const std::string& path) {
  const bool isRelative = !path.empty() && path.front() != '/';
  return isRelative ? " is relative: it is looked for in the worker's current folder"
                    : packageFault(path);
}

bool isInState(const Value& record, const char* state) {
  const Value& found = record.get(job::kStateId);
  return found.isString() && found.string() == state;
}

std::string keyFault(const Value& record) {
  for (const char* key : {job::kJobId, job::kStateId}) {
    if (!record.has(key)) return std::string("there is no ") + key;
    if (!record.get(key).isString()) return std::string(key) + " is no string";
  }
  return record.has(job::kInputParameters) ? "" : "there is no input_parameters";
}

class Records {
 public:
  Records(const std::string& path, const WorkerRuns& workerRuns, const LogOf& logOf)
      : path_(path), workerRuns_(workerRuns), logOf_(logOf) {}

  void take(const Value& record, std::size_t index) {
    const std::string place = path_ + ": element " + inBrackets(index);
    job_.clear();
    if (!record.isDictionary()) {
      add(Code::recordNoObject, Severity::error, place + " is no object: " + valueText(record),
          kNoUpdates, "Remove it from the file.");
      return;
    }
    const Value& logId = record.get(job::kLogId);
    if (logId.isNothing()) {
      add(Code::recordNoLogId, Severity::warning, place + " has no log_id",
          "It is never started, and the progress of firmware jobs before it is lost.",
          "Give it a log_id, or remove it.");
    } else if (!logId.isString()) {
      add(Code::recordLogIdNoString, Severity::error,
          place + " has a log_id that is no string: " + valueText(logId), kNoUpdates,
          "Write it as a string, such as \"17\".");
    } else {
      ++counts_[logId.string()];
      job_ = logId.string();
      takeJob(record, path_ + ": " + jobName(logId.string()));
    }
  }

  Findings findings() {
    for (const auto& [logId, count] : counts_) {
      if (count == 1) continue;
      job_ = logId;
      add(Code::logIdTwice, Severity::warning,
          path_ + ": " + std::to_string(count) + " jobs have the log_id " +
              (logId.empty() ? "\"\"" : logId),
          "What the worker writes of one goes into all of them: the earlier ones lose their "
          "command and their result.",
          "Use each log_id once. Remove the records of finished jobs that share it.");
    }
    return findings_;
  }

 private:
  void takeJob(const Value& record, const std::string& job) {
    const std::string fault = keyFault(record);
    if (isInState(record, job::kFree)) {
      if (!fault.empty()) {
        addNotWhole(job + " is finished, and " + fault);
      } else {
        takeFinished(record, job);
      }
    } else if (!fault.empty() || isInState(record, job::kWait)) {
      const bool isTaken = takeUnwritten(record, job);
      if (const std::string why = whyNotStarted(record); !why.empty()) {
        addFaulty(job, why, meaningOf(record));
      } else {
        takeImages(record, job);
        if (!isTaken) takePackage(record, job);
      }
    } else if (isInState(record, job::kRun)) {
      takeRunning(record, job);
    } else {
      addFaulty(job,
                "state_id is \"" + record.get(job::kStateId).string() +
                    "\", which is none of WAIT, RUN, FREE",
                "No worker ever starts it.");
    }
  }

  void takeFinished(const Value& record, const std::string& job) {
    const std::string& command = record.get(job::kJobId).string();
    const Value& result = record.get(job::kResult);
    const bool hasResult = result.isNumber();
    if (!hasResult && !result.isNothing()) {
      add(Code::jobNoResult, Severity::warning,
          job + " is finished, and its result is no number: " + valueText(result),
          "The worker's results are numbers: not the worker wrote this one.",
          "Find out who writes the job file besides the worker.");
    } else if (command == job::kUpdateFW && !hasResult) {
      add(Code::jobNoResult, Severity::warning, job + " is finished, and there is no result",
          "The end of a firmware job always has its result: not the worker wrote this one.",
          "Find out who writes the job file besides the worker.");
    } else if (command == job::kUpdateFW && !record.has(job::kOutput) &&
               firmwareFault(record.get(job::kInputParameters)).empty()) {
      addFirstWriteFailed(Code::jobNoOutput, job + " is finished, and there is no output",
                          "The job was done, and its result counts; its progress is lost.");
    } else if (isKnown(command) && !hasResult) {
      addFirstWriteFailed(Code::jobNoResult, job + " is finished, and there is no result",
                          "The job was done, and would have the result 0.");
    } else if (!isKnown(command) && !hasResult) {
      add(Code::jobNoResult, Severity::warning, job + " is finished, and there is no result",
          "The worker does not know the command \"" + command + "\": it did not write this.",
          "Find out who writes the job file besides the worker.");
    }
  }

  // Of a copy only that none is named.
  void takePackage(const Value& record, const std::string& job) {
    if (record.get(job::kJobId) != Value(job::kUpdateSW)) return;
    const std::string& package = record.get(job::kInputParameters).get(job::kFilePath).string();
    if (!workerRuns_ && !package.empty()) return;
    const std::string fault = packagePathFault(package);
    if (fault.empty()) return;
    add(Code::packageUnusable, Severity::error,
        job + ": the package" + (package.empty() ? "'s path" : ", " + package + ",") + fault,
        std::string("The worker looks at nothing beforehand: it removes the application and ") +
            (platform::exists(package) ? "copies this to its place" : "copies nothing") +
            ", with result 0 all the same.",
        "Do not start it: remove the record, and add the job anew with the absolute path of the "
        "new application's bundle.");
    findings_.back().path = package;
  }

  // An image that is not there ends the job at its controller, behind those that were flashed.
  void takeImages(const Value& record, const std::string& job) {
    if (!workerRuns_ || record.get(job::kJobId) != Value(job::kUpdateFW)) return;
    const Value& inputs = record.get(job::kInputParameters);
    for (std::size_t i = 0; i < inputs.count(); ++i) {
      const std::string& image = inputs.at(i).get(job::kFilePath).string();
      const std::string fault = imageFault(image);
      if (fault.empty()) continue;
      std::string what = job;
      what.append(image.empty() ? ": the path of the image of " : ": the image of ");
      what.append(job::kInputParameters).append(inBrackets(i));
      if (!image.empty()) what.append(", ").append(image).append(",");
      add(Code::imageUnusable, Severity::error, what + fault,
          std::string(i == 0 ? "" : "The controllers before it are flashed. ") +
              "At this entry the job fails, and later ones are not started.",
          "Put the image there, or add the job anew with the absolute path of one that is.");
      findings_.back().path = image;
    }
  }

  void addFirstWriteFailed(Code code, const std::string& what, const std::string& outcome) {
    add(code, Severity::warning, what,
        "The worker's first write of the job failed, as on a full disk, and its last one did "
        "not. " +
            outcome,
        "Mend what kept the file from being written, then remove the record or leave it.");
  }

  // Whether a worker has taken it.
  bool takeUnwritten(const Value& record, const std::string& job) {
    if (workerRuns_ && workerRuns_(record.get(job::kLogId).string())) return true;
    const LogStretch log = logOf_(record);
    if (!mayHaveBeenDone(record, log)) return false;
    add(Code::jobUnwritten, Severity::error,
        job + " is in state WAIT, and the log tells that a worker took it",
        "A worker took it, and its record does not tell what became of it: " +
            whatMayHaveBeenDone(record, log) + "." + lastSeenText(log),
        "Mend what keeps the job file from being written, if anything does. Look what was done "
        "before the job is added anew under another log_id, and remove this record.");
    return true;
  }

  void takeRunning(const Value& record, const std::string& job) {
    const std::string& logId = record.get(job::kLogId).string();
    if (!workerRuns_ || workerRuns_(logId)) return;
    const bool flashes = record.get(job::kJobId).string() == job::kUpdateFW;
    add(Code::jobNoWorker, Severity::warning,
        job + " is in state RUN, and no worker for it is seen",
        "Its worker was killed, or gave up with an error line in the log. Nothing takes the job "
        "up.",
        "See \"" + consoleCommand("explain", sharedFolder(), logId) +
            "\" for the job; then add it anew under another log_id." +
            (flashes ? " A bridge that was flashed before its NVRAM was written does not get it "
                       "then: the versions are equal."
                     : ""));
  }

  // What the job file's path begins with where it stands in one.
  std::string sharedFolder() const {
    constexpr std::string_view kEnd = paths::kJobFile;
    return path_.ends_with(kEnd) ? path_.substr(0, path_.size() - kEnd.size()) : "";
  }

  void addNotWhole(const std::string& what) {
    add(Code::jobNotWhole, Severity::warning, what, "The record does not tell what the job was.",
        "Remove the record, if nobody needs it.");
  }

  static std::string meaningOf(const Value& record) {
    if (!keyFault(record).empty()) {
      return "The worker leaves the job as it is, or ends it without having done anything.";
    }
    const bool flashes = record.get(job::kJobId).string() == job::kUpdateFW;
    return flashes ? firmwareMeaning(record.get(job::kInputParameters))
                   : "The worker leaves the job in state WAIT without having done anything.";
  }

  void addFaulty(const std::string& job, const std::string& why, const std::string& meaning) {
    add(Code::jobFaulty, Severity::error, job + " cannot be carried out: " + why, meaning,
        "Compare the record with the examples of its command, and add it anew.");
  }

  void add(Code code, Severity severity, const std::string& what, const std::string& meaning,
           const std::string& advice) {
    findings_.push_back({code, severity, what, meaning, advice, path_, job_});
  }

  const std::string& path_;
  const WorkerRuns& workerRuns_;
  const LogOf& logOf_;
  std::map<std::string, int> counts_;
  std::string job_;  // the log id of the record that is looked at
  Findings findings_;
};

}  // namespace

Findings recordFindings(const std::string& path, const Value& records, const WorkerRuns& workerRuns,
                        const LogOf& logOf) {
  Records all(path, workerRuns, logOf);
  for (std::size_t i = 0; i < records.count(); ++i) all.take(records.at(i), i);
  return all.findings();
}

std::string whyNotStarted(const Value& record) {
  std::string fault = keyFault(record);
  if (!fault.empty()) return fault;
  return commandFault(record.get(job::kJobId).string(), record.get(job::kInputParameters));
}

std::string firmwareEntryFault(const Value& record, std::size_t index) {
  const Value& inputs = record.get(job::kInputParameters);
  return inputs.isArray() && index < inputs.count() ? entryFault(inputs, index)
                                                    : arrayFault(inputs);
}

}  // namespace kelvane::console
