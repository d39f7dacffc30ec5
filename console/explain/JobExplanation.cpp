#include "console/explain/JobExplanation.h"

#include <optional>
#include <utility>

#include "console/checks/RecordChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/display/JobText.h"
#include "console/explain/FinishedJob.h"
#include "console/explain/FlashNotes.h"
#include "console/explain/ImageNote.h"
#include "console/explain/PackageNotes.h"
#include "console/explain/StartFault.h"
#include "console/job/JobFile.h"
#include "console/job/JobStatus.h"
#include "console/job/StandardError.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// --- a job that waits or runs

// What may go on though its worker is gone, as a sentence; else empty.
std::string whatToAwait(const Value& record) {
  const Value& command = record.get(job::kJobId);
  if (command == Value(job::kUpdateFW)) {
    return "Leave the enclosures powered for some minutes: a flash that was started goes on in the "
           "controller. ";
  }
  return command == Value(job::kUpdateSW) ? "Wait until no rm or cp of the worker's runs any more. "
                                          : "";
}

Explanation unwritten(const Value& record, const JobCircumstances& circumstances) {
  return {
      "waiting, though a worker took it",
      "A worker took it, and its record does not tell what became of it: " +
          whatMayHaveBeenDone(record, circumstances.log) + ".",
      "user",
      whatToAwait(record) +
          "Look what was done, at the last step and at the controllers or the application, before "
          "the job is added anew under another log_id. \"kelvane-console check\" tells whether "
          "anything keeps the record from being written; mend that.",
      "only where it was not done"};
}

Explanation putBack(const Value& record, const LogStretch& log) {
  const bool hasEnd = !log.isFound || log.hasEnded;
  std::string meaning = "The record holds what a worker wrote of an earlier run";
  meaning += hasEnd ? "" : ", which by the log did not come to its end";
  return {"waiting, put back into this state",
          meaning + ". Whether one took it again since then, the record does not tell.", "user",
          (hasEnd ? "" : whatToAwait(record)) +
              "Start the worker with this log_id, unless the log shows that it was done since.",
          "yes"};
}

Explanation waitingInCopy(const LogStretch& log) {
  std::string meaning = "The log has no worker that took it";
  if (log.isFound) meaning = "A worker took it, and the log tells of no step of it";
  if (!log.absence.empty()) meaning = "Whether a worker has taken it cannot be told";
  return {"waiting when it was copied", meaning + ".", "user",
          "Where it was copied, \"kelvane-console explain\" tells whether a worker runs, and "
          "\"kelvane-console check\" what is in the way.",
          "only where no worker runs"};
}

// A worker that is started flashes a firmware job all the same.
Explanation blocked(const std::string& fault) {
  return {"waiting", "No job of its file can be updated: " + fault + ".", "user",
          "Start no worker before that is mended: it could not write what became of the job, and a "
          "firmware job might be flashed all the same.",
          "once that is mended"};
}

Explanation notToBeStarted(const StartFault& fault) {
  return {"waiting", fault.meaning, "user", fault.advice, fault.tryAgain};
}

// Of a job that is not in the log, though something was said when its worker was started.
Explanation notStarted(const std::string& said) {
  return {"waiting", "No worker has taken it. One that was started said: \"" + said + "\".", "user",
          "Mend what it complained of, such as a library that is missing or damaged: then install "
          "the application anew. Then start the worker with this log_id.",
          "once that is mended"};
}

Explanation waiting(const Value& record, const JobCircumstances& circumstances) {
  if (circumstances.workerRuns && !circumstances.isCopy) {
    return {"waiting", "A worker was started for it and is about to take it.", "nobody",
            "Wait a moment, and ask again.", "no"};
  }
  if (mayHaveBeenDone(record, circumstances.log)) return unwritten(record, circumstances);
  if (!circumstances.jobFileFault.empty()) return blocked(circumstances.jobFileFault);
  if (const std::string why = whyNotStarted(record); !why.empty()) {
    return {"waiting", "It cannot be carried out as it is: " + why + ".", "support",
            "Compare the record with the examples of its command, and add the job anew.",
            "not as it is"};
  }
  if (const auto fault = startFaultOf(record, circumstances.sharedFolder, circumstances.isCopy)) {
    return notToBeStarted(*fault);
  }
  if (record.has(job::kResult)) return putBack(record, circumstances.log);
  if (circumstances.isCopy) return waitingInCopy(circumstances.log);
  if (circumstances.log.isFound) {
    return {"waiting", "A worker took it and gave up before it did anything; the log tells why.",
            "user",
            "Mend what the log's error tells; \"kelvane-console check\" looks at the job file and "
            "its records. Then start the worker with this log_id.",
            "yes"};
  }
  if (!circumstances.standardError.empty()) return notStarted(circumstances.standardError.front());
  const char* meaning = circumstances.log.absence.empty()
                            ? "No worker has taken it: none was started, or none could be."
                            : "No worker is seen, and whether one has taken it cannot be told.";
  return {"waiting", meaning, "user",
          "Start the worker with this log_id. If the job stays so, \"kelvane-console check\" tells "
          "what is in the way.",
          "yes"};
}

