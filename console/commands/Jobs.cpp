#include "console/commands/Jobs.h"

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/JobText.h"
#include "console/display/Packages.h"
#include "console/display/Table.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "contract/JobFile.h"
#include "platform/Json.h"

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

Table tableOf(const Value& records) {
  Table table({{"Log id", true}, {"Command"}, {"State"}, {"Result", true}, {"Text"}});
  for (const Value& record : records.elements()) {
    if (!record.isDictionary()) {
      table.addRow({"-", "(no record)", "", "", ""});
      continue;
    }
    const JobStatus status = statusOf(record);
    const Value& logId = record.get(job::kLogId);
    table.addRow({logId.isNumber() ? logId.digits() + " (no string)" : status.logId, status.command,
                  status.state, status.result, status.resultText});
  }
  return table;
}

std::string percentText(int percent) { return std::to_string(percent) + "%"; }

Table controllersOf(const JobStatus& status) {
  Table table({{"Controller"}, {"Phase"}, {"CPLD", true}, {"Firmware", true}, {"Total", true}});
  for (const ControllerStatus& one : status.controllers) {
    table.addRow({one.wwn, phaseOf(one), percentText(one.cpld), percentText(one.firmware),
                  percentText(one.total)});
  }
  return table;
}

void showAll(const JobStatus& status, const Value& record, const Screen& screen) {
  screen.out << jobLine(status, screen.charset) << '\n'
             << "command " << displayText(status.command, screen.charset) << '\n';
  if (status.isFinished()) screen.out << resultLine(status, screen.charset) << '\n';
  if (!status.controllers.empty()) showTable(controllersOf(status), screen);
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
  const Value records = JobFile(existingShared(options.sharedFolder)).read();
  if (!screen.json) {
    showTable(tableOf(records), screen);
    return kSuccess;
  }
  for (const Value& record : records.elements()) {
    screen.out << platform::printJsonLine(record).value_or("null") << '\n';
  }
  return kSuccess;
}

int show(const OneJobOptions& options, const Screen& screen) {
  const Value record = requiredRecord(JobFile(existingShared(options.sharedFolder)), options.logId);
  if (!screen.json) showAll(statusOf(record), record, screen);
  const std::string text = platform::printJson(record).value_or("null");
  screen.out << (screen.json ? text : displayLines(text, screen.charset)) << std::endl;
  return kSuccess;
}

int watch(const OneJobOptions& options, const Surroundings& surroundings) {
  const std::string sharedFolder = existingShared(options.sharedFolder);
  requiredRecord(JobFile(sharedFolder), options.logId);
  ForeignWorker worker(options.logId, sharedFolder);
  const Look finished = followToTheEnd(options.logId, sharedFolder, worker, surroundings);
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
  return oneJobCommand("watch", "Follow a job that someone else started", runWatch);
}

}  // namespace kelvane::console
