#include "console/job/Places.h"

#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/JobStatus.h"
#include "console/job/LogFile.h"
#include "console/job/LoggedRecords.h"
#include "console/job/Processes.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

Places placesIn(const std::string& sharedFolder) {
  return {.sharedFolder = sharedFolder,
          .jobFile = JobFile(sharedFolder).path(),
          .log = logPath(sharedFolder)};
}

const std::string& logPathOf(const Places& places) {
  if (places.log.empty()) {
    throw Failure(kBadUsage, "the log is not at hand: give it with --log-file, too");
  }
  return places.log;
}

namespace {

// As the log shows them last; nothing where it is not at hand or shows none.
Value loggedRecords(const Places& places) {
  if (places.log.empty()) return {};
  try {
    return lastRecordsIn(parseLog(readLogAt(places.log)));
  } catch (const Failure&) {
    return {};
  }
}

std::string wayTo(const Places& places) {
  const char* replaced = places.sharedFolder.empty()
                             ? " alone"
                             : " in place of the folder; report --shared tells it, too, with what "
                               "was kept of standard error";
  return "give list, show, explain or report --log-file " + places.log + replaced;
}

Value recordsInJobFile(const Places& places) {
  try {
    return JobFile::at(places.jobFile).read();
  } catch (const Failure& failure) {
    if (loggedRecords(places).count() == 0) throw;
    throw Failure(failure.exitCode(),
                  std::string(failure.what()) + ". The log shows its jobs: " + wayTo(places));
  }
}

// The last one that has the log id; nothing where none has.
Value recordOf(const std::string& logId, const Value& records) {
  for (std::size_t i = records.count(); i > 0; --i) {
    const Value& record = records.at(i - 1);
    if (record.isDictionary() && record.get(job::kLogId) == Value(logId)) return record;
  }
  return {};
}

}  // namespace

std::string wayToLoggedJobs(const Places& places) {
  if (places.jobFile.empty() || loggedRecords(places).count() == 0) return {};
  return "the log shows jobs: " + wayTo(places);
}

std::string wayToLoggedJob(const Places& places, const std::string& logId) {
  if (places.jobFile.empty() || recordOf(logId, loggedRecords(places)).isNothing()) return {};
  return ". The log shows it: " + wayTo(places);
}

Value recordsAt(const Places& places) {
  if (!places.jobFile.empty()) return recordsInJobFile(places);
  Value records = lastRecordsIn(parseLog(readLogAt(places.log)));
  if (records.isNothing()) throw Failure(kNotFound, places.log + " shows no records");
  return records;
}

const std::string& sourceOfRecords(const Places& places) {
  return places.jobFile.empty() ? places.log : places.jobFile;
}

Value recordAt(const Places& places, const std::string& logId) {
  Value record = recordOf(logId, recordsAt(places));
  if (!record.isNothing()) return record;
  throw Failure(kNotFound, "no " + jobName(logId) + " in " + sourceOfRecords(places) +
                               wayToLoggedJob(places, logId));
}

bool lacksWorker(const std::string& logId, const Places& places) {
  return !places.isCopy && !workerRuns(logId, places.sharedFolder);
}

std::string notLookedAt(const Places& places) {
  if (!places.isCopy) return {};
  std::string text = "this is a copy: whether a worker runs was not looked at";
  if (places.log.empty()) text += "; the log is not at hand";
  if (places.jobFile.empty()) {
    text += "; the job file is not at hand: the records are as the log shows them last";
  }
  if (places.sharedFolder.empty()) {
    text += "; what was kept of the worker's standard error is not at hand";
  }
  return text;
}

const char* kindOf(const Places& places) {
  if (!places.sharedFolder.empty()) return "shared folder";
  return places.jobFile.empty() ? "log" : "job file";
}

}  // namespace kelvane::console
