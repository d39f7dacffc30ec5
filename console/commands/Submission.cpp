#include "console/commands/Submission.h"

#include "console/checks/Access.h"
#include "console/checks/BundleChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/Turn.h"
#include "console/display/JsonText.h"
#include "console/display/Paragraphs.h"
#include "console/display/ShellQuoting.h"
#include "console/display/TimeText.h"
#include "console/explain/FlashNotes.h"
#include "console/explain/Shortfall.h"
#include "console/explain/UnfinishedJob.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/JobFile.h"
#include "console/job/LogStretch.h"
#include "console/job/Processes.h"
#include "console/job/StandardError.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kWorkerOption[] = "--worker";
constexpr char kLogIdOption[] = "--log-id";
constexpr char kVerboseFlag[] = "--verbose";
constexpr char kWaitFlag[] = "--wait";
constexpr char kEvenSoFlag[] = "--even-so";
constexpr char kNoWaitFlag[] = "--no-wait";

std::string workerPath(const JobOptions& options) {
  if (!options.worker.empty()) return options.worker;
  if (options.bundle.empty()) {
    const Option bundle = bundleOption();
    std::string message = "neither a bundle nor a worker is given: give --bundle ";
    message.append(bundle.valueName).append(", set ").append(bundle.variable);
    throw Failure(kBadUsage, message.append(", or give --worker PATH"));
  }
  return workerIn(options.bundle);
}

std::string workerFault(const std::string& worker) {
  const EntryKind kind = kindOf(worker);
  if (kind == EntryKind::missing) return " does not exist";
  if (kind == EntryKind::folder || kind == EntryKind::other) return " is no regular file";
  if (const std::string cause = refusal(worker, Access::execute); !cause.empty()) {
    return " cannot be executed: " + cause;
  }
  const std::string fault = programFault(worker);
  return fault.empty() ? "" : " cannot be started: " + fault;
}

void requireWorker(const std::string& worker) {
  const std::string fault = workerFault(worker);
  if (fault.empty()) return;
  throw Failure(kWorkerFailed, "the worker " + worker + fault + "; nothing was submitted");
}

TurnWish turnWishOf(const JobOptions& options, const std::string& sharedFolder) {
  if (options.wait && options.evenSo) {
    throw Failure(kBadUsage, "--wait and --even-so exclude one another");
  }
  TurnWish wish = {.sharedFolder = sharedFolder,
                   .bundle = options.bundle,
                   .advice = "--wait waits for the end, --even-so submits all the same",
                   .noticesApart = options.noWait};
  if (options.wait) wish.whenBusy = WhenBusy::wait;
  if (options.evenSo) wish.whenBusy = WhenBusy::goOn;
  return wish;
}

WorkerProcess startWorker(const WorkerCommand& command, const JobFile& file) {
  try {
    return WorkerProcess(command);
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(), std::string(failure.what()) + "; job " + command.logId +
                                          " stays waiting in " + file.path());
  }
}

// A job that was put in, and its worker.
struct Started {
  Value record;
  WorkerProcess worker;
};

// A process that was only just started may not be seen with its arguments yet.
void awaitSight(WorkerProcess& worker, const WorkerCommand& command) {
  constexpr int kMostLooks = 1000;
  for (int looks = 0; looks < kMostLooks; ++looks) {
    if (worker.hasEnded() || workerRuns(command.logId, command.sharedFolder)) return;
  }
}

// The lock is given back when the worker runs and can be seen by others.
Started start(const JobOptions& options, const TurnWish& wish, const PutIn& putIn,
              const Surroundings& surroundings) {
  WorkerCommand command{.executable = workerPath(options),
                        .sharedFolder = wish.sharedFolder,
                        .showOutput = options.verbose};
  requireWorker(command.executable);
  const JobFile file(wish.sharedFolder);
  requireChangeable(file);
  const JobFileLock lock = takeTurn(file, wish, surroundings);
  const Value record = putIn(file);
  command.logId = record.get(job::kLogId).string();
  if (options.verbose) {
    discardStandardError(wish.sharedFolder, command.logId);
  } else {
    command.standardError =
        makeStandardError(wish.sharedFolder, record, surroundings.clock.timeOfDay());
  }
  Started started{record, startWorker(command, file)};
  awaitSight(started.worker, command);
  return started;
}

void showLogId(const std::string& logId, const Screen& screen) {
  if (screen.json) {
    const Value answer = Value::dictionary({{job::kLogId, logId}});
    screen.out << jsonLine(answer) << std::endl;
  } else {
    screen.out << displayText(logId, screen.charset) << std::endl;
  }
}

