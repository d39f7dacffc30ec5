// The explanation of a job by its record and its stretch of the log.
#pragma once

#include <string>
#include <vector>

#include "console/explain/Explanation.h"
#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "platform/Value.h"

namespace kelvane::console {

// What is known of a job besides its record, which is a dictionary with a log id.
struct JobCircumstances {
  bool workerRuns = false;
  LogStretch log = {};
  // Whether all is a copy from another system: neither workers nor the files that the record names
  // are looked for.
  bool isCopy = false;
  bool isFromLog = false;                       // whether the record is what the log shows last
  std::vector<std::string> standardError = {};  // what was kept of the worker's
  // Why the worker can update no job of the job file: of another record; empty where nothing is
  // seen.
  std::string jobFileFault = {};
  std::string sharedFolder = {};  // ends with "/"; empty where it is not at hand
  // Of a copy: whether what may have been kept of the worker's standard error is not at hand.
  bool lacksStandardError = false;
  // Where no application stands though the shared folder's settings say so; else empty.
  std::string missingApplication = {};
};

// Why no job of these places' job file can be updated; empty where nothing is seen. Never raises.
std::string jobFileFaultAt(const Places& places);

// What these places tell of any job, without its log and its worker.
JobCircumstances circumstancesOf(const Places& places);

// What these places tell of the record.
JobCircumstances circumstancesAt(const Places& places, const platform::Value& record);

Explanation explainJob(const platform::Value& record, const JobCircumstances& circumstances);

}  // namespace kelvane::console
