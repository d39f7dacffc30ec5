// A firmware job's controllers over time, read out of the log.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/report/FlashHistory.h"
#include "tests/console/report/TimedLog.h"

namespace kelvane::console {
namespace {

using test::TimedLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// "0:40 50/0/25", each point.
std::vector<std::string> pointsOf(const ControllerHistory& controller) {
  std::vector<std::string> found;
  for (const HistoryPoint& point : controller.points) {
    found.push_back(std::to_string(point.at.count()) + " " + std::to_string(point.cpld) + "/" +
                    std::to_string(point.firmware) + "/" + std::to_string(point.total));
  }
  return found;
}

// "CPLD 3-40", each phase.
std::vector<std::string> phasesOf(const ControllerHistory& controller) {
  std::vector<std::string> found;
  for (const HistoryPhase& phase : controller.phases) {
    found.push_back(phase.name + " " + std::to_string(phase.from.count()) + "-" +
                    std::to_string(phase.to.count()));
  }
  return found;
}

// "12-72 (3)", each silence.
std::vector<std::string> silencesOf(const ControllerHistory& controller) {
  std::vector<std::string> found;
  for (const HistorySilence& silence : controller.silences) {
    found.push_back(std::to_string(silence.from.count()) + "-" +
                    std::to_string(silence.to.count()) + " (" + std::to_string(silence.lines) +
                    ")");
  }
  return found;
}

TEST(FlashHistory, TheCourseOfAController) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(3).step("flashCPLD", "flashCPLD start");
  log.pass(10).written({{50, 0, 25}});
  log.pass(10).written({{100, 0, 50}});
  log.step("flashCPLD", "flashCPLD end");
  log.pass(1).step("updateFW", "Start transferring image, please wait ...");
  log.pass(5).step("updateFW", "Start flashing image, please wait ...");
  log.pass(20).written({{100, 60, 80}});
  log.pass(20).step("updateFW", "Flash Completed.");
  log.written({{100, 100, 100}});
  log.pass(2).end();
  const FlashHistory history = log.history();
  ASSERT_THAT(history.controllers, SizeIs(1));
  const ControllerHistory& one = history.controllers[0];
  EXPECT_EQ(history.startedAt, "14:00:00");
  EXPECT_EQ(history.length.count(), 71);
  EXPECT_THAT(pointsOf(one), ElementsAre("0 0/0/0", "13 50/0/25", "23 100/0/50", "49 100/60/80",
                                         "69 100/100/100"));
  EXPECT_THAT(phasesOf(one), ElementsAre("preparation 0-3", "CPLD 3-23", "preparation 23-24",
                                         "transfer 24-29", "firmware 29-69", "closing 69-71"));
  ASSERT_THAT(one.marks, SizeIs(1));
  EXPECT_EQ(one.marks[0].kind, MarkKind::done);
  EXPECT_THAT(one.silences, IsEmpty());
}

TEST(FlashHistory, AControllerIsFollowedWhileTheWorkerIsAtIt) {
  TimedLog log({"A1", "B2"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(5).written({{0, 50, 75}, {0, 0, 0}});
  log.pass(5).step("updateFW", "Flash Completed.");
  log.pass(5).step("updateFW", "devId = 1, filePath = a.img");
  log.pass(5).written({{0, 50, 75}, {0, 10, 55}});
  log.end();
  const FlashHistory history = log.history();
  EXPECT_THAT(pointsOf(history.controllers[0]), ElementsAre("0 0/0/0", "5 0/50/75"));
  EXPECT_THAT(pointsOf(history.controllers[1]), ElementsAre("15 0/0/0", "20 0/10/55"));
  EXPECT_EQ(history.controllers[0].end.count(), 15);
}

TEST(FlashHistory, WhatTheWorkerWritesBehindAFlashErrorIsNoPercentage) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(5).written({{0, 90, 95}});
  log.pass(2).step("updateFW", "Flash Error");
  log.written({{0, 100, 100}});
  log.end();
  const ControllerHistory one = log.history().controllers[0];
  EXPECT_THAT(pointsOf(one), ElementsAre("0 0/0/0", "5 0/90/95"));
  ASSERT_THAT(one.marks, SizeIs(1));
  EXPECT_EQ(one.marks[0].kind, MarkKind::fault);
  EXPECT_EQ(one.marks[0].text, "14:00:07 updateFW: Flash Error");
}

TEST(FlashHistory, BehindAFaultOfItsCpldAControllerIsFollowedOn) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.step("flashCPLD", "There is another flash process running.");
  log.pass(5).written({{0, 90, 95}});
  log.end();
  EXPECT_THAT(pointsOf(log.history().controllers[0]), ElementsAre("0 0/0/0", "5 0/90/95"));
}

TEST(FlashHistory, ARetryIsMarked) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(4).step("flashCPLD", "Found error, try to flash CPLD again, retry 1 times...");
  log.end();
  const ControllerHistory one = log.history().controllers[0];
  ASSERT_THAT(one.marks, SizeIs(1));
  EXPECT_EQ(one.marks[0].kind, MarkKind::retry);
  EXPECT_EQ(one.marks[0].at.count(), 4);
}

