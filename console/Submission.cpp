#include "console/Submission.h"

#include "console/Arguments.h"
#include "console/ExitCode.h"
#include "console/Follower.h"
#include "console/JobFile.h"
#include "console/Worker.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string workerPath(const JobOptions& options) {
  if (!options.worker.empty()) return options.worker;
  if (options.bundle.empty()) throw Failure(kBadUsage, "neither a bundle nor a worker is given");
  return options.bundle + "/Contents/Resources/Kelvane";
}

WorkerProcess startWorker(const WorkerCommand& command, const JobFile& file) {
  try {
    return WorkerProcess(command);
  } catch (const Failure& failure) {
    throw Failure(failure.exitCode(), std::string(failure.what()) + "; job " + command.logId +
                                          " stays waiting in " + file.path());
  }
}

// Raises unless the job is finished.
void requireFinished(const Followed& followed, const WorkerCommand& command, const Worker& worker) {
  const std::string job = "job " + command.logId;
  const std::string ending = worker.ending().empty() ? "" : " (" + worker.ending() + ")";
  switch (followed.outcome) {
    case Outcome::finished:
      return;
    case Outcome::workerEnded:
      throw Failure(kWorkerFailed, "the worker ended" + ending + " without finishing " + job +
                                       " and left it in state " + followed.last.status.state);
    case Outcome::recordLost:
      throw Failure(kJobFileFailed, "the worker ended" + ending + " and " + job +
                                        " is not to be found in the job file");
    case Outcome::interrupted:
      throw Failure(kInterrupted, "interrupted: the worker goes on with " + job);
  }
}

}  // namespace

Look runJob(const JobOptions& options, const std::string& jobId, const Value& inputs,
            const Surroundings& surroundings) {
  WorkerCommand command;
  command.executable = workerPath(options);
  command.sharedFolder = asPrefix(options.sharedFolder);
  command.showOutput = options.verbose;
  if (!options.logId.empty()) requireText(options.logId, "the log id");
  const JobFile file(command.sharedFolder);
  command.logId = file.add({options.logId, jobId, inputs});
  WorkerProcess worker = startWorker(command, file);
  const Followed followed =
      follow(file, command.logId, worker, surroundings.clock, surroundings.view);
  requireFinished(followed, command, worker);
  return followed.last;
}

int exitCodeOf(const Look& finished) {
  return finished.status.hasSucceeded() ? kSuccess : kJobFailed;
}

int guarded(const Surroundings& surroundings, const std::function<int()>& subCommand) {
  try {
    return subCommand();
  } catch (const Failure& failure) {
    surroundings.messages << "kelvane-console: "
                          << displayText(failure.what(), surroundings.screen.charset) << std::endl;
    return failure.exitCode();
  }
}

}  // namespace kelvane::console
