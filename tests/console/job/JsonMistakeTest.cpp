// Why a text is no JSON that the worker can read.

#include <gtest/gtest.h>

#include "console/job/JsonMistake.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

TEST(JsonMistake, TheLargestAndTheSmallestDoublesAreNoMistake) {
  for (const char* text : {"[1e308]", "[-1e308]", "[1e-400]", "[123456789012345678901234567890]",
                           R"({"1e400": "1e400"})"}) {
    EXPECT_EQ(numberOutOfRange(text), "") << text;
    EXPECT_FALSE(platform::parseJson(text).isNothing()) << text;
  }
}

TEST(JsonMistake, ANumberBeyondThemIsNamedWithItsPlace) {
  EXPECT_EQ(numberOutOfRange("[1e400]"), "the number 1e400 in line 1, column 2");
  EXPECT_EQ(numberOutOfRange("[-1e400]"), "the number -1e400 in line 1, column 2");
  EXPECT_EQ(numberOutOfRange("[\n  {\n    \"a\": 1E+999\n  }\n]"),
            "the number 1E+999 in line 3, column 10");
  EXPECT_TRUE(platform::parseJson("[1e400]").isNothing());
}

TEST(JsonMistake, ColumnsAreCountedInCharacters) {
  EXPECT_EQ(numberOutOfRange("[\"\u00e4\u20ac\", 1e400]"), "the number 1e400 in line 1, column 8");
}

TEST(JsonMistake, OfALongNumberTheStartIsShown) {
  EXPECT_EQ(numberOutOfRange("[" + std::string(400, '7') + "]"),
            "the number " + std::string(40, '7') + "... in line 1, column 2");
}

TEST(JsonMistake, AnEarlierMistakeComesFirst) {
  EXPECT_EQ(numberOutOfRange("[1,, 1e400]"), "");
  EXPECT_EQ(numberOutOfRange(""), "");
}

TEST(JsonMistake, HasItsPlaceAndWhatWasExpected) {
  EXPECT_EQ(jsonMistake("[\n  {\"a\": 1},\n  {]\n]"),
            "line 3, column 4: unexpected ']'; expected string literal");
  EXPECT_EQ(jsonMistake("[{\"a\" 1}]"),
            "line 1, column 7: unexpected number literal; expected ':'");
  EXPECT_EQ(jsonMistake("[1] x"),
            "line 1, column 5: invalid literal; last read: '1] x'; expected end of input");
}

TEST(JsonMistake, OfACutTextStandsAtItsEnd) {
  EXPECT_EQ(jsonMistake("[\n{"),
            "line 2, column 2: unexpected end of input; expected string literal");
}

TEST(JsonMistake, OfATextThatIsTooDeepOrASingleValueIsToldToo) {
  EXPECT_EQ(jsonMistake("5"),
            "line 1: a single value stands at the top; expected an array or an object");
  EXPECT_EQ(jsonMistake(std::string(513, '[') + std::string(513, ']')),
            "line 1, column 513: nested deeper than 512 arrays and objects");
  EXPECT_EQ(jsonMistake("[\"[\\\"[\",\n" + std::string(512, '[')),
            "line 2, column 512: nested deeper than 512 arrays and objects");
  EXPECT_EQ(jsonMistake(std::string(512, '[') + std::string(512, ']')), "");
}

TEST(JsonMistake, ThereIsNoneInWhatTheWorkerReads) {
  EXPECT_EQ(jsonMistake(R"([{"a": [1, "x", null, true, -0.5e3]}])"), "");
}

TEST(JsonMistake, WhyAFileHoldsNoJsonIsToldWithItsPlace) {
  EXPECT_EQ(whyNoJson(""), " is not JSON: it is empty");
  EXPECT_EQ(
      whyNoJson("[1e400]"),
      " cannot be read: the number 1e400 in line 1, column 2 is beyond the range of a double");
  EXPECT_EQ(whyNoJson("[1,]").rfind(" is not JSON: line 1, column 4: ", 0), 0U);
  EXPECT_EQ(whyNoJson("[\n\"\xFF\"]").rfind(" is not JSON: it is not UTF-8: line 2, column 2: ", 0),
            0U)
      << whyNoJson("[\n\"\xFF\"]");
}

}  // namespace
}  // namespace kelvane::console
