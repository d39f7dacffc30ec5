#include "console/job/Places.h"

#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
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

// Whether the log shows what a job file that cannot be read does not.
bool logShowsRecords(const Places& places) {
  if (places.log.empty()) return false;
  try {
    return lastRecordsIn(parseLog(readLogAt(places.log))).count() > 0;
  } catch (const Failure&) {
    return false;
  }
}

Value recordsInJobFile(const Places& places) {
  try {
    return JobFile::at(places.jobFile).read();
  } catch (const Failure& failure) {
    if (!logShowsRecords(places)) throw;
    throw Failure(failure.exitCode(), std::string(failure.what()) +
                                          ". The log shows its jobs: give list, show, explain or "
                                          "report --log-file " +
                                          places.log + " in place of the folder");
  }
}

}  // namespace

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
  const Value records = recordsAt(places);
  for (std::size_t i = records.count(); i > 0; --i) {
    const Value& record = records.at(i - 1);
    if (record.isDictionary() && record.get(job::kLogId) == Value(logId)) return record;
  }
  throw Failure(kNotFound, "no job " + logId + " in " + sourceOfRecords(places));
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
  return text;
}

const char* kindOf(const Places& places) {
  if (!places.sharedFolder.empty()) return "shared folder";
  return places.jobFile.empty() ? "log" : "job file";
}

}  // namespace kelvane::console
