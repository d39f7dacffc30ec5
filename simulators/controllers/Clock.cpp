#include "simulators/controllers/Clock.h"

#include <chrono>

namespace kelvane::simulator {

double Clock::seconds() const {
  if (secondsPerQuery_) return simulated_;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

}  // namespace kelvane::simulator
