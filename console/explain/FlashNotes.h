// What is to be told of a firmware job's controllers besides its result.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// The controller that a job ended at.
struct FailedController {
  std::string wwn;
  std::size_t index = 0;  // of its input entry
  std::string progress;   // "failed at 90%, 1 done, 1 not started"
  std::string fault;      // the log's line that tells it; empty where none does
  std::string lastStep;   // the log's last line of it
  std::string product;    // as the log tells it
  bool isQvxf = false;
  bool isAtImage = false;  // whether it failed when its image was looked at, before any flash
};

// Of a finished firmware job with a result other than 0; nothing where it cannot be told.
std::optional<FailedController> failedController(const platform::Value& record,
                                                 const LogStretch& log);

// A line each of the CPLDs that were not flashed, or not at once: "5000A1: its CPLD's flash was
// tried again once".
std::vector<std::string> cpldNotes(const platform::Value& record, const LogStretch& log);

// The controllers whose CPLD was to be flashed and was not, as far as that is told.
std::vector<std::string> controllersWithoutCpld(const platform::Value& record,
                                                const LogStretch& log);

// The CPLDs' lines, and one of the controller that the job ended at: what a followed job ends with.
std::vector<std::string> flashNotes(const platform::Value& record, const LogStretch& log);

}  // namespace kelvane::console
