// The simulated controllers' time.
#pragma once

#include <optional>

namespace kelvane::simulator {

class Clock {
 public:
  // With a number of seconds, time stands still but for that much at every progress query;
  // without, it is the system's monotonic clock.
  explicit Clock(std::optional<double> secondsPerQuery = {}) : secondsPerQuery_(secondsPerQuery) {}

  double seconds() const;
  // After a progress query has been answered.
  void queryAnswered() { simulated_ += secondsPerQuery_.value_or(0); }

 private:
  std::optional<double> secondsPerQuery_;
  double simulated_ = 0;
};

}  // namespace kelvane::simulator
