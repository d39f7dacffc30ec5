#include "simulators/controllers/Clock.h"

#include <chrono>
#include <utility>

namespace kelvane::simulator {
namespace {

template <typename SomeClock>
double secondsOf() {
  return std::chrono::duration<double>(SomeClock::now().time_since_epoch()).count();
}

}  // namespace

double systemTimeOfDay() {
  using std::chrono::steady_clock;
  using std::chrono::system_clock;
  static const double start = secondsOf<system_clock>() - secondsOf<steady_clock>();
  return start + secondsOf<steady_clock>();
}

Clock::Clock(TimeOfDay timeOfDay, std::optional<double> secondsPerQuery)
    : timeOfDay_(std::move(timeOfDay)), secondsPerQuery_(secondsPerQuery) {}

}  // namespace kelvane::simulator
