// What a report is made of, gathered once.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "console/checks/Finding.h"
#include "console/job/LogFile.h"
#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "console/report/FlashHistory.h"
#include "platform/Value.h"

namespace kelvane::console {

struct ReportSubject {
  std::string version = {};  // of the console
  Places places = {};
  std::string bundle = {};  // without "/" at its end; empty: it is not looked at
  std::string logId = {};   // empty: the last job
};

struct ReportMatter {
  ReportSubject subject;
  std::string made;  // when, local time

  // The job; nothing where there is none or the records cannot be read.
  platform::Value record;
  std::string jobFileFault;
  bool isFromLog = false;  // whether the record is as the log shows it, for the job file's fault
  std::size_t place = 0;   // of the record, counted from 0
  std::size_t count = 0;   // of all records
  bool workerRuns = false;

  LogStretch log;
  std::vector<LogEntry> entries;  // the job's; without a job those at the end of the log
  std::string logAbsence;
  FlashHistory history;
  // Of a finished installation: why what stands there is not the package, or that it is. Neither
  // where that cannot be told.
  std::string installationFault;
  bool isInstalled = false;
  std::vector<std::string> standardError;

  Findings findings;

  bool hasJob() const { return record.isDictionary(); }
};

// Without a job so many entries at the end of the log are taken.
inline constexpr std::size_t kEntriesWithoutAJob = 200;

// All but the findings. Raises Failure where a job is asked for that is not there; what cannot be
// read otherwise is told in its place.
ReportMatter gatherReport(const ReportSubject& subject);

}  // namespace kelvane::console
