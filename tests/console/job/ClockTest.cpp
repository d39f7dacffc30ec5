// The real clock and interrupts; each in a process of its own, so that no other test is
// interrupted.

#include <csignal>

#include <gtest/gtest.h>
#include <unistd.h>

#include "console/job/Clock.h"

namespace kelvane::console {
namespace {

constexpr std::chrono::hours kLong(1);

TEST(SystemClock, InterruptBeforeTheWaitEndsItAtOnce) {
  EXPECT_EXIT(
      {
        SystemClock clock;
        std::raise(SIGINT);
        ::_exit(clock.wait(kLong) ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

// Else what is written to a terminal at that moment fails, and with it the console.
TEST(SystemClock, AnInterruptDoesNotEndTheCallsThatAreUnderWay) {
  EXPECT_EXIT(
      {
        const SystemClock clock;
        struct sigaction action = {};
        ::sigaction(SIGINT, nullptr, &action);
        ::_exit((static_cast<unsigned>(action.sa_flags) & SA_RESTART) != 0 ? 7 : 1);
      },
      ::testing::ExitedWithCode(7), "");
}

TEST(SystemClock, WaitsWhereNobodyInterrupts) {
  SystemClock clock;
  EXPECT_TRUE(clock.wait(std::chrono::milliseconds(0)));
}

TEST(SystemClock, NeverGoesBack) {
  SystemClock clock;
  const std::chrono::milliseconds before = clock.now();
  EXPECT_GE(clock.now(), before);
}

TEST(SystemClock, SecondInterruptEndsTheProcess) {
  EXPECT_EXIT(
      {
        SystemClock clock;
        std::raise(SIGINT);
        std::raise(SIGINT);
        ::_exit(0);
      },
      ::testing::KilledBySignal(SIGINT), "");
}

}  // namespace
}  // namespace kelvane::console
