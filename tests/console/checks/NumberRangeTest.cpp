// Numbers that JSON allows and that the worker cannot read.

#include <gtest/gtest.h>

#include "console/checks/NumberRange.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

TEST(NumberRange, TheLargestAndTheSmallestDoublesAreNoMistake) {
  for (const char* text : {"[1e308]", "[-1e308]", "[1e-400]", "[123456789012345678901234567890]",
                           R"({"1e400": "1e400"})"}) {
    EXPECT_EQ(numberOutOfRange(text), "") << text;
    EXPECT_FALSE(platform::parseJson(text).isNothing()) << text;
  }
}

TEST(NumberRange, ANumberBeyondThemIsNamedWithItsPlace) {
  EXPECT_EQ(numberOutOfRange("[1e400]"), "the number 1e400 in line 1, column 2");
  EXPECT_EQ(numberOutOfRange("[-1e400]"), "the number -1e400 in line 1, column 2");
  EXPECT_EQ(numberOutOfRange("[\n  {\n    \"a\": 1E+999\n  }\n]"),
            "the number 1E+999 in line 3, column 10");
  EXPECT_TRUE(platform::parseJson("[1e400]").isNothing());
}

TEST(NumberRange, ColumnsAreCountedInCharacters) {
  EXPECT_EQ(numberOutOfRange("[\"\u00e4\u20ac\", 1e400]"), "the number 1e400 in line 1, column 8");
}

TEST(NumberRange, OfALongNumberTheStartIsShown) {
  EXPECT_EQ(numberOutOfRange("[" + std::string(400, '7') + "]"),
            "the number " + std::string(40, '7') + "... in line 1, column 2");
}

TEST(NumberRange, AnEarlierMistakeComesFirst) {
  EXPECT_EQ(numberOutOfRange("[1,, 1e400]"), "");
  EXPECT_EQ(numberOutOfRange(""), "");
}

}  // namespace
}  // namespace kelvane::console
