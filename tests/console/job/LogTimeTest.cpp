// Times in the log, and how they pass.

#include <gtest/gtest.h>

#include "console/job/LogTime.h"

namespace kelvane::console {
namespace {

using std::chrono::seconds;

TEST(LogTime, IsTheTimeSinceMidnight) {
  EXPECT_EQ(timeOfDay("14:03:07"), seconds(50587));
  EXPECT_EQ(timeOfDay("00:00:00"), seconds(0));
  EXPECT_EQ(timeOfDay("23:59:60"), seconds(86400));
}

TEST(LogTime, OfAnyOtherTextThereIsNone) {
  for (const char* text : {"", "14:03:0", "14:03:077", "14-03-07", "14:03:x7", "-4:03:07",
                           "24:00:00", "14:60:00", "14:03:61", "99:99:99"}) {
    EXPECT_EQ(timeOfDay(text), std::nullopt) << text;
  }
}

TEST(LogTime, PassesFromOneLineToTheNext) {
  EXPECT_EQ(timePassed(seconds(7), seconds(9)), seconds(2));
  EXPECT_EQ(timePassed(seconds(7), seconds(7)), seconds(0));
}

TEST(LogTime, GoesOnPastMidnight) {
  EXPECT_EQ(timePassed(*timeOfDay("23:59:50"), *timeOfDay("00:00:10")), seconds(20));
}

TEST(LogTime, DoesNotPassWhereTheClockWasSetBack) {
  EXPECT_EQ(timePassed(*timeOfDay("03:00:00"), *timeOfDay("02:00:00")), seconds(0));
  EXPECT_EQ(timePassed(*timeOfDay("14:00:00"), *timeOfDay("02:00:00")), seconds(0));
  EXPECT_EQ(timePassed(*timeOfDay("14:00:01"), *timeOfDay("02:00:00")), seconds(43199));
}

}  // namespace
}  // namespace kelvane::console
