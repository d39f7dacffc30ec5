// The past of a job: what is known of it when a console begins to follow it.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/job/Clock.h"
#include "console/job/JobHistory.h"
#include "console/job/JobTimes.h"
#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// Times are the clock's.
struct Past {
  std::optional<std::chrono::milliseconds> start = {};  // of a job that runs
  JobTimes times = {};                                  // of a finished one
  std::vector<Moment> moments = {};
  // The stretch of the log of a finished job, for what its record does not tell; may be empty.
  std::function<LogStretch(const platform::Value& record)> log = {};
  // What a finished job with result 0 did not do, and why no worker is to be started for a waiting
  // one; may be empty.
  std::function<std::string(const platform::Value& record, const LogStretch& log)> shortfall = {};
  std::function<std::string(const platform::Value& record)> startFault = {};
};

// Of a job that is submitted now.
Past pastOfNewJob(Clock& clock);

// Of a job that someone else started, by its stretch of the log.
Past pastOf(const platform::Value& record, const LogStretch& log, Clock& clock);

}  // namespace kelvane::console