// Of a job that has failed: what was said, below the result.
void showStandardError(const std::string& sharedFolder, const Look& finished,
                       const Screen& screen) {
  if (screen.json || finished.status.hasSucceeded()) return;
  for (const std::string& line : standardErrorInShort(sharedFolder, finished.status.logId)) {
    screen.out << "  " << displayText(line, screen.charset) << std::endl;
  }
}

// What a worker that is gone has said.
std::vector<std::string> lastWords(const std::string& sharedFolder, const std::string& logId) {
  discardSilence(sharedFolder, logId);
  return standardErrorInShort(sharedFolder, logId);
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
      throw Failure(
          kWorkerFailed,
          gone + ", and left " + job + " unfinished in state " + status.state + ": " +
              adviceForUnfinished(followed.last.record,
                                  stretchIn(sharedFolder, followed.last.record), sharedFolder),
          lastWords(sharedFolder, logId));
    case Outcome::recordLost:
      throw Failure(kJobFileFailed, gone + ", and " + job + " is not to be found in the job file",
                    lastWords(sharedFolder, logId));
    case Outcome::interrupted:
      throw Failure(kInterrupted,
                    "interrupted: " +
                        (status.hasNoWorker ? job + " is waiting, and no worker for it is seen"
                                            : "the worker goes on with " + job) +
                        "; follow it again with: " + consoleCommand("watch", sharedFolder, logId));
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
          {.names = {kWaitFlag},
           .kind = ValueKind::none,
           .description = "Wait for the end of a job that runs; otherwise that is refused"},
          {.names = {kEvenSoFlag},
           .kind = ValueKind::none,
           .description = "Submit the job though another one runs"},
          {.names = {kNoWaitFlag},
           .kind = ValueKind::none,
           .description = "Print the log id once the worker is started, and end"},
          jsonFlag()};
}

JobOptions jobOptionsOf(const Given& given) {
  return {.sharedFolder = given.text(kSharedOption),
          .bundle = given.text(kBundleOption),
          .worker = given.text(kWorkerOption),
          .logId = given.text(kLogIdOption),
          .verbose = given.has(kVerboseFlag),
          .wait = given.has(kWaitFlag),
          .evenSo = given.has(kEvenSoFlag),
          .noWait = given.has(kNoWaitFlag)};
}

Look followToTheEnd(const std::string& logId, const std::string& sharedFolder, Worker& worker,
                    const Surroundings& surroundings, const Past& past,
                    const JobFile::IsMeant& isMeant) {
  Past known = past;
  known.log = [&](const Value& record) { return stretchIn(sharedFolder, record); };
  known.shortfall = [&](const Value& record, const LogStretch& log) {
    return shortfallAt(placesIn(sharedFolder), record, log);
  };
  const Followed followed = follow(JobFile(sharedFolder), logId, worker, surroundings.clock,
                                   surroundings.view, isMeant, known);
  requireFinished(followed, logId, sharedFolder, worker);
  if (!surroundings.screen.json) showLines(timeLines(followed.last.times), surroundings.screen);
  showFlashNotes(followed.last.record, sharedFolder, surroundings.screen);
  showStandardError(sharedFolder, followed.last, surroundings.screen);
  return followed.last;
}

std::optional<Look> runRecord(const JobOptions& options, const PutIn& putIn,
                              const Surroundings& surroundings) {
  const std::string sharedFolder = existingShared(options.sharedFolder);
  Started started = start(options, turnWishOf(options, sharedFolder), putIn, surroundings);
  const Past past = pastOfNewJob(surroundings.clock);
  const std::string& logId = started.record.get(job::kLogId).string();
  if (options.noWait) {
    showLogId(logId, surroundings.screen);
    return std::nullopt;
  }
  const auto isMeant = [&](const Value& record) { return isSameJob(record, started.record); };
  Look finished = followToTheEnd(logId, sharedFolder, started.worker, surroundings, past, isMeant);
  discardSilence(sharedFolder, logId);
  return finished;
}

std::optional<Look> runJob(const JobOptions& options, const std::string& command,
                           const Value& inputs, const Surroundings& surroundings) {
  if (!options.logId.empty()) requireText(options.logId, "the log id");
  const NewJob added{options.logId, command, inputs};
  return runRecord(
      options, [&](const JobFile& file) { return file.add(added); }, surroundings);
}

int exitCodeOf(const Look& finished) {
  return finished.status.hasSucceeded() ? kSuccess : kJobFailed;
}

}  // namespace kelvane::console
