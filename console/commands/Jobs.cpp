#include "console/commands/Jobs.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "console/checks/RecordChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/JobEnd.h"
#include "console/commands/JobList.h"
#include "console/display/JobText.h"
#include "console/display/JsonText.h"
#include "console/display/Packages.h"
#include "console/display/Paragraphs.h"
#include "console/display/ShellQuoting.h"
#include "console/display/StatusForMachines.h"
#include "console/display/Table.h"
#include "console/display/TimeText.h"
#include "console/explain/FlashNotes.h"
#include "console/explain/JobExplanation.h"
#include "console/explain/StartFault.h"
#include "console/explain/UnfinishedJob.h"
#include "console/job/ExitCode.h"
#include "console/job/JobTimes.h"
#include "console/job/LogStretch.h"
#include "console/job/Processes.h"
#include "console/job/RecordValues.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

Value requiredRecord(const Places& places, const std::string& logId) {
  requireText(logId, "the log id");
  return recordAt(places, logId);
}

Table controllersOf(const JobStatus& status) {
  Table table({{"Controller"}, {"Phase"}, {"CPLD", true}, {"Firmware", true}, {"Total", true}});
  for (const ControllerStatus& one : status.controllers) {
    table.addRow({one.wwn.empty() ? "(no WWN)" : one.wwn, phaseOf(one), percentText(one.cpld),
                  percentText(one.firmware), percentText(one.total)});
  }
  return table;
}

void tellWhatWasNotLookedAt(const Places& places, const Screen& screen) {
  const std::string text = notLookedAt(places);
  if (!text.empty()) showLines({text}, screen);
}

bool isUnfinished(const ListedJob& job) {
  return job.record.isDictionary() && !job.status.isFinished();
}

// Where one of the jobs is not finished: why nothing can be written of it.
void tellOfJobFile(const JobList& jobs, const Places& places, const Screen& screen) {
  if (std::none_of(jobs.begin(), jobs.end(), isUnfinished)) return;
  if (const std::string fault = jobFileFaultAt(places); !fault.empty()) {
    showLines({"no job can be updated: " + fault}, screen);
  }
}

// Of a waiting job, that a worker had taken it already.
void tellOfEarlierWorker(const Value& record, const LogStretch& log, const Places& places,
                         const Screen& screen) {
  if (!mayHaveBeenDone(record, log)) return;
  const std::string command = places.isCopy ? "kelvane-console explain"
                                            : consoleCommand("explain", places.sharedFolder,
                                                             stringOf(record.get(job::kLogId)));
  showLines({"a worker took this job, and its record does not tell what became of it: " +
             whatMayHaveBeenDone(record, log) + "; see \"" + command + "\""},
            screen);
}

void showTimes(const JobTimes& times, const Screen& screen) {
  if (times.length && *times.length >= std::chrono::seconds(1)) {
    screen.out << "took " << timeText(*times.length) << '\n';
  }
  showLines(timeLines(times.controllers), screen);
}

// Of a job with result 0; what its CPLDs did not is told with the flash.
void showShortfall(const ListedJob& job, const Screen& screen) {
  if (job.shortfall.empty() || job.status.command == job::kUpdateFW) return;
  showLines({"but " + job.shortfall}, screen);
}

void showJob(const ListedJob& job, const Places& places, const Screen& screen) {
  const JobStatus& status = job.status;
  showLines({jobLine(status, screen.charset)}, screen);
  tellOfEarlierWorker(job.record, job.log, places, screen);
  showLines({"command " + displayText(status.command, screen.charset)}, screen);
  if (status.isFinished()) showLines({resultLine(status, screen.charset)}, screen);
  showShortfall(job, screen);
  if (!status.controllers.empty()) showTable(controllersOf(status), screen);
  showTimes(timesOf(job.log), screen);
  showLines(flashNotes(job.record, job.log), screen);
  showPackages(job.record, screen, places.isCopy);
  tellOfJobFile({job}, places, screen);
  tellWhatWasNotLookedAt(places, screen);
}

