#include "platform/PropertyListDate.h"

#include <chrono>
#include <ctime>

namespace kelvane::platform {

// Not by the system's own reckoning, whose seconds end in 2038 where they have 32 bits.
std::optional<Date> dateFromText(const std::string& text) {
  namespace chrono = std::chrono;

  std::tm time = {};
  if (::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%SZ", &time) == nullptr) return {};
  const chrono::year_month_day monthsStart(chrono::year(time.tm_year + 1900),
                                           chrono::month(static_cast<unsigned>(time.tm_mon) + 1),
                                           chrono::day(1));
  const chrono::seconds days = chrono::sys_days(monthsStart).time_since_epoch();
  const chrono::seconds rest = chrono::days(time.tm_mday - 1) + chrono::hours(time.tm_hour) +
                               chrono::minutes(time.tm_min) + chrono::seconds(time.tm_sec);
  return Date{(days + rest).count()};
}

}  // namespace kelvane::platform
