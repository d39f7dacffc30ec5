#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Regex.h"

namespace kelvane::platform {
namespace {

using Groups = std::vector<std::string>;

constexpr char kVersion[] = "(\\w+).(\\w+).(\\w+)";

TEST(FirstMatch, GivesTheGroupsOfTheFirstMatch) {
  EXPECT_EQ(firstMatch(kVersion, "10.15.7"), (Groups{"10.15.7", "10", "15", "7"}));
  EXPECT_EQ(firstMatch(kVersion, "-- 10.15.7 11.2.3"), (Groups{"10.15.7", "10", "15", "7"}));
  EXPECT_EQ(firstMatch(kVersion, "abc-def-ghi"), (Groups{"abc-def-ghi", "abc", "def", "ghi"}));
}

TEST(FirstMatch, GivesNothingWithoutOne) {
  EXPECT_FALSE(firstMatch(kVersion, "11.0"));
  EXPECT_FALSE(firstMatch(kVersion, ""));
  EXPECT_FALSE(firstMatch(kVersion, "a\nb\nc"));
  EXPECT_FALSE(firstMatch(kVersion, "a\rb\rc"));
}

TEST(FirstMatch, WordCharactersAreThoseOfUnicode) {
  EXPECT_EQ(firstMatch(kVersion, "\xC3\xA9.\xD0\x96.\xE6\x97\xA5"),
            (Groups{"\xC3\xA9.\xD0\x96.\xE6\x97\xA5", "\xC3\xA9", "\xD0\x96", "\xE6\x97\xA5"}));
}

TEST(FirstMatch, ALongTextNeitherOverflowsNorHangs) {
  EXPECT_TRUE(firstMatch(kVersion, std::string(1'000'000, 'a')));
  EXPECT_FALSE(firstMatch(kVersion, std::string(1'000'000, '-')));
}

TEST(FirstMatch, WhatIsNoExpressionRaises) { EXPECT_THROW(firstMatch("(", "a"), Exception); }

TEST(LeadingInteger, TakesDigitsAsFarAsTheyGo) {
  EXPECT_EQ(leadingInteger("10"), 10);
  EXPECT_EQ(leadingInteger("  12abc"), 12);
  EXPECT_EQ(leadingInteger("-3"), -3);
  EXPECT_EQ(leadingInteger("+4.5"), 4);
  EXPECT_EQ(leadingInteger("abc"), 0);
  EXPECT_EQ(leadingInteger(""), 0);
  EXPECT_EQ(leadingInteger("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(leadingInteger("-99999999999999999999"), std::numeric_limits<std::int64_t>::min());
}

}  // namespace
}  // namespace kelvane::platform
