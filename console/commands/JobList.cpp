#include "console/commands/JobList.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "console/display/JobText.h"
#include "console/display/StatusForMachines.h"
#include "console/explain/Shortfall.h"
#include "console/job/JobTimes.h"
#include "console/job/Processes.h"
#include "console/job/UnwrittenJob.h"
#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

bool mayBeDone(const ListedJob& listed) {
  return listed.record.isDictionary() && mayHaveBeenDone(listed.record, listed.log);
}

bool hasFailed(const ListedJob& listed) {
  const JobStatus& status = listed.status;
  if (!listed.record.isDictionary()) return false;
  if (status.isFinished()) return !status.hasSucceeded() || !listed.shortfall.empty();
  return (status.hasNoWorker && status.state == job::kRun) || mayBeDone(listed);
}

// "RUN", "RUN, no worker", "WAIT, taken"
std::string stateText(const ListedJob& listed) {
  const JobStatus& status = listed.status;
  if (mayBeDone(listed)) return status.state + ", taken";
  return status.hasNoWorker && status.state == job::kRun ? status.state + ", no worker"
                                                         : status.state;
}

// A job that runs has neither result nor text yet, a firmware job its controllers instead.
std::string outcomeText(const ListedJob& listed) {
  const JobStatus& status = listed.status;
  if (mayBeDone(listed)) return whatMayHaveBeenDone(listed.record, listed.log);
  if (!listed.shortfall.empty()) return status.resultText + ", but " + listed.shortfall;
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

bool hasStart(const ListedJob& listed) { return listed.log.history.has_value(); }

// "2:05"; "2:05+" of a job that was not finished then.
std::string lengthText(const ListedJob& listed) {
  const auto length = lengthInLog(listed.log);
  return length ? timeText(*length) + (listed.status.isFinished() ? "" : "+") : "";
}

// Log id, command and state.
std::vector<std::string> nameCells(const ListedJob& listed) {
  if (!listed.record.isDictionary()) return {"-", "(no record)", ""};
  return {logIdText(listed.record), listed.status.command, stateText(listed)};
}

void addRow(const ListedJob& listed, bool withTimes, Table& table) {
  const JobStatus& status = listed.status;
  std::vector<std::string> row = nameCells(listed);
  if (withTimes) {
    row.push_back(hasStart(listed) ? listed.log.history->start : "");
    row.push_back(lengthText(listed));
  }
  row.push_back(status.isFinished() ? resultNumber(status.result) + status.otherResult : "");
  row.push_back(outcomeText(listed));
  table.addRow(std::move(row));
}

}  // namespace

ListedJob listedJob(const Value& record, LogStretch log, const Places& places,
                    const std::vector<platform::RunningProcess>& processes) {
  ListedJob listed{.record = record, .status = statusOf(record, log)};
  listed.log = std::move(log);
  const std::string& logId = listed.status.logId;
  if (!places.isCopy && !workerRuns(logId, places.sharedFolder, processes)) {
    markWithoutWorker(listed.status);
  }
  listed.shortfall = shortfallAt(places, record, listed.log);
  return listed;
}

JobList listedJobs(const Value& records, const Places& places) {
  JobList jobs;
  const JobsLog log(places);
  const auto processes =
      places.isCopy ? std::vector<platform::RunningProcess>() : platform::runningProcesses();
  for (const Value& record : records.elements()) {
    jobs.push_back(record.isDictionary()
                       ? listedJob(record, log.stretchOf(record), places, processes)
                       : ListedJob{.record = record});
  }
  return jobs;
}

JobList failedOnes(JobList jobs) {
  std::erase_if(jobs, [](const ListedJob& listed) { return !hasFailed(listed); });
  return jobs;
}

JobList lastOnes(JobList jobs, std::size_t count) {
  const std::size_t others = jobs.size() - std::min(jobs.size(), count);
  jobs.erase(jobs.begin(), jobs.begin() + static_cast<std::ptrdiff_t>(others));
  return jobs;
}

Table tableOf(const JobList& jobs) {
  const bool withTimes = std::any_of(jobs.begin(), jobs.end(), hasStart);
  std::vector<Column> columns = {{"Log id", true}, {"Command"}, {"State"}};
  if (withTimes) {
    columns.push_back({"Start"});
    columns.push_back({"Length", true});
  }
  columns.push_back({"Result", true});
  columns.push_back({"Text"});
  Table table(std::move(columns));
  for (const ListedJob& listed : jobs) addRow(listed, withTimes, table);
  return table;
}

Value forMachines(const ListedJob& job) {
  if (!job.record.isDictionary()) return job.record;

  Value told = Value::dictionary();
  if (hasStart(job)) told.set(listed::kStart, job.log.history->start);
  if (const auto length = lengthInLog(job.log)) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*length);
    told.set(listed::kSeconds, Value::integer(seconds.count()));
  }
  if (mayBeDone(job)) told.set(listed::kMayBeDone, Value::boolean(true));
  Value record = job.record;
  if (!told.entries().empty()) record.set(listed::kToldByLog, told);
  return recordWithStatus(std::move(record), job.status, job.shortfall);
}

}  // namespace kelvane::console
