// The jobs of a job file as list shows them: with what the log tells of each.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/display/Table.h"
#include "console/job/JobStatus.h"
#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "platform/RunningProcesses.h"
#include "platform/Value.h"

namespace kelvane::console {

// The keys that list adds to a record for machines, where the log tells of the job.
namespace listed {

inline constexpr char kToldByLog[] = "told_by_log";  // an object
// In it: "14:03:07", when its worker began; there are no dates.
inline constexpr char kStart[] = "start";
inline constexpr char kSeconds[] = "seconds";               // up to the job's last entry
inline constexpr char kMayBeDone[] = "may_have_been_done";  // true: of a waiting job; else missing

}  // namespace listed

struct ListedJob {
  platform::Value record;  // may be no dictionary: then there is nothing else
  JobStatus status = {};
  LogStretch log = {};
  std::string shortfall = {};  // what it did not do though its result is 0
};

using JobList = std::vector<ListedJob>;

// The job of this record, which is a dictionary, as these places and processes tell of it.
ListedJob listedJob(const platform::Value& record, LogStretch log, const Places& places,
                    const std::vector<platform::RunningProcess>& processes);

// All of these records, in their order; the log and the workers are those of the places.
JobList listedJobs(const platform::Value& records, const Places& places);

// Those that did not come to a good end: finished with another result than 0 or with none, or with
// 0 though not all was done; left by their worker, or taken by one that did not write what became
// of them.
JobList failedOnes(JobList jobs);

JobList lastOnes(JobList jobs, std::size_t count);

// With columns for start and length where the log tells any.
Table tableOf(const JobList& jobs);

// The record, with the keys above and recordWithStatus().
platform::Value forMachines(const ListedJob& job);

}  // namespace kelvane::console
