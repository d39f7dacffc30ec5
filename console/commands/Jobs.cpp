#include "console/commands/Jobs.h"

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/JobText.h"
#include "console/display/Packages.h"
#include "console/display/Paragraphs.h"
#include "console/display/Table.h"
#include "console/display/TimeText.h"
#include "console/explain/FlashNotes.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/JobTimes.h"
#include "console/job/LogStretch.h"
#include "console/job/Processes.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

Value requiredRecord(const JobFile& file, const std::string& logId) {
  requireText(logId, "the log id");
  const Value records = file.read();  // raises where it is damaged
  Value record = file.find(logId);
  if (record.isNothing()) {
    throw Failure(kNotFound, "no job " + logId + " in " + file.path());
  }
  return record;
}

// "RUN", "RUN, no worker"
std::string stateText(const JobStatus& status) {
  return status.hasNoWorker && status.state == job::kRun ? status.state + ", no worker"
                                                         : status.state;
}

// A job that runs has neither result nor text yet, a firmware job its controllers instead.
std::string outcomeText(const JobStatus& status) {
  std::string progress = progressText(status);
  if (status.state == job::kRun) return progress;
  if (status.hasSucceeded() || !status.isFinished() || progress.empty()) return status.resultText;
  return status.resultText + " (" + progress + ")";
}

std::string logIdText(const Value& record) {
  const Value& logId = record.get(job::kLogId);
  if (logId.isNothing()) return "-";
  return logId.isString() ? logId.string() : platform::describe(logId) + " (no string)";
}

Table tableOf(const Value& records, const std::string& sharedFolder) {
  Table table({{"Log id", true}, {"Command"}, {"State"}, {"Result", true}, {"Text"}});
  const auto processes = platform::runningProcesses();
  for (const Value& record : records.elements()) {
    if (!record.isDictionary()) {
      table.addRow({"-", "(no record)", "", "", ""});
      continue;
    }
    JobStatus status = statusOf(record);
    if (!workerRuns(status.logId, sharedFolder, processes)) markWithoutWorker(status);
    table.addRow({logIdText(record), status.command, stateText(status),
                  status.isFinished() ? resultNumber(status.result) : "", outcomeText(status)});
  }
  return table;
}

Table controllersOf(const JobStatus& status) {
  Table table({{"Controller"}, {"Phase"}, {"CPLD", true}, {"Firmware", true}, {"Total", true}});
  for (const ControllerStatus& one : status.controllers) {
    table.addRow({one.wwn.empty() ? "(no WWN)" : one.wwn, phaseOf(one), percentText(one.cpld),
                  percentText(one.firmware), percentText(one.total)});
  }
  return table;
}

// Of a waiting job, that a worker had taken it already.
void tellOfEarlierWorker(const Value& record, const LogStretch& log, const Screen& screen) {
  if (!mayHaveBeenDone(record, log)) return;
  showLines({"a worker took this job and could not write what became of it: " +
             whatMayHaveBeenDone(record, log) + "; see \"kelvane-console explain\""},
            screen);
}

void showTimes(const JobTimes& times, const Screen& screen) {
  if (times.length && *times.length >= std::chrono::seconds(1)) {
    screen.out << "took " << timeText(*times.length) << '\n';
  }
  showLines(timeLines(times.controllers), screen);
}

void showAll(const JobStatus& status, const Value& record, const LogStretch& log,
             const Screen& screen) {
  screen.out << jobLine(status, screen.charset) << '\n';
  tellOfEarlierWorker(record, log, screen);
  screen.out << "command " << displayText(status.command, screen.charset) << '\n';
  if (status.isFinished()) screen.out << resultLine(status, screen.charset) << '\n';
  if (!status.controllers.empty()) showTable(controllersOf(status), screen);
  showTimes(timesOf(log), screen);
  showLines(flashNotes(record, log), screen);
  showPackages(record, screen);
}

// --- the sub-commands

constexpr char kJob[] = "log_id";

OneJobOptions oneJobOptionsOf(const Given& given) {
  return {.sharedFolder = given.text(kSharedOption), .logId = given.text(kJob)};
}

int runList(const Given& given, const Screen& screen) {
  return list({.sharedFolder = given.text(kSharedOption)}, screen);
}

int runShow(const Given& given, const Screen& screen) {
  return show(oneJobOptionsOf(given), screen);
}

int runWatch(const Given& given, const Surroundings& surroundings) {
  return watch(oneJobOptionsOf(given), surroundings);
}

Command oneJobCommand(const std::string& name, const std::string& description, const Run& run) {
  return {.name = name,
          .description = description,
          .options = {sharedOption(), jsonFlag()},
          .arguments = {{.names = {kJob},
                         .valueName = "LOG_ID",
                         .description = "The job",
                         .required = true}},
          .footer = "Example:\n  kelvane-console " + name + " --shared ~/Shared 17",
          .run = run};
}

}  // namespace

int list(const ListOptions& options, const Screen& screen) {
  const std::string sharedFolder = workersShared(options.sharedFolder);
  const Value records = JobFile(sharedFolder).read();
  if (!screen.json) {
    if (records.count() == 0) {
      showLines({"no jobs"}, screen);
    } else {
      showTable(tableOf(records, sharedFolder), screen);
    }
    return kSuccess;
  }
  for (const Value& record : records.elements()) {
    screen.out << platform::printJsonLine(record).value_or("null") << '\n';
  }
  return kSuccess;
}

int show(const OneJobOptions& options, const Screen& screen) {
  const std::string sharedFolder = workersShared(options.sharedFolder);
  const Value record = requiredRecord(JobFile(sharedFolder), options.logId);
  const LogStretch log = stretchIn(sharedFolder, record);
  JobStatus status = statusOf(record, log);
  if (screen.json) {
    const JobTimes times = timesOf(log);
    const Look look = {
        .record = record, .status = status, .elapsed = times.length, .times = times.controllers};
    screen.out << platform::printJson(recordWithTimes(look)).value_or("null") << std::endl;
    return kSuccess;
  }
  if (!workerRuns(options.logId, sharedFolder)) markWithoutWorker(status);
  showAll(status, record, log, screen);
  const std::string text = platform::printJson(record).value_or("null");
  screen.out << displayLines(text, screen.charset) << std::endl;
  return kSuccess;
}

int watch(const OneJobOptions& options, const Surroundings& surroundings) {
  const std::string sharedFolder = workersShared(options.sharedFolder);
  const Value record = requiredRecord(JobFile(sharedFolder), options.logId);
  const LogStretch log = stretchIn(sharedFolder, record);
  if (!surroundings.screen.json && !workerRuns(options.logId, sharedFolder)) {
    tellOfEarlierWorker(record, log, surroundings.screen);
  }
  ForeignWorker worker(options.logId, sharedFolder);
  const Look finished = followToTheEnd(options.logId, sharedFolder, worker, surroundings,
                                       pastOf(record, log, surroundings.clock));
  if (!surroundings.screen.json) showPackages(finished.record, surroundings.screen);
  return exitCodeOf(finished);
}

Command listCommand() {
  return {.name = "list",
          .description = "Show the jobs of the job file as a table",
          .options = {sharedOption(), jsonFlag()},
          .footer = "Example:\n  kelvane-console list --shared ~/Shared",
          .run = runList};
}

Command showCommand() { return oneJobCommand("show", "Show one job whole", runShow); }

Command watchCommand() {
  Command command = oneJobCommand("watch", "Follow a job that someone else started", runWatch);
  command.footer.insert(
      0, "The time that is shown is the job's, where the log tells when it began.\n");
  return command;
}

}  // namespace kelvane::console
