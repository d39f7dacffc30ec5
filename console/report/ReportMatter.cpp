#include "console/report/ReportMatter.h"

#include <algorithm>
#include <ctime>
#include <iterator>

#include "console/application/InstallationFault.h"
#include "console/checks/SettingsChecks.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/JobStatus.h"
#include "console/job/LoggedRecords.h"
#include "console/job/StandardError.h"
#include "console/report/DiskEntries.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

bool isJob(const Value& record, const std::string& logId) {
  if (!record.isDictionary() || !record.get(job::kLogId).isString()) return false;
  return logId.empty() || record.get(job::kLogId).string() == logId;
}

void findRecord(const Value& records, const std::string& logId, ReportMatter& matter) {
  matter.count = records.count();
  for (std::size_t i = records.count(); i > 0; --i) {
    if (!isJob(records.at(i - 1), logId)) continue;
    matter.record = records.at(i - 1);
    matter.place = i - 1;
    return;
  }
}

// Where the job file cannot be read, the log may show the job.
void findRecordInLog(ReportMatter& matter) {
  const Places& places = matter.subject.places;
  if (places.jobFile.empty() || places.log.empty()) return;
  try {
    const Value records = lastRecordsIn(parseLog(readLogAt(places.log)));
    if (records.isArray()) findRecord(records, matter.subject.logId, matter);
  } catch (const Failure&) {
    return;  // told with the log
  }
  matter.isFromLog = matter.hasJob();
}

// What the job file no longer holds, or held never, the log may show.
void tellEmptyJobFile(ReportMatter& matter) {
  const std::string& path = matter.subject.places.jobFile;
  findRecordInLog(matter);
  if (!matter.isFromLog) return;
  matter.jobFileFault = path;
  matter.jobFileFault += platform::exists(path) ? " holds no records" : " does not exist";
}

void readJobFile(ReportMatter& matter) {
  const ReportSubject& subject = matter.subject;
  try {
    const Places& places = subject.places;
    findRecord(places.jobFile.empty() ? recordsAt(places) : JobFile::at(places.jobFile).read(),
               subject.logId, matter);
  } catch (const Failure& failure) {
    matter.jobFileFault = failure.what();
    findRecordInLog(matter);
    return;
  }
  if (!matter.hasJob() && matter.count == 0) tellEmptyJobFile(matter);
  if (matter.hasJob() || subject.logId.empty()) return;
  throw Failure(kNotFound, "no job " + subject.logId + " in " + sourceOfRecords(subject.places) +
                               wayToLoggedJob(subject.places, subject.logId));
}

void readJobsLog(ReportMatter& matter) {
  try {
    std::vector<LogEntry> all = parseLog(readLogAt(logPathOf(matter.subject.places)));
    if (!matter.hasJob()) {
      const std::size_t count = std::min(all.size(), kEntriesWithoutAJob);
      matter.entries.assign(std::make_move_iterator(all.end() - static_cast<std::ptrdiff_t>(count)),
                            std::make_move_iterator(all.end()));
      return;
    }
    matter.log = stretchOf(all, matter.record);
    const auto entries = entriesOf(all, matter.record);
    matter.entries.assign(entries.begin(), entries.end());
  } catch (const Failure& failure) {
    matter.logAbsence = failure.what();
    matter.log.absence = failure.what();
  }
}

void compareInstallation(ReportMatter& matter, const JobStatus& status) {
  const ReportSubject& subject = matter.subject;
  if (status.command != job::kUpdateSW || !status.isFinished()) return;
  if (subject.bundle.empty() || subject.places.isCopy) return;
  const Value& inputs = matter.record.get(job::kInputParameters);
  const std::string installed = installedApplication(subject.bundle);
  if (!inputs.isDictionary() || !inputs.get(job::kFilePath).isString() || installed.empty()) return;
  const std::string& package = inputs.get(job::kFilePath).string();
  if (!platform::isFolder(package)) return;
  matter.installationFault = installationFault(package, installed);
  matter.isInstalled = matter.installationFault.empty();
}

}  // namespace

ReportMatter gatherReport(const ReportSubject& subject) {
  ReportMatter matter;
  matter.subject = subject;
  matter.made = timeTextWithZone(std::time(nullptr));
  readJobFile(matter);
  readJobsLog(matter);
  if (!matter.hasJob()) return matter;
  const JobStatus status = statusOf(matter.record);
  const Places& places = subject.places;
  matter.workerRuns = !places.isCopy && !lacksWorker(status.logId, places);
  if (!places.sharedFolder.empty()) {
    matter.standardError = standardErrorOf(places.sharedFolder, matter.record, matter.log);
  }
  if (status.command == job::kUpdateFW)
    matter.history = flashHistoryOf(matter.entries, matter.record);
  compareInstallation(matter, status);
  return matter;
}

}  // namespace kelvane::console
