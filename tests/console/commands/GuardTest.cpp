// Failures as messages and exit codes.

#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "console/commands/Guard.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

class Guard : public ::testing::Test {
 protected:
  std::ostringstream messages;
};

TEST_F(Guard, WithoutAFailureNothingIsSaid) {
  EXPECT_EQ(guarded(messages, Charset::ascii, [] { return kJobFailed; }), kJobFailed);
  EXPECT_EQ(messages.str(), "");
}

TEST_F(Guard, AFailureIsToldSafelyAndHasItsExitCode) {
  EXPECT_EQ(guarded(messages, Charset::ascii,
                    []() -> int { throw Failure(kNotFound, "no job \x1b[2J"); }),
            kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job ?[2J\n");
}

TEST_F(Guard, DetailsAreLinesBelow) {
  guarded(messages, Charset::ascii, []() -> int {
    throw Failure(kJobFailed, "not installed", {"rm: a\x1b", "cp: b"});
  });
  EXPECT_EQ(messages.str(), "kelvane-console: not installed\n  rm: a?\n  cp: b\n");
}

TEST_F(Guard, LongMessagesAreWrappedAtWords) {
  guarded(
      messages, Charset::ascii,
      []() -> int { throw Failure(kJobFailed, "the worker ended", {"rm: one two three four"}); },
      20);
  EXPECT_EQ(messages.str(), "kelvane-console: the\nworker ended\n  rm: one two three\n  four\n");
}

TEST_F(Guard, WhatIsForeseenNowhereIsAnInternalError) {
  EXPECT_EQ(guarded(messages, Charset::ascii, []() -> int { throw std::runtime_error("odd"); }),
            kInternalError);
  EXPECT_EQ(messages.str(), "kelvane-console: odd\n");
}

}  // namespace
}  // namespace kelvane::console
