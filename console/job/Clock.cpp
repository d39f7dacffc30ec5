#include "console/job/Clock.h"

#include <csignal>
#include <ctime>

namespace kelvane::console {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int /*signal*/) { interrupted = 1; }

}  // namespace

std::chrono::seconds Clock::timeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  ::localtime_r(&now, &local);
  return std::chrono::hours(local.tm_hour) + std::chrono::minutes(local.tm_min) +
         std::chrono::seconds(local.tm_sec);
}

SystemClock::SystemClock() {
  struct sigaction action = {};
  action.sa_handler = noteInterrupt;
  // What is being written goes on, and so does the console; wait() ends early all the same.
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  ::sigaction(SIGINT, &action, nullptr);
}

std::chrono::milliseconds SystemClock::now() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

bool SystemClock::wait(std::chrono::milliseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const std::chrono::nanoseconds rest = time - seconds;
  std::timespec span = {};
  span.tv_sec = static_cast<std::time_t>(seconds.count());
  span.tv_nsec = static_cast<decltype(span.tv_nsec)>(rest.count());
  if (interrupted == 0) ::nanosleep(&span, nullptr);  // a signal ends it early: one look more
  return interrupted == 0;
}

}  // namespace kelvane::console
