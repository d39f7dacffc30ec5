// A job's stretch of the log: what the worker that ran it wrote.
#pragma once

#include <string>
#include <vector>

#include "console/job/LogFile.h"

namespace kelvane::console {

struct LogStretch {
  bool isFound = false;
  std::vector<std::string> errors;  // "14:03:07 getOnlineUpdateData: start: there is no path"
  std::string lastStep;             // the same form; empty where there was no step of its own
};

// The last stretch in which a worker took the job with this log id.
LogStretch stretchOf(const std::vector<LogEntry>& entries, const std::string& logId);

}  // namespace kelvane::console
