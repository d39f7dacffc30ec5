#include <string>

#include <gtest/gtest.h>

#include "platform/Json.h"

namespace kelvane::platform {
namespace {

std::string nestedArrays(int depth) {
  return std::string(static_cast<std::size_t>(depth), '[') +
         std::string(static_cast<std::size_t>(depth), ']');
}

// Arrays and objects in turn, an even number of them.
std::string nestedInTurn(int depth) {
  std::string opening;
  std::string closing;
  for (int i = 0; i < depth; i += 2) {
    opening += "[{\"a\":";
    closing += "}]";
  }
  return opening + "0" + closing;
}

std::string reprinted(std::string_view text) {
  return printJson(parseJson(text)).value_or("not printable");
}

TEST(Json, ReadsEveryKindOfValue) {
  const Value read = parseJson(R"({"n": null, "t": true, "f": false, "i": 5, "s": "x", "a": [1]})");
  EXPECT_EQ(read, Value::dictionary({{"n", Value::null()},
                                     {"t", Value::boolean(true)},
                                     {"f", Value::boolean(false)},
                                     {"i", Value::integer(5)},
                                     {"s", "x"},
                                     {"a", Value::array({Value::integer(1)})}}));
}

TEST(Json, NumbersComeOutAsTheyWereWritten) {
  for (const char* digits :
       {"12345678901234567890123", "0.10", "1e3", "1E+2", "-0", "-0.0", "18446744073709551615",
        "18446744073709551616", "-9223372036854775808", "-9223372036854775809", "0", "1e-400",
        "3.141592653589793238462643383279"}) {
    EXPECT_EQ(parseJson(std::string("[") + digits + "]").at(0).digits(), digits);
  }
}

TEST(Json, SmallWholeNumbersComeOutAsTheyWereWritten) {
  for (const char* digits : {"0", "-0", "1", "-1", "-10", "9223372036854775807"}) {
    const Value read = parseJson(std::string("{\"a\": ") + digits + "}").get("a");
    EXPECT_TRUE(read.isNumber()) << digits;
    EXPECT_EQ(read.digits(), digits);
  }
}

TEST(Json, KeysKeepTheirOrderAndTheLastOfTwoCounts) {
  EXPECT_EQ(reprinted(R"({"z": 1, "a": 2, "z": 3})"), "{\n  \"z\": 3,\n  \"a\": 2\n}");
}

TEST(Json, OfAKeyThatStandsTwiceOnlyTheLastValueIsLeft) {
  EXPECT_EQ(reprinted(R"({"a": {"b": 1}, "a": null})"), "{\n  \"a\": null\n}");
  EXPECT_EQ(reprinted(R"([{"a": 1, "b": 2, "a": [3], "b": {}}])"),
            "[\n  {\n    \"a\": [\n      3\n    ],\n    \"b\": {}\n  }\n]");
}

TEST(Json, KeysOfInnerObjectsAreNotThoseOfOuterOnes) {
  EXPECT_EQ(parseJson(R"({"a": {"b": 1, "c": [{"a": 2}]}, "d": 3})"),
            Value::dictionary(
                {{"a", Value::dictionary(
                           {{"b", Value::integer(1)},
                            {"c", Value::array({Value::dictionary({{"a", Value::integer(2)}})})}})},
                 {"d", Value::integer(3)}}));
}

TEST(Json, AByteOrderMarkIsPassedOver) { EXPECT_EQ(parseJson("\xEF\xBB\xBF[1]").count(), 1U); }

TEST(Json, WhatIsNotStrictJsonIsNothing) {
  for (const char* text : {"",
                           " ",
                           "5",
                           "\"text\"",
                           "null",
                           "true",
                           "[1,]",
                           "{\"a\":1,}",
                           "[1] // end",
                           "/* */ [1]",
                           "[1] [2]",
                           "[1]x",
                           "{a: 1}",
                           "['a']",
                           "[01]",
                           "[+1]",
                           "[.5]",
                           "[1.]",
                           "[NaN]",
                           "[Infinity]",
                           "[1e999]",
                           "[-1e999]",
                           "[\"\\uD800\"]",
                           "[\"\\uDC00\\uD800\"]",
                           "[\"\\x41\"]",
                           "[\"a\nb\"]",
                           "[\"\xFF\"]",
                           "[\"\xC0\x80\"]",
                           "[\"\xED\xA0\x80\"]",
                           "[",
                           "]",
                           "{\"a\"}",
                           "{\"a\":}",
                           "{1:2}",
                           "[1 2]",
                           "\xFE\xFF[1]",
                           "[tru]"}) {
    EXPECT_TRUE(parseJson(text).isNothing()) << text;
  }
}

TEST(Json, ANulByteIsNotJson) {
  EXPECT_TRUE(parseJson(std::string_view("[1]\0", 4)).isNothing());
  EXPECT_TRUE(parseJson(std::string_view("\0[1]", 4)).isNothing());
}

TEST(Json, NestingIsReadDownToTheLimitAndNotBelow) {
  EXPECT_TRUE(parseJson(nestedArrays(512)).isArray());
  EXPECT_TRUE(parseJson(nestedArrays(513)).isNothing());
  EXPECT_TRUE(parseJson(nestedArrays(1'000'000)).isNothing());
}

TEST(Json, ObjectsAndArraysCountTogetherTowardsTheLimit) {
  EXPECT_TRUE(parseJson(nestedInTurn(512)).isArray());
  EXPECT_TRUE(parseJson(nestedInTurn(514)).isNothing());
  EXPECT_TRUE(parseJson("[" + nestedInTurn(512) + "]").isNothing());
}

TEST(Json, NestingThatHasEndedDoesNotCount) {
  const Value read = parseJson("[" + nestedArrays(511) + "," + nestedArrays(511) + "]");
  EXPECT_EQ(read.count(), 2U);
}

TEST(Json, AMillionOpenBracketsNeitherOverflowNorHang) {
  EXPECT_TRUE(parseJson(std::string(1'000'000, '[')).isNothing());
}

TEST(Json, EveryPrefixOfAFileIsNothing) {
  const std::string text = R"([{"log_id": "17", "a": [1.5e3, "é\u00e9\n", null, true]}])";
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_TRUE(parseJson(text.substr(0, length)).isNothing()) << length;
  }
  EXPECT_TRUE(parseJson(text).isArray());
}

TEST(Json, NoFlippedByteBreaksTheReaderAndWhatItReadsCanBeWrittenAndReadAgain) {
  const std::string text = R"([{"log_id": "17", "a": [1.5e3, "é\u00e9\n", null, true]}])";
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string damaged = text;
      damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
      const Value read = parseJson(damaged);
      if (read.isNothing()) continue;
      EXPECT_EQ(parseJson(printJson(read).value()), read) << damaged;
    }
  }
}

