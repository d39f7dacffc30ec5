// A job's times in words and for machines.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/display/TimeText.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;

Look runningLook() {
  Look look;
  look.status = {"18", "RUN", {{"A1", 0, 10, 55}, {"B2", 0, 0, 0}}, "", "", "updateFW"};
  return look;
}

Look withLeft(const TimeLeft& left) {
  Look look = runningLook();
  look.left = left;
  return look;
}

TEST(TimeText, OfAJobIsSinceItsBeginningWhereThatIsKnown) {
  Look look = runningLook();
  look.elapsed = seconds(125);
  EXPECT_EQ(jobTimeText(look), "2:05");
  look.elapsed.reset();
  EXPECT_EQ(jobTimeText(look), "");
  look.followed = seconds(12);
  EXPECT_EQ(jobTimeText(look), "watched for 0:12");
  look.status.state = "FREE";
  EXPECT_EQ(jobTimeText(look), "");
}

TEST(TimeText, TellsWhatIsLeftForControllerAndJob) {
  EXPECT_EQ(timeLeftText(runningLook()), "");
  TimeLeft left = {"A1", "firmware", seconds(200), seconds(200), seconds(460)};
  EXPECT_EQ(timeLeftText(withLeft(left)), "about 3:20 left for A1, 7:40 for the job");
  left.ofJob.reset();
  EXPECT_EQ(timeLeftText(withLeft(left)), "about 3:20 left for A1");
  left.ofController.reset();
  EXPECT_EQ(timeLeftText(withLeft(left)), "about 3:20 left for the firmware of A1");
}

TEST(TimeText, OfTheLastControllerAndOfOneAloneThereIsOneTime) {
  Look look = withLeft({"A1", "firmware", seconds(200), seconds(200), seconds(200)});
  EXPECT_EQ(timeLeftText(look), "about 3:20 left");
  look.status.controllers.resize(1);
  look.left->ofJob.reset();
  EXPECT_EQ(timeLeftText(look), "about 3:20 left");
  look.left = TimeLeft{"A1", "CPLD", seconds(40)};
  EXPECT_EQ(timeLeftText(look), "about 0:40 left for the CPLD");
}

TEST(TimeText, WhatIsLeftIsRoundedUp) {
  EXPECT_EQ(timeLeftText(withLeft({"A1", "CPLD", milliseconds(1), milliseconds(1001), {}})),
            "about 0:02 left for A1");
}

TEST(TimeText, NamesAreShownSafely) {
  EXPECT_EQ(timeLeftText(withLeft({"\x1b[2J", "CPLD", seconds(1)})),
            "about 0:01 left for the CPLD of ?[2J");
  EXPECT_THAT(timeLines({{"\x1b[2J", {{"CPLD", seconds(1)}}}}), ElementsAre("?[2J: CPLD 0:01"));
}

TEST(TimeText, PhasesAreALineForEachController) {
  EXPECT_THAT(timeLines({{"A1", {{"CPLD", seconds(12)}, {"firmware", seconds(80)}}},
                         {"B2", {{"firmware", minutes(61)}}}}),
              ElementsAre("A1: CPLD 0:12, firmware 1:20", "B2: firmware 1:01:00"));
}

std::string printed(const Look& look) { return *platform::printJsonLine(recordWithTimes(look)); }

TEST(TimeText, ForMachinesStandsBelowAKeyOfItsOwn) {
  Look look = withLeft({"A1", "firmware", milliseconds(9700), seconds(10), seconds(30)});
  look.record = platform::parseJson(R"({"log_id": "18", "n": 0.10})");
  look.elapsed = seconds(20);
  EXPECT_EQ(printed(look),
            R"({"log_id":"18","n":0.10,"console_times":{"seconds":20,"left":{"wwn":"A1",)"
            R"("phase":"firmware","phase_seconds":10,"controller_seconds":10,"job_seconds":30}}})");
  look.left = TimeLeft{"A1", "CPLD", seconds(4)};
  look.elapsed.reset();
  EXPECT_EQ(printed(look),
            R"({"log_id":"18","n":0.10,"console_times":{"left":{"wwn":"A1","phase":"CPLD",)"
            R"("phase_seconds":4}}})");
}

TEST(TimeText, ForMachinesAFinishedJobHasItsPhases) {
  Look look;
  look.record = platform::parseJson(R"({"log_id": "18"})");
  look.status.state = "FREE";
  EXPECT_EQ(printed(look), R"({"log_id":"18"})");
  look.elapsed = seconds(63);
  EXPECT_EQ(printed(look), R"({"log_id":"18","console_times":{"seconds":63}})");
  look.times = {{"A1", {{"CPLD", seconds(12)}}}};
  EXPECT_EQ(printed(look), R"({"log_id":"18","console_times":{"seconds":63,"phases":[{"wwn":"A1",)"
                           R"("phase":"CPLD","seconds":12}]}})");
}

}  // namespace
}  // namespace kelvane::console
