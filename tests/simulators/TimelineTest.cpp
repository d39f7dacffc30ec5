// How a flash's progress shows over time.

#include <gtest/gtest.h>

#include "simulators/controllers/Timeline.h"

namespace kelvane::simulator {
namespace {

using Kind = FlashFault::Kind;

FlashFault fault(Kind kind, double at) {
  FlashFault made;
  made.kind = kind;
  made.at = at;
  return made;
}

// A firmware flash of 100 seconds: a percent a second.
Timeline firmware(const std::vector<FlashFault>& faults = {}) {
  return {Timeline::Target::firmware, {100}, faults};
}

// A CPLD flash whose two stages take 100 seconds each.
Timeline cpld(const std::vector<FlashFault>& faults = {}) {
  return {Timeline::Target::cpld, {100, 100}, faults};
}

TEST(FlashTimeline, FirmwareGoesByTimeThroughFourStagesToTheFifth) {
  const Timeline timeline = firmware();
  EXPECT_EQ(timeline.at(0).percent, 0);
  EXPECT_EQ(timeline.at(0).stage, 1);
  EXPECT_EQ(timeline.at(37).percent, 37);
  EXPECT_EQ(timeline.at(37).stage, 2);
  EXPECT_EQ(timeline.at(99.9).stage, 4);
  EXPECT_FALSE(timeline.at(99.9).done);
  EXPECT_EQ(timeline.at(100).stage, 5);
  EXPECT_EQ(timeline.at(100).percent, 100);
  EXPECT_TRUE(timeline.at(100).done);
}

TEST(FlashTimeline, FlashWithoutDurationIsDoneAtOnce) {
  EXPECT_TRUE(Timeline(Timeline::Target::firmware, {0}, {}).at(0).done);
}

TEST(FlashTimeline, CpldIsTransferredThenProgrammed) {
  const Timeline timeline = cpld();
  EXPECT_EQ(timeline.at(37).stage, 0);
  EXPECT_EQ(timeline.at(37).percent, 37);
  EXPECT_EQ(timeline.at(137).stage, 1);
  EXPECT_EQ(timeline.at(137).percent, 37);
  EXPECT_EQ(timeline.at(200).stage, 2);
  EXPECT_TRUE(timeline.at(200).done);
}

TEST(FlashTimeline, FailureShowsItsStatusByteForEver) {
  FlashFault failure = fault(Kind::fail, 40);
  failure.statusByte = 3;
  const Timeline timeline = firmware({failure});
  EXPECT_EQ(timeline.at(39).statusByte, 0);
  EXPECT_EQ(timeline.at(40).statusByte, 3);
  EXPECT_EQ(timeline.at(1e6).statusByte, 3);
  EXPECT_EQ(timeline.at(1e6).percent, 40);
  EXPECT_FALSE(timeline.at(1e6).done);
}

TEST(FlashTimeline, StallEndsAfterItsSeconds) {
  FlashFault stall = fault(Kind::stall, 50);
  stall.seconds = 30;
  const Timeline timeline = firmware({stall});
  EXPECT_EQ(timeline.at(79).percent, 50);
  EXPECT_EQ(timeline.at(90).percent, 60);
  EXPECT_TRUE(timeline.at(130).done);
}

TEST(FlashTimeline, StallWithoutSecondsLastsForEver) {
  const Timeline timeline = firmware({fault(Kind::stall, 50)});
  EXPECT_EQ(timeline.at(1e6).percent, 50);
  EXPECT_EQ(timeline.at(1e6).statusByte, 0);
}

TEST(FlashTimeline, GoesOnFromAnEarlierPercentage) {
  FlashFault backwards = fault(Kind::backwards, 60);
  backwards.to = 30;
  const Timeline timeline = firmware({backwards});
  EXPECT_EQ(timeline.at(59).percent, 59);
  EXPECT_EQ(timeline.at(60).percent, 30);
  EXPECT_TRUE(timeline.at(130).done);
}

TEST(FlashTimeline, UnknownBytesPass) {
  FlashFault unknown = fault(Kind::unknown, 20);
  unknown.seconds = 10;
  unknown.statusByte = 4;
  unknown.stage = 9;
  const Timeline timeline = firmware({unknown});
  EXPECT_EQ(timeline.at(25).statusByte, 4);
  EXPECT_EQ(timeline.at(25).stage, 9);
  EXPECT_EQ(timeline.at(31).statusByte, 0);
}

TEST(FlashTimeline, RetriesStartTheCpldAnew) {
  const Timeline timeline = cpld({fault(Kind::retry, 50), fault(Kind::retry, 110)});
  EXPECT_EQ(timeline.at(49).retries, 0);
  EXPECT_EQ(timeline.at(50).retries, 1);
  EXPECT_EQ(timeline.at(50).percent, 0);
  EXPECT_EQ(timeline.at(155).stage, 1);
  EXPECT_EQ(timeline.at(160).retries, 2);
  EXPECT_EQ(timeline.at(160).stage, 0);
  EXPECT_TRUE(timeline.at(360).done);
  EXPECT_EQ(timeline.at(360).retries, 2);
}

TEST(FlashTimeline, FaultAtTheEndStillShows) {
  FlashFault failure = fault(Kind::fail, 200);
  failure.statusByte = 1;
  const Reading reading = cpld({failure}).at(200);
  EXPECT_EQ(reading.statusByte, 1);
  EXPECT_EQ(reading.stage, 1);
  EXPECT_EQ(reading.percent, 100);
}

TEST(FlashTimeline, FaultsBehindThePositionAreUnreachable) {
  EXPECT_EQ(firstUnreachable({fault(Kind::stall, 50), fault(Kind::stall, 20)}), 1U);
  EXPECT_EQ(firstUnreachable({fault(Kind::retry, 50), fault(Kind::stall, 20)}), std::nullopt);
}

}  // namespace
}  // namespace kelvane::simulator
