// What the console makes of a job's record for machines, where that says more than the record.
#pragma once

#include <string>

#include "console/job/JobStatus.h"
#include "platform/Value.h"

namespace kelvane::console {

// The key that the console adds to a record that it shows; its value is an object.
inline constexpr char kStatusKey[] = "console_status";

// The keys in it.
namespace status_key {

// True where no worker for a job that is not finished is seen; else missing.
inline constexpr char kNoWorker[] = "no_worker";
// A list of "wwn", "standing" (a word) and the percentages, as far as they are known.
inline constexpr char kControllers[] = "controllers";
inline constexpr char kStanding[] = "standing";
inline constexpr char kShortfall[] = "shortfall";  // what a job with result 0 did not do; a text

}  // namespace status_key

// This record of the job with the object that tells its status, where there is anything to tell.
platform::Value recordWithStatus(platform::Value record, const JobStatus& status,
                                 const std::string& shortfall);

}  // namespace kelvane::console
