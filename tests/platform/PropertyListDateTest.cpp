// Dates as property lists write them.

#include <gtest/gtest.h>

#include "platform/PropertyListDate.h"

namespace kelvane::platform {
namespace {

TEST(PropertyListDate, CountsTheSecondsSince1970) {
  EXPECT_EQ(dateFromText("1970-01-01T00:00:00Z"), Date{0});
  EXPECT_EQ(dateFromText("2000-02-29T12:34:56Z"), Date{951827696});
  EXPECT_EQ(dateFromText("0000-01-01T00:00:00Z"), Date{-62167219200});
  EXPECT_EQ(dateFromText("9999-12-31T23:59:59Z"), Date{253402300799});
}

TEST(PropertyListDate, ADayThatAMonthLacksIsOneOfTheNext) {
  EXPECT_EQ(dateFromText("2001-02-31T00:00:00Z"), dateFromText("2001-03-03T00:00:00Z"));
  EXPECT_EQ(dateFromText("2016-12-31T23:59:60Z"), dateFromText("2017-01-01T00:00:00Z"));
}

TEST(PropertyListDate, OtherTextsAreNone) {
  for (const char* text : {"", "2001", "2001-13-01T00:00:00Z", "2001-01-32T00:00:00Z", "now"}) {
    EXPECT_EQ(dateFromText(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelvane::platform
