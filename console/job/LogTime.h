// Times in the log, which has no dates.
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>

#include "console/job/LogFile.h"

namespace kelvane::console {

// The time since midnight of "14:03:07"; nothing of any other text.
std::optional<std::chrono::seconds> timeOfDay(const std::string& time);

// How long the entries took, from the first one to the last. A time far below the one before is of
// the next day; by less the clock was set back, and no time has passed.
std::chrono::seconds timeBetween(std::span<const LogEntry> entries);

}  // namespace kelvane::console
