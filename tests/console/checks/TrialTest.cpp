#include <csignal>
#include <cstdio>
#include <stdexcept>

#include <gtest/gtest.h>
#include <unistd.h>

#include "console/checks/Trial.h"

namespace kelvane::console {
namespace {

constexpr std::chrono::seconds kLong{60};

TEST(Trial, TheAnswerIsWhatTheWorkTells) {
  const Trial trial = tryApart(kLong, [](const Tell& tell) {
    tell("one ");
    tell("two");
  });
  EXPECT_EQ(trial.answer, "one two");
  EXPECT_EQ(trial.fault, "");
  EXPECT_EQ(trial.complaints, "");
}

TEST(Trial, WhatTheWorkChangesStaysThere) {
  int here = 1;
  tryApart(kLong, [&here](const Tell& /*tell*/) { here = 2; });
  EXPECT_EQ(here, 1);
}

TEST(Trial, ACrashLeavesWhatWasToldBefore) {
  const Trial trial = tryApart(kLong, [](const Tell& tell) {
    tell("before");
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
  });
  EXPECT_EQ(trial.answer, "before");
  EXPECT_EQ(trial.fault, "ends with signal 11");
}

TEST(Trial, WorkThatHangsIsEndedWithItsTime) {
  const Trial trial = tryApart(std::chrono::seconds(0), [](const Tell& /*tell*/) {
    for (;;) ::pause();
  });
  EXPECT_EQ(trial.fault, "takes longer than 0 s");
}

TEST(Trial, WorkThatHasClosedItsEndAndHangsRingsTheAlarm) {
  const Trial trial = tryApart(kLong, [](const Tell& /*tell*/) { std::raise(SIGALRM); });
  EXPECT_EQ(trial.fault, "takes longer than 60 s");
}

TEST(Trial, AnExceptionEndsTheWorkAndNothingElse) {
  const Trial trial =
      tryApart(kLong, [](const Tell& /*tell*/) { throw std::runtime_error("the cause"); });
  EXPECT_EQ(trial.answer, "");
  EXPECT_EQ(trial.complaints, "the cause\n");
}

TEST(Trial, StandardErrorIsKeptAndStandardOutputIsNot) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  const Trial trial = tryApart(kLong, [](const Tell& /*tell*/) {
    std::puts("talk");
    std::fflush(stdout);
    std::fputs("a complaint\n", stderr);
  });
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(trial.complaints, "a complaint\n");
}

TEST(Trial, OfLongComplaintsTheBeginningIsKept) {
  const Trial trial = tryApart(kLong, [](const Tell& /*tell*/) {
    for (int i = 0; i < 10000; ++i) std::fputs("again ", stderr);
  });
  EXPECT_EQ(trial.complaints.size(), 4096U);
}

}  // namespace
}  // namespace kelvane::console