// Nothing more comes of a job that a worker has taken and left without writing it.
void requireOpen(const std::string& logId, const std::string& sharedFolder, const Value& record,
                 const LogStretch& log) {
  if (!mayHaveBeenDone(record, log) || workerRuns(logId, sharedFolder)) return;
  throw Failure(kWorkerFailed, "job " + logId +
                                   " is in state WAIT, and no worker for it is seen: " +
                                   adviceForUnfinished(record, log, sharedFolder));
}

// Of a waiting job that a worker would take, and of any that it could not update; else empty.
std::string whyNotToStart(const Value& record, const std::string& sharedFolder) {
  std::string fileFault = jobFileFaultAt(placesIn(sharedFolder));
  if (!fileFault.empty() || !whyNotStarted(record).empty()) return fileFault;
  const std::optional<StartFault> fault = startFaultOf(record, sharedFolder, false);
  return fault ? fault->fault : "";
}

// --- the sub-commands

constexpr char kFailedFlag[] = "--failed";
constexpr char kLastOption[] = "--last";

OneJobOptions oneJobOptionsOf(const Given& given) {
  return {.sharedFolder = given.text(kSharedOption), .logId = given.text(kLogIdArgument)};
}

OneJobOptions showOptionsOf(const Given& given) {
  OneJobOptions options = oneJobOptionsOf(given);
  options.copy = copyOptionsOf(given);
  return options;
}

int runList(const Given& given, const Screen& screen) {
  return list({.sharedFolder = given.text(kSharedOption),
               .failed = given.has(kFailedFlag),
               .last = given.text(kLastOption),
               .copy = copyOptionsOf(given)},
              screen);
}

int runShow(const Given& given, const Screen& screen) { return show(showOptionsOf(given), screen); }

int runWatch(const Given& given, const Surroundings& surroundings) {
  OneJobOptions options = oneJobOptionsOf(given);
  options.bundle = given.text(kBundleOption);
  return watch(options, surroundings);
}

Command oneJobCommand(const std::string& name, const std::string& description,
                      const std::vector<Option>& options, const Run& run) {
  return {.name = name,
          .description = description,
          .options = options,
          .arguments = {{.names = {kLogIdArgument},
                         .kind = ValueKind::logId,
                         .valueName = "LOG_ID",
                         .description = "The job",
                         .required = true}},
          .footer = "Example:\n  kelvane-console " + name + " --shared ~/Shared 17",
          .run = run};
}

std::vector<Option> placesAndJson() {
  std::vector<Option> options = placeOptions();
  options.push_back(jsonFlag());
  return options;
}

// Of a copy it is not known whether they had a worker: "running when it was copied, which may have
// failed: 4, 5".
std::string runningText(const JobList& jobs) {
  std::string logIds;
  for (const ListedJob& job : jobs) {
    if (job.status.state != job::kRun) continue;
    logIds.append(logIds.empty() ? "" : ", ").append(job.status.logId);
  }
  return logIds.empty() ? "" : "running when it was copied, which may have failed: " + logIds;
}

std::string noJobsText(const ListOptions& options, const Value& records, const Places& places) {
  const bool isNoneWanted = !options.last.empty() && countIn(options.last, kLastOption) == 0;
  if (isNoneWanted) return std::string(kLastOption) + " 0 shows no jobs";
  std::string text = options.failed ? "no failed jobs" : "no jobs";
  const std::string way = records.count() == 0 ? wayToLoggedJobs(places) : "";
  if (!way.empty()) text.append(" in ").append(places.jobFile).append("; ").append(way);
  return text;
}

}  // namespace