TEST(Json, PrintsOneKeyPerLineIndentedByTwo) {
  EXPECT_EQ(reprinted(R"([{"a":{"b":[]},"c":{}},2])"),
            "[\n"
            "  {\n"
            "    \"a\": {\n"
            "      \"b\": []\n"
            "    },\n"
            "    \"c\": {}\n"
            "  },\n"
            "  2\n"
            "]");
}

TEST(Json, PrintsOnOneLine) {
  const Value value = parseJson(R"({"b": [1, "x\ny", {}], "a": {"c": null, "d": []}})");
  EXPECT_EQ(printJsonLine(value), R"({"b":[1,"x\ny",{}],"a":{"c":null,"d":[]}})");
}

TEST(Json, EscapesOnlyWhatMustBeEscaped) {
  EXPECT_EQ(reprinted(R"(["\"\\\/\b\f\n\r\t\u0001\u001f\u007f\u00e9\ud83d\ude00"])"),
            "[\n  \"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\xC3\xA9\xF0\x9F\x98\x80\"\n]");
}

TEST(Json, EveryControlCharacterIsEscapedAndReadAgain) {
  const std::string escapes[] = {
      "\\u0000", "\\u0001", "\\u0002", "\\u0003", "\\u0004", "\\u0005", "\\u0006", "\\u0007",
      "\\b",     "\\t",     "\\n",     "\\u000b", "\\f",     "\\r",     "\\u000e", "\\u000f",
      "\\u0010", "\\u0011", "\\u0012", "\\u0013", "\\u0014", "\\u0015", "\\u0016", "\\u0017",
      "\\u0018", "\\u0019", "\\u001a", "\\u001b", "\\u001c", "\\u001d", "\\u001e", "\\u001f"};
  char character = 0;
  for (const std::string& escape : escapes) {
    const Value text = Value::array({std::string(1, character++)});
    const std::string line = "[\"" + escape + "\"]";
    EXPECT_EQ(printJsonLine(text), line);
    EXPECT_EQ(parseJson(line), text) << escape;
  }
}

