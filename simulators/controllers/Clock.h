// The simulated controllers' time.
#pragma once

#include <functional>
#include <optional>

namespace kelvane::simulator {

// Seconds since the beginning of 1970, for all processes the same.
using TimeOfDay = std::function<double()>;

// The system's; it never goes back within a process.
double systemTimeOfDay();

class Clock {
 public:
  // With a number of seconds, time stands still but for that much at every progress query;
  // without, it is the time of day.
  explicit Clock(TimeOfDay timeOfDay, std::optional<double> secondsPerQuery = {});

  double seconds() const { return secondsPerQuery_ ? simulated_ : timeOfDay_(); }
  double timeOfDay() const { return timeOfDay_(); }
  // After a progress query has been answered.
  void queryAnswered() { simulated_ += secondsPerQuery_.value_or(0); }

 private:
  TimeOfDay timeOfDay_;
  std::optional<double> secondsPerQuery_;
  double simulated_ = 0;
};

}  // namespace kelvane::simulator
