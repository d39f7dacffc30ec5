#include <string>

#include <gtest/gtest.h>

#include "platform/Json.h"

namespace kelvane::platform {
namespace {

std::string nested(int depth) {
  return std::string(static_cast<std::size_t>(depth), '[') +
         std::string(static_cast<std::size_t>(depth), ']');
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

TEST(Json, KeysKeepTheirOrderAndTheLastOfTwoCounts) {
  EXPECT_EQ(reprinted(R"({"z": 1, "a": 2, "z": 3})"), "{\n  \"z\": 3,\n  \"a\": 2\n}");
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
  EXPECT_TRUE(parseJson(nested(512)).isArray());
  EXPECT_TRUE(parseJson(nested(513)).isNothing());
  EXPECT_TRUE(parseJson(nested(1'000'000)).isNothing());
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
