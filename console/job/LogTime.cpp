#include "console/job/LogTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "platform/Text.h"

namespace kelvane::console {

using std::chrono::hours;
using std::chrono::seconds;

std::optional<seconds> timeOfDay(const std::string& time) {
  constexpr std::size_t kForm = 8;  // "14:03:07"
  if (time.size() != kForm || time[2] != ':' || time[5] != ':') return std::nullopt;
  std::array<int, 3> parts = {};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const char* const start = time.data() + 3 * i;
    const auto [rest, failed] = std::from_chars(start, start + 2, parts[i]);
    if (failed != std::errc() || rest != start + 2 || parts[i] < 0) return std::nullopt;
  }
  if (parts[0] > 23 || parts[1] > 59 || parts[2] > 60) return std::nullopt;  // 60: a leap second
  return hours(parts[0]) + std::chrono::minutes(parts[1]) + seconds(parts[2]);
}

std::string clockText(seconds timeOfDay) {
  const auto all = static_cast<long>(timeOfDay.count());
  return platform::format("%02ld:%02ld:%02ld", all / 3600, all / 60 % 60, all % 60);
}

seconds timePassed(seconds from, seconds to) {
  constexpr hours kDay(24);
  const seconds step = to - from;
  return step < -kDay / 2 ? step + kDay : std::max(step, seconds(0));
}

bool LogClock::take(const std::string& time) {
  const std::optional<seconds> now = console::timeOfDay(time);
  if (!now) return false;
  if (last_) passed_ += timePassed(*last_, *now);
  last_ = now;
  return true;
}

}  // namespace kelvane::console