Explanation underWay(const JobStatus& status) {
  const bool flashes = status.command == job::kUpdateFW;
  return {"running", "A worker is at it. The result in the record says nothing yet.", "nobody",
          flashes ? "Wait. A flash may show no news for minutes; do not unplug." : "Wait.", "no"};
}

std::string adviceForAbandoned(const JobStatus& status) {
  if (status.command == job::kUpdateFW) {
    return "Leave the enclosures powered for some minutes: a flash that was started goes on in the "
           "controller. Then add the job anew under another log_id. A USB bridge that was flashed "
           "before its NVRAM was written does not get it then, as the versions are equal.";
  }
  if (status.command == job::kUpdateSW) {
    return "Look whether the application is still there: it is removed before the new one is "
           "copied. Wait until no rm or cp of the worker's runs any more. Then add the job anew "
           "under another log_id.";
  }
  return "Mend what the log's error tells, if it has one; then add the job anew under another "
         "log_id.";
}

Explanation abandoned(const JobStatus& status, const JobCircumstances& circumstances) {
  const bool gaveUp = circumstances.log.gaveUp;
  return {"running, and no worker for it is seen",
          gaveUp
              ? "Its worker gave up, and the log tells why. Nothing takes the job up."
              : "Its worker was killed, the computer went down, or the end could not be written. "
                "Nothing takes the job up.",
          "user", adviceForAbandoned(status), "yes, under another log_id"};
}

// Of a firmware job with a fault at which a worker gives up.
Explanation gaveUpAt(const std::string& why) {
  return {"running, and its worker gave up",
          "It cannot be carried out as it is: " + why +
              ". The log tells where its worker gave up. Nothing takes the job up.",
          "support",
          "Compare the record with the examples of its command, and add the job anew under another "
          "log_id.",
          "not as it is"};
}

// What the worker wrote last into the log did not come into the job file.
Explanation endedUnwritten(const JobCircumstances& circumstances) {
  const std::string& result = circumstances.log.endedWith;
  std::string meaning = "The log has the job's last line";
  if (!result.empty()) meaning.append(", with the result ").append(resultNumber(result));
  meaning += ": it came to its end, and the job file";
  meaning += circumstances.isCopy ? " is older than the log or its last write failed."
                                  : "'s last write failed, as on a full disk.";
  std::string advice = circumstances.isCopy ? "Ask for the job file once more."
                                            : "Mend what kept the job file from being written.";
  if (!result.empty()) {
    advice.append(" What the result means tells \"kelvane-console explain ").append(result);
    advice += "\".";
  }
  return {"running, though the log has its end", meaning, "user", advice,
          result == "0" ? "no" : "yes, under another log_id"};
}

Explanation runningInCopy(const JobStatus& status, const LogStretch& log) {
  const char* meaning = "A worker had taken it. Whether one still runs cannot be told from a copy.";
  if (log.gaveUp) {
    meaning =
        "A worker had taken it, and the log ends with an error of its. Unless it went on "
        "behind that, nothing takes the job up.";
  }
  std::string advice =
      "Where it was copied, \"kelvane-console explain\" tells whether a worker runs. If none "
      "does: ";
  advice += adviceForAbandoned(status);
  return {"running when it was copied", meaning, "user", advice, "only where no worker runs"};
}

Explanation byState(const Value& record, const JobStatus& status,
                    const JobCircumstances& circumstances) {
  if (status.state == job::kWait) return waiting(record, circumstances);
  if (status.state == job::kFree) return explainFinished(record, status, circumstances);
  if (status.state == job::kRun) {
    const bool hasEnded = circumstances.log.hasEnded && !circumstances.log.isMixed;
    if (hasEnded && !circumstances.workerRuns) return endedUnwritten(circumstances);
    const bool gaveUp = status.command == job::kUpdateFW && circumstances.log.gaveUp;
    const std::string why = gaveUp ? whyNotStarted(record) : "";
    if (!circumstances.workerRuns && !why.empty()) return gaveUpAt(why);
    if (circumstances.isCopy) return runningInCopy(status, circumstances.log);
    return circumstances.workerRuns ? underWay(status) : abandoned(status, circumstances);
  }
  return {"in state \"" + status.state + "\"",
          "The worker knows no such state, and never starts it.", "support",
          "Add the job anew, in state WAIT and under another log_id.", "not as it is"};
}

// --- what the log tells of any job

std::string noteOf(const LogStretch& log) {
  if (!log.absence.empty()) return log.absence + (log.absence.ends_with('.') ? "" : ".");
  if (!log.isFound) {
    std::string note = "The log has no lines of this job.";
    if (log.errorWithoutJob.empty()) return note;
    return note.append(" Its last worker took none, and said: ").append(log.errorWithoutJob);
  }
  return log.isMixed
             ? "Another worker wrote into the log at the same time: its lines cannot be told "
               "from this job's, and what is said of them may be of the other one."
             : "";
}

