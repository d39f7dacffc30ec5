// Times in the log: how long its entries took.

#include <vector>

#include <gtest/gtest.h>

#include "console/job/LogTime.h"

namespace kelvane::console {
namespace {

using std::chrono::seconds;

seconds between(const std::vector<const char*>& times) {
  std::vector<LogEntry> entries;
  for (const char* time : times) entries.emplace_back().time = time;
  return timeBetween(entries);
}

TEST(LogTime, IsTheTimeSinceMidnight) {
  EXPECT_EQ(timeOfDay("14:03:07"), seconds(50587));
  EXPECT_EQ(timeOfDay("00:00:00"), seconds(0));
}

TEST(LogTime, OfAnyOtherTextThereIsNone) {
  for (const char* text : {"", "14:03:0", "14:03:077", "14-03-07", "14:03:x7", "-4:03:07"}) {
    EXPECT_EQ(timeOfDay(text), std::nullopt) << text;
  }
}

TEST(LogTime, EntriesTakeTheTimeFromTheFirstToTheLast) {
  EXPECT_EQ(between({"14:03:07", "14:03:09", "14:05:07"}), seconds(120));
  EXPECT_EQ(between({"14:03:07"}), seconds(0));
  EXPECT_EQ(between({}), seconds(0));
}

TEST(LogTime, AJobThatRunsPastMidnightGoesOn) {
  EXPECT_EQ(between({"23:59:50", "00:00:10", "00:01:10"}), seconds(80));
}

TEST(LogTime, AClockThatIsSetBackTakesNoTime) {
  EXPECT_EQ(between({"03:00:00", "02:00:00", "02:00:10"}), seconds(10));
}

TEST(LogTime, ATextWithoutATimeIsPassedOver) {
  EXPECT_EQ(between({"", "14:03:07", "", "14:03:08"}), seconds(1));
}

}  // namespace
}  // namespace kelvane::console
