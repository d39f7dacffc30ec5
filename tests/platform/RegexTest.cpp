#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Regex.h"

namespace kelvane::platform {
namespace {

using Groups = std::vector<std::string>;

constexpr char kVersion[] = "(\\w+).(\\w+).(\\w+)";

std::optional<Groups> firstMatch(const std::string& pattern, const std::string& text) {
  return Regex(pattern).firstMatch(text);
}

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

TEST(FirstMatch, ADotIsNoneOfTheLineEnds) {
  for (const char* lineEnd :
       {"\n", "\r", "\x0B", "\x0C", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    EXPECT_FALSE(firstMatch("a.b", std::string("a") + lineEnd + "b")) << lineEnd;
  }
  EXPECT_TRUE(firstMatch("a.b", "a\tb"));
}

TEST(FirstMatch, ADotIsOneWholeCharacter) {
  EXPECT_EQ(firstMatch("^.$", "\xC3\xA9"), Groups{"\xC3\xA9"});
  EXPECT_EQ(firstMatch("^(.)(.)$", "\xF0\x9F\x98\x80z"),
            (Groups{"\xF0\x9F\x98\x80z", "\xF0\x9F\x98\x80", "z"}));
}

TEST(FirstMatch, AGroupThatTookNoPartIsEmpty) {
  EXPECT_EQ(firstMatch("(a)?(b)", "b"), (Groups{"b", "", "b"}));
  EXPECT_EQ(firstMatch("(a*)(b)", "xb"), (Groups{"b", "", "b"}));
}

TEST(FirstMatch, AMatchMayBeEmpty) { EXPECT_EQ(firstMatch("a*", "b"), Groups{""}); }

TEST(FirstMatch, BytesThatAreNoTextDoNotMatch) { EXPECT_FALSE(firstMatch("a", "a\xFF")); }

TEST(FirstMatch, WordCharactersAreThoseOfUnicode) {
  EXPECT_EQ(firstMatch(kVersion, "\xC3\xA9.\xD0\x96.\xE6\x97\xA5"),
            (Groups{"\xC3\xA9.\xD0\x96.\xE6\x97\xA5", "\xC3\xA9", "\xD0\x96", "\xE6\x97\xA5"}));
}

TEST(FirstMatch, ALongTextNeitherOverflowsNorHangs) {
  EXPECT_TRUE(firstMatch(kVersion, std::string(1'000'000, 'a')));
  EXPECT_FALSE(firstMatch(kVersion, std::string(1'000'000, '-')));
}

TEST(FirstMatch, OneTextLeavesNothingForTheNext) {
  const Regex pattern("(a)?(b)");
  EXPECT_EQ(pattern.firstMatch("ab"), (Groups{"ab", "a", "b"}));
  EXPECT_EQ(pattern.firstMatch("b"), (Groups{"b", "", "b"}));
  EXPECT_FALSE(pattern.firstMatch("a"));
  EXPECT_EQ(pattern.firstMatch("ab"), (Groups{"ab", "a", "b"}));
}

TEST(FirstMatch, WhatIsNoExpressionRaisesAndIsNamed) {
  for (const std::string pattern : {"(", "*", "[a", "\xFF"}) {
    try {
      firstMatch(pattern, "a");
      ADD_FAILURE() << "nothing was raised for " << pattern;
    } catch (const Exception& raised) {
      EXPECT_EQ(raised.what(), "not a regular expression: " + pattern);
    }
  }
}

TEST(LeadingInteger, IsDecimalWhateverItLooksLike) {
  EXPECT_EQ(leadingInteger("010"), 10);
  EXPECT_EQ(leadingInteger("0x10"), 0);
  EXPECT_EQ(leadingInteger("1e3"), 1);
}

TEST(LeadingInteger, TakesOneSignRightBeforeTheDigits) {
  EXPECT_EQ(leadingInteger("\t-7"), -7);
  EXPECT_EQ(leadingInteger("--7"), 0);
  EXPECT_EQ(leadingInteger("+-7"), 0);
  EXPECT_EQ(leadingInteger("- 7"), 0);
}

TEST(LeadingInteger, IsExactUpToTheLimitsAndHeldAtThem) {
  EXPECT_EQ(leadingInteger("9223372036854775806"), std::numeric_limits<std::int64_t>::max() - 1);
  EXPECT_EQ(leadingInteger("9223372036854775808"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(leadingInteger("-9223372036854775807"), std::numeric_limits<std::int64_t>::min() + 1);
  EXPECT_EQ(leadingInteger("-9223372036854775809"), std::numeric_limits<std::int64_t>::min());
}

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
