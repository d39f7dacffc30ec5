// Times in the log, which has no dates.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace kelvane::console {

// The time since midnight of "14:03:07"; nothing of any other text.
std::optional<std::chrono::seconds> timeOfDay(const std::string& time);

// "14:03:07" of a time since midnight.
std::string clockText(std::chrono::seconds timeOfDay);

// How much time passed from one line to the next one. A time far below the one before is of the
// next day; by less the clock was set back, and no time has passed.
std::chrono::seconds timePassed(std::chrono::seconds from, std::chrono::seconds to);

// The time that passes from line to line.
class LogClock {
 public:
  // Whether the line has a time; by one that has none, none passes.
  bool take(const std::string& time);

  // Since the first line that has one.
  std::chrono::seconds passed() const { return passed_; }
  // That of the last line that has one; 0 before there is one.
  std::chrono::seconds timeOfDay() const { return last_.value_or(std::chrono::seconds(0)); }

 private:
  std::optional<std::chrono::seconds> last_;
  std::chrono::seconds passed_{0};
};

}  // namespace kelvane::console