void takeLog(const std::string& command, const JobCircumstances& circumstances,
             Explanation& explanation) {
  const LogStretch& log = circumstances.log;
  // A worker that went on did without what it missed at its start.
  if (log.lastStep.empty()) explanation.errors = log.startErrors;
  explanation.errors.insert(explanation.errors.end(), log.errors.begin(), log.errors.end());
  explanation.lastStep = log.lastStep;
  explanation.note = noteOf(log);
  explanation.times = timesOf(log);
  if (!circumstances.isCopy) return;
  if (!explanation.note.empty()) explanation.note += ' ';
  explanation.note +=
      "This is a copy: neither workers nor the files that the job names were looked "
      "for.";
  // A firmware job starts no programs, and where nobody has to act nobody needs it.
  if (circumstances.lacksStandardError && command != job::kUpdateFW &&
      explanation.whoActs != "nobody") {
    explanation.note += " What was kept of the worker's standard error is not at hand.";
  }
  if (circumstances.isFromLog) explanation.note += " The record is as the log shows it last.";
}

// Of a firmware job the controller that it ended at, and what its CPLDs did.
void takeControllers(const Value& record, const JobStatus& status,
                     const JobCircumstances& circumstances, Explanation& explanation) {
  if (status.command != job::kUpdateFW) return;
  const LogStretch& log = circumstances.log;
  explanation.details = cpldNotes(record, log);
  if ((status.hasNoWorker || circumstances.isCopy) && status.state == job::kRun) {
    explanation.controller = progressText(status);
  }
  const std::optional<FailedController> failed = failedController(record, log);
  if (!failed) return;
  explanation.controller = failed->progress;
  explanation.toldBy = failed->fault;
  if (!failed->lastStep.empty()) explanation.lastStep = failed->lastStep;
  const std::string image = imageNote(record, *failed, circumstances.isCopy);
  if (!image.empty()) {
    explanation.details.push_back(image);
  }
}

constexpr char kNoComplaints[] =
    "what the update engine complained of stands on the worker's standard error alone, and ";

const char* whyNoComplaints(const JobCircumstances& circumstances) {
  return circumstances.lacksStandardError ? "what was kept of that is not at hand"
                                          : "nothing of it is kept here: it said nothing, or this "
                                            "console did not submit the job";
}

void takePackages(const Value& record, const JobCircumstances& circumstances,
                  Explanation& explanation) {
  std::vector<std::string> notes = packageNotes(record, circumstances.isCopy);
  if (!notes.empty() && circumstances.standardError.empty()) {
    notes.push_back(std::string(kNoComplaints) + whyNoComplaints(circumstances));
  }
  for (std::string& note : notes) explanation.details.push_back(std::move(note));
  std::string said = engineNote(record, circumstances.log);
  if (!said.empty()) explanation.details.push_back(std::move(said));
}

}  // namespace

std::string jobFileFaultAt(const Places& places) {
  return places.jobFile.empty() ? "" : JobFile::at(places.jobFile).fault();
}

JobCircumstances circumstancesOf(const Places& places) {
  return {.isCopy = places.isCopy,
          .isFromLog = places.jobFile.empty(),
          .jobFileFault = jobFileFaultAt(places),
          .sharedFolder = places.sharedFolder,
          .lacksStandardError = places.sharedFolder.empty(),
          .missingApplication = places.isCopy ? "" : missingApplication(places.sharedFolder)};
}

JobCircumstances circumstancesAt(const Places& places, const Value& record) {
  const std::string logId = statusOf(record).logId;
  JobCircumstances found = circumstancesOf(places);
  found.workerRuns = !places.isCopy && !lacksWorker(logId, places);
  found.log = stretchIn(places, record);
  if (places.sharedFolder.empty()) return found;
  found.standardError = standardErrorInShort(places.sharedFolder, record, found.log);
  return found;
}

Explanation explainJob(const Value& record, const JobCircumstances& circumstances) {
  JobStatus status = statusOf(record, circumstances.log);
  if (!circumstances.workerRuns && !circumstances.isCopy) markWithoutWorker(status);
  Explanation explanation = byState(record, status, circumstances);
  const std::string command = status.command.empty() ? "" : " (" + status.command + ")";
  explanation.subject = jobName(status.logId) + command + ": " + explanation.subject;
  takeLog(status.command, circumstances, explanation);
  takeControllers(record, status, circumstances, explanation);
  takePackages(record, circumstances, explanation);
  if (!circumstances.standardError.empty() && !circumstances.log.isFound) {
    explanation.details.emplace_back(kNotToldByTheLog);
  }
  for (const std::string& line : circumstances.standardError) {
    explanation.details.push_back("standard error: " + line);
  }
  return explanation;
}

}  // namespace kelvane::console