TEST(FlashHistory, ASilenceIsAMinuteWithoutAChange) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(59).written({{0, 10, 55}});
  for (int poll = 0; poll < 3; ++poll) log.pass(200).written({{0, 10, 55}});
  log.written({{0, 11, 55}});
  log.pass(60).end();
  EXPECT_THAT(silencesOf(log.history().controllers[0]), ElementsAre("59-659 (3)", "659-719 (0)"));
}

TEST(FlashHistory, OfAKilledWorkerTheLogEndsInTheMiddle) {
  TimedLog log({"A1", "B2"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.step("updateFW", "Start flashing image, please wait ...");
  log.pass(30).written({{0, 10, 55}, {0, 0, 0}});
  log.pass(4).step("updateFW", "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 1");
  const FlashHistory history = log.history();
  EXPECT_EQ(history.controllers[0].end.count(), 34);
  EXPECT_FALSE(history.controllers[1].hasBegun);
}

TEST(FlashHistory, MidnightPassesAndAClockThatIsSetBackStandsStill) {
  TimedLog log({"A1"}, 23 * 3600 + 59 * 60 + 50);
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(20).step("updateFW", "x");
  FlashHistory history = log.history();
  EXPECT_EQ(history.length.count(), 20);
  EXPECT_EQ(clockAt(history, history.length), "00:00:10");
  log.pass(-5).step("updateFW", "x");
  log.pass(5).step("updateFW", "x");
  EXPECT_EQ(log.history().length.count(), 25);
}

TEST(FlashHistory, OtherJobsInTheJobFileAreNotThisOnes) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(5).writtenOf("16", {{0, 70, 85}});
  log.end();
  EXPECT_THAT(pointsOf(log.history().controllers[0]), ElementsAre("0 0/0/0"));
}

TEST(FlashHistory, NoPercentageIsBelowNothingOrAboveAll) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(5).written({{-2147483647, 101, 2147483647}});
  EXPECT_THAT(pointsOf(log.history().controllers[0]), ElementsAre("0 0/0/0", "5 0/100/100"));
}

TEST(FlashHistory, ATimeThatIsNoneLetsNoTimePass) {
  const auto entries = parseLog(
      "[14:00:00] [x.cpp][1][updateFW][debug] devId = 0, filePath = a.img\n"
      "[99:99:99] [x.cpp][1][updateFW][debug] x\n"
      "[14:00:05] [x.cpp][1][updateFW][debug] y\n");
  EXPECT_EQ(flashHistoryOf(entries, TimedLog({"A1"}).record()).length.count(), 5);
}

TEST(FlashHistory, WithoutEntriesThereIsNone) {
  const FlashHistory history = flashHistoryOf({}, TimedLog({"A1"}).record());
  EXPECT_EQ(history.startedAt, "");
  EXPECT_EQ(clockAt(history, history.length), "");
  EXPECT_FALSE(history.controllers.at(0).hasBegun);
}

TEST(FlashHistory, EveryPrefixOfALogCanBeRead) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(5).written({{0, 70, 85}});
  log.step("updateFW", "Flash Error");
  const std::string& text = log.text();
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const auto entries = parseLog(text.substr(0, length));
    EXPECT_THAT(flashHistoryOf(entries, log.record()).controllers, SizeIs(1));
  }
}

TEST(FlashHistory, AnErrorBehindTheEndOfAFlashIsNotTheControllers) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.step("updateFW", "Flash Completed.");
  const std::string error =
      "[14:00:01] [x.cpp][1][updateFW][error] compared a number as a string\n";
  const FlashHistory history = flashHistoryOf(parseLog(log.text() + error), log.record());
  ASSERT_EQ(history.controllers[0].marks.size(), 1U);
  EXPECT_EQ(history.controllers[0].marks[0].kind, MarkKind::done);
}

}  // namespace
}  // namespace kelvane::console
