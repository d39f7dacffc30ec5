#include "console/commands/Retry.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "console/checks/RecordChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/JobEnd.h"
#include "console/commands/OnlineUpdate.h"
#include "console/commands/UpdateFw.h"
#include "console/commands/UpdateSw.h"
#include "console/job/ExitCode.h"
#include "console/job/JobStatus.h"
#include "console/job/LogStretch.h"
#include "console/job/RecordValues.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// Of the worker, and what is the new record's own.
constexpr const char* kNotTakenOver[] = {job::kLogId,           job::kJobId,  job::kStateId,
                                         job::kInputParameters, job::kOutput, job::kResult,
                                         job::kResultStr};

Value otherKeys(const Value& record) {
  Value others = Value::dictionary();
  for (const auto& [key, value] : record.entries()) {
    const auto* const end = std::end(kNotTakenOver);
    if (std::find(std::begin(kNotTakenOver), end, key) == end) others.set(key, value);
  }
  return others;
}

// A worker that took the job and could not write may have flashed.
void requireUntouched(const Value& record, const RetryOptions& options) {
  const LogStretch log = stretchIn(existingShared(options.job.sharedFolder), record);
  if (options.yes || !mayHaveBeenDone(record, log)) return;
  throw Failure(kBadUsage, "a worker took job " + options.logId + ", and " +
                               whatMayHaveBeenDone(record, log) +
                               ": look whether it was; --yes runs it all the same");
}

// Asked again right before the job is run: a worker may have taken it since.
Value recordOf(const JobFile& file, const RetryOptions& options) {
  const std::string& logId = options.logId;
  file.read();  // raises where it is damaged
  Value record = file.find(logId);
  if (record.isNothing()) throw Failure(kNotFound, "no job " + logId + " in " + file.path());
  const std::string fault = whyNotStarted(record);
  if (!fault.empty()) throw Failure(kBadUsage, "job " + logId + " cannot be run: " + fault);
  requireUntouched(record, options);
  return record;
}

// What the update engine gets may have been somebody's folder from the beginning, or since.
void requireEnginesFolder(const Value& record, const RetryOptions& options) {
  const Value& command = record.get(job::kJobId);
  if (command == Value(job::kUpdateFW) || command == Value(job::kUpdateSW)) return;
  requireFreeFolder(engineFolderOf(record.get(job::kInputParameters)), options.job.sharedFolder);
}

// A record that waits is not made twice: the application may start it, too.
Value putIn(const JobFile& file, const RetryOptions& options) {
  Value record = recordOf(file, options);
  requireEnginesFolder(record, options);
  if (statusOf(record).state != job::kWait) {
    return file.add({options.job.logId, record.get(job::kJobId).string(),
                     record.get(job::kInputParameters), otherKeys(record)});
  }
  if (!options.job.logId.empty()) {
    throw Failure(kBadUsage, "job " + options.logId + " is still waiting and keeps its log id");
  }
  requireUpdatable(file.read(), file.path());
  return record;
}

// What stands there now, if anything does, is what the job is given.
void requireImages(const Value& inputs) {
  for (const Value& input : inputs.elements()) existingImage(input.get(job::kFilePath).string());
}

int runRetry(const Given& given, const Surroundings& surroundings) {
  return retry(
      {.job = jobOptionsOf(given), .logId = given.text(kLogIdArgument), .yes = given.has(kYesFlag)},
      surroundings);
}

}  // namespace

int retry(const RetryOptions& options, const Surroundings& surroundings) {
  requireText(options.logId, "the log id");
  const Value record = recordOf(JobFile(existingShared(options.job.sharedFolder)), options);
  const std::string command = record.get(job::kJobId).string();
  const Value& inputs = record.get(job::kInputParameters);
  const auto submit = [&] {
    return runRecord(
        options.job, [&](const JobFile& file) { return putIn(file, options); }, surroundings);
  };
  if (command == job::kUpdateSW) {
    return install(
        {.job = options.job, .package = inputs.get(job::kFilePath).string(), .yes = options.yes},
        submit, surroundings);
  }
  if (command == job::kUpdateFW) {
    requireImages(inputs);
    if (!options.yes) announceUpdate(options.job, inputs, surroundings);
  }
  const std::optional<Look> finished = submit();
  return finished ? endOfJob(*finished, options.job.sharedFolder, surroundings.screen) : kSuccess;
}

Command retryCommand() {
  std::vector<Option> options = jobOptions();
  options.push_back(yesFlag());
  return {
      .name = "retry",
      .description = "Run a job once more",
      .options = options,
      .arguments = {{.names = {kLogIdArgument},
                     .kind = ValueKind::logId,
                     .valueName = "LOG_ID",
                     .description = "The job",
                     .required = true}},
      .footer =
          "A job that is still waiting is run itself; of any other a new record is added, with\n"
          "the same command and parameters. After a firmware job whose worker was killed leave\n"
          "the enclosures powered for some minutes first. A waiting job that a worker took may\n"
          "have been done: it is run with --yes alone.\n"
          "Example:\n"
          "  kelvane-console retry --shared ~/Shared --bundle /Manager/Manager.app 17",
      .run = runRetry};
}

}  // namespace kelvane::console
