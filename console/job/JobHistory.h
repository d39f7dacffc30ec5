// The history of a job: what the log tells of when it ran and how it went on.
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "console/job/LogFile.h"
#include "platform/Value.h"

namespace kelvane::console {

// The job's record as the worker wrote it at a moment.
struct Moment {
  std::chrono::milliseconds time{0};  // since the job's first line, to the second
  platform::Value record;
};

struct JobHistory {
  // A version of the job file, as the log shows it. Reading one is dear.
  struct Version {
    std::chrono::milliseconds time{0};
    std::string text;
  };

  std::string logId = {};
  std::string start = {};              // "14:03:07": the time of its first line
  std::chrono::seconds lastLine{0};    // its time of day
  std::chrono::seconds length{0};      // from the first line to the last
  std::vector<Version> versions = {};  // each differs from the one before it
};

// The history of the job with this log id by its lines of the log. Nothing where there is no line
// with a time.
std::optional<JobHistory> historyOf(std::span<const LogEntry> entries, const std::string& logId);

// The job's record in all versions in which it can be read; each differs from the one before it.
std::vector<Moment> momentsOf(const JobHistory& history);

}  // namespace kelvane::console