int list(const ListOptions& options, const Screen& screen) {
  const Places places = placesOf(options.sharedFolder, options.copy, workersShared);
  const Value records = recordsAt(places);
  JobList jobs = listedJobs(records, places);
  const std::string running = options.failed && places.isCopy ? runningText(jobs) : "";
  if (options.failed) jobs = failedOnes(std::move(jobs));
  if (!options.last.empty()) jobs = lastOnes(std::move(jobs), countIn(options.last, kLastOption));
  if (screen.json) {
    for (const ListedJob& job : jobs) {
      screen.out << jsonLine(forMachines(job)) << '\n';
    }
    return kSuccess;
  }
  if (jobs.empty()) {
    showLines({noJobsText(options, records, places)}, screen);
  } else {
    showTable(tableOf(jobs), screen);
    tellOfJobFile(jobs, places, screen);
  }
  if (!running.empty()) showLines({running}, screen);
  tellWhatWasNotLookedAt(places, screen);
  return kSuccess;
}

int show(const OneJobOptions& options, const Screen& screen) {
  const Places places = placesOf(options.sharedFolder, options.copy, workersShared);
  const Value record = requiredRecord(places, options.logId);
  const auto processes =
      places.isCopy ? std::vector<platform::RunningProcess>() : platform::runningProcesses();
  const ListedJob job = listedJob(record, stretchIn(places, record), places, processes);
  if (screen.json) {
    const JobTimes times = timesOf(job.log);
    const Look look = {.record = record,
                       .status = job.status,
                       .elapsed = times.length,
                       .times = times.controllers};
    screen.out << jsonText(recordWithStatus(recordWithTimes(look), job.status, job.shortfall))
               << std::endl;
    return kSuccess;
  }
  showJob(job, places, screen);
  const std::string text = platform::printJson(record).value_or("null");
  screen.out << displayLines(text, screen.charset) << std::endl;
  return kSuccess;
}

int watch(const OneJobOptions& options, const Surroundings& surroundings) {
  const std::string sharedFolder = workersShared(options.sharedFolder);
  const Value record = requiredRecord(placesIn(sharedFolder), options.logId);
  const LogStretch log = stretchIn(sharedFolder, record);
  requireOpen(options.logId, sharedFolder, record, log);
  // Looked up before the end: the settings go with the application.
  const Installation installation = installationOf(withoutSlashAtEnd(options.bundle));
  ForeignWorker worker(options.logId, sharedFolder);
  Past past = pastOf(record, log, surroundings.clock);
  past.startFault = [&](const Value& waiting) { return whyNotToStart(waiting, sharedFolder); };
  const Look finished = followToTheEnd(options.logId, sharedFolder, worker, surroundings, past);
  if (finished.status.command == job::kUpdateSW) {
    return endOfInstallation(finished, installation, sharedFolder, surroundings.screen);
  }
  return endOfJob(finished, sharedFolder, surroundings.screen);
}

Command listCommand() {
  std::vector<Option> options = placesAndJson();
  options.push_back({.names = {kFailedFlag},
                     .kind = ValueKind::none,
                     .description = "Show the jobs that did not come to a good end"});
  options.push_back(
      {.names = {kLastOption}, .valueName = "N", .description = "Show the last N of them"});
  return {
      .name = "list",
      .description = "Show the jobs of the job file as a table",
      .options = std::move(options),
      .footer =
          "Start and length are told where the log tells them, which has no dates; a \"+\" is\n"
          "behind the length up to now of a job that is not finished. \"WAIT, taken\" is a job\n"
          "that a worker took, and whose record does not tell what became of it.\n"
          "Examples:\n"
          "  kelvane-console list --shared ~/Shared\n"
          "  kelvane-console list --shared ~/Shared --failed --last 5\n"
          "  kelvane-console list --job-file ~/Mail/BGPLog.json",
      .run = runList};
}

Command showCommand() {
  return oneJobCommand("show", "Show one job whole", placesAndJson(), runShow);
}

Command watchCommand() {
  Command command = oneJobCommand("watch", "Follow a job that someone else started",
                                  {sharedOption(), bundleOption(), jsonFlag()}, runWatch);
  command.footer.insert(
      0,
      "The time that is shown is the job's, where the log tells when it began. What became of\n"
      "the job is told, and is the exit status, as by the sub-command that submits one: of an\n"
      "installation what stands there afterwards is compared with the package; where no bundle\n"
      "is given, it cannot be, and the exit status is 1.\n");
  return command;
}

}  // namespace kelvane::console
