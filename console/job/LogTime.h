// Times in the log, which has no dates.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kelvane::console {

// The time since midnight of "14:03:07"; nothing of any other text.
std::optional<std::chrono::seconds> timeOfDay(const std::string& time);

// How much time passed from one line to the next one. A time far below the one before is of the
// next day; by less the clock was set back, and no time has passed.
std::chrono::seconds timePassed(std::chrono::seconds from, std::chrono::seconds to);

}  // namespace kelvane::console
