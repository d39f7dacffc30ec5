// How long a job took, as its stretch of the log tells.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "console/job/Course.h"
#include "console/job/LogStretch.h"

namespace kelvane::console {

struct JobTimes {
  std::optional<std::chrono::milliseconds> length = {};  // of one that has ended
  std::vector<ControllerTimes> controllers = {};         // the phases that are over
};

// From the first line to the last; nothing where another worker's lines may be behind the job's.
std::optional<std::chrono::milliseconds> lengthInLog(const LogStretch& log);

// Nothing of a stretch that is mixed.
JobTimes timesOf(const LogStretch& log);

}  // namespace kelvane::console
