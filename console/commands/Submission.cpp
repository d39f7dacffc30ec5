#include "console/commands/Submission.h"

#include "console/checks/BundleChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/Paragraphs.h"
#include "console/display/ShellQuoting.h"
#include "console/explain/FlashNotes.h"
#include "console/explain/UnfinishedJob.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/JobFile.h"
#include "console/job/LogStretch.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kWorkerOption[] = "--worker";
constexpr char kLogIdOption[] = "--log-id";
constexpr char kVerboseFlag[] = "--verbose";

std::string workerPath(const JobOptions& options) {
  if (!options.worker.empty()) return options.worker;
  if (options.bundle.empty()) throw Failure(kBadUsage, "neither a bundle nor a worker is given");
  return workerIn(options.bundle);
}

WorkerProcess startWorker(const WorkerCommand& command, const JobFile& file) {
  try {
    return WorkerProcess(command);
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(), std::string(failure.what()) + "; job " + command.logId +
                                          " stays waiting in " + file.path());
  }
}

// Quoted for a shell where it needs to be.
std::string quoted(const std::string& word) {
  if (word.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                             "/._-+,:@%") == std::string::npos) {
    return word;
  }
  return shellQuoted(word);
}

// Raises unless the job is finished.
void requireFinished(const Followed& followed, const std::string& logId,
                     const std::string& sharedFolder, const Worker& worker) {
  const std::string job = "job " + logId;
  // Of a worker that someone else started it is only seen that there is none.
  const std::string gone = worker.ending().empty() ? "no worker is seen any more"
                                                   : "the worker ended (" + worker.ending() + ")";
  const JobStatus& status = followed.last.status;
  switch (followed.outcome) {
    case Outcome::finished:
      return;
    case Outcome::workerEnded:
      throw Failure(kWorkerFailed,
                    gone + ", and left " + job + " unfinished in state " + status.state + ": " +
                        adviceForUnfinished(followed.last.record,
                                            stretchIn(sharedFolder, followed.last.record)));
    case Outcome::recordLost:
      throw Failure(kJobFileFailed, gone + ", and " + job + " is not to be found in the job file");
    case Outcome::interrupted:
      throw Failure(kInterrupted,
                    "interrupted: " +
                        (status.hasNoWorker ? job + " is waiting, and no worker for it is seen"
                                            : "the worker goes on with " + job) +
                        "; follow it again with: kelvane-console watch --shared " +
                        quoted(sharedFolder) + " " + quoted(logId));
  }
}

// What the result does not tell: CPLDs that were not flashed, and where the failure stands.
void showFlashNotes(const Value& record, const std::string& sharedFolder, const Screen& screen) {
  if (screen.json || record.get(job::kJobId) != Value(job::kUpdateFW)) return;
  showLines(flashNotes(record, stretchIn(sharedFolder, record)), screen);
}

}  // namespace

std::vector<Option> jobOptions() {
  return {sharedOption(),
          bundleOption(),
          {.names = {kWorkerOption},
           .kind = ValueKind::file,
           .valueName = "PATH",
           .description = "The worker, if not the bundle's"},
          {.names = {kLogIdOption},
           .valueName = "ID",
           .description = "The job's log id, if not the next free number"},
          {.names = {kVerboseFlag},
           .kind = ValueKind::none,
           .description = "Show what the worker prints"},
          jsonFlag()};
}

JobOptions jobOptionsOf(const Given& given) {
  return {.sharedFolder = given.text(kSharedOption),
          .bundle = given.text(kBundleOption),
          .worker = given.text(kWorkerOption),
          .logId = given.text(kLogIdOption),
          .verbose = given.has(kVerboseFlag)};
}

Look followToTheEnd(const std::string& logId, const std::string& sharedFolder, Worker& worker,
                    const Surroundings& surroundings) {
  const Followed followed =
      follow(JobFile(sharedFolder), logId, worker, surroundings.clock, surroundings.view);
  requireFinished(followed, logId, sharedFolder, worker);
  showFlashNotes(followed.last.record, sharedFolder, surroundings.screen);
  return followed.last;
}

Look runJob(const JobOptions& options, const std::string& command, const Value& inputs,
            const Surroundings& surroundings) {
  WorkerCommand start;
  start.executable = workerPath(options);
  start.sharedFolder = existingShared(options.sharedFolder);
  start.showOutput = options.verbose;
  if (!options.logId.empty()) requireText(options.logId, "the log id");
  const JobFile file(start.sharedFolder);
  start.logId = file.add({options.logId, command, inputs});
  WorkerProcess worker = startWorker(start, file);
  return followToTheEnd(start.logId, start.sharedFolder, worker, surroundings);
}

int exitCodeOf(const Look& finished) {
  return finished.status.hasSucceeded() ? kSuccess : kJobFailed;
}

}  // namespace kelvane::console