TEST(Json, EveryOtherAsciiCharacterStandsAsItIs) {
  for (char character = 0x20; character > 0; ++character) {
    if (character == '"' || character == '\\') continue;
    const std::string line = std::string("[\"") + character + "\"]";
    EXPECT_EQ(printJsonLine(Value::array({std::string(1, character)})), line);
    if (character == 0x7F) break;
  }
}

TEST(Json, KeysAreEscapedAsStringsAre) {
  EXPECT_EQ(printJsonLine(Value::dictionary({{"a\"\n", "b"}})), R"({"a\"\n":"b"})");
}

TEST(Json, PrintsEveryKind) {
  EXPECT_EQ(reprinted(R"([null,true,false,-1.50e3,"x"])"),
            "[\n  null,\n  true,\n  false,\n  -1.50e3,\n  \"x\"\n]");
}

TEST(Json, ANulCharacterInsideAStringSurvives) {
  EXPECT_EQ(reprinted(R"(["a\u0000b"])"), "[\n  \"a\\u0000b\"\n]");
}

TEST(Json, WhatJsonHasNoFormForIsNotPrinted) {
  EXPECT_FALSE(printJson(Value::array({Value::data("x")})));
  EXPECT_FALSE(printJson(Value::dictionary({{"a", Value(Date{0})}})));
  EXPECT_FALSE(printJson(Value::array({Value::number("nan")})));
  EXPECT_FALSE(printJson(Value::array({Value::number("-inf")})));
  EXPECT_FALSE(printJson(Value()));
}

TEST(Json, ANumberWithoutDigitsIsNotPrinted) {
  EXPECT_FALSE(printJson(Value::array({Value::number("")})));
}

TEST(Json, WhatIsNotPrintedIsNotPrintedOnOneLineEither) {
  EXPECT_FALSE(printJsonLine(Value()));
  EXPECT_FALSE(printJsonLine(Value::dictionary({{"a", Value::array({Value::data("x")})}})));
  EXPECT_FALSE(printJsonLine(Value::array({"a", "\xFF", "b"})));
}

TEST(Json, ObjectsArePrintedDownToTheLimitAndNotBelow) {
  Value deep = Value::dictionary();
  for (int i = 1; i < 512; ++i) deep = Value::dictionary({{"a", deep}});
  EXPECT_TRUE(printJson(deep));
  EXPECT_TRUE(printJsonLine(deep));
  EXPECT_FALSE(printJson(Value::dictionary({{"a", deep}})));
  EXPECT_FALSE(printJsonLine(Value::array({deep})));
}

TEST(Json, WhatCouldNotBeReadAgainIsNotPrinted) {
  EXPECT_FALSE(printJson(Value::array({"\xFF"})));
  EXPECT_FALSE(printJson(Value::dictionary({{"\xFF", "a"}})));
  Value deep = Value::array();
  for (int i = 1; i < 512; ++i) deep = Value::array({deep});
  EXPECT_TRUE(printJson(deep));
  EXPECT_FALSE(printJson(Value::array({deep})));
}

}  // namespace
}  // namespace kelvane::platform
