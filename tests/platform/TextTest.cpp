#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Text.h"
#include "platform/Utf8.h"

namespace kelvane::platform {
namespace {

TEST(Describe, TextsOfPlainValues) {
  EXPECT_EQ(describe(Value()), "(null)");
  EXPECT_EQ(describe(Value::null()), "<null>");
  EXPECT_EQ(describe(Value::boolean(true)), "1");
  EXPECT_EQ(describe(Value::boolean(false)), "0");
  EXPECT_EQ(describe(Value::number("0.10")), "0.10");
  EXPECT_EQ(describe("a \"quoted\" b"), "a \"quoted\" b");
  EXPECT_EQ(describe(Value::data(std::string("\x00\xAB\x7F", 3))), "<00ab7f>");
  EXPECT_EQ(describe(Value::data("")), "<>");
  EXPECT_EQ(describe(Date{1769903999}), "2026-01-31 23:59:59 +0000");
  EXPECT_EQ(describe(Date{-1}), "1969-12-31 23:59:59 +0000");
}

TEST(Describe, EmptyContainers) {
  EXPECT_EQ(describe(Value::array()), "(\n)");
  EXPECT_EQ(describe(Value::dictionary()), "{\n}");
}

TEST(Describe, AnArrayOfOneRecord) {
  const Value entry = Value::dictionary({{"wwn", "5000A1"}, {"file_path", "/tmp/a b.img"}});
  const Value record = Value::dictionary({{"result", Value::integer(-1)},
                                          {"log_id", Value::integer(17)},
                                          {"input_parameters", Value::array({entry})}});
  EXPECT_EQ(describe(Value::array({record})),
            "(\n"
            "        {\n"
            "        \"input_parameters\" =         (\n"
            "                        {\n"
            "                \"file_path\" = \"/tmp/a b.img\";\n"
            "                wwn = 5000A1;\n"
            "            }\n"
            "        );\n"
            "        \"log_id\" = 17;\n"
            "        result = \"-1\";\n"
            "    }\n"
            ")");
}

TEST(Describe, EmptyContainersInsideContainers) {
  EXPECT_EQ(describe(Value::dictionary({{"a", Value::array()}, {"b", Value::dictionary()}})),
            "{\n"
            "    a =     (\n"
            "    );\n"
            "    b =     {\n"
            "    };\n"
            "}");
}

TEST(Describe, ElementsAreSeparatedByCommas) {
  EXPECT_EQ(describe(Value::array({"a", "b", Value::array({"c"})})),
            "(\n"
            "    a,\n"
            "    b,\n"
            "        (\n"
            "        c\n"
            "    )\n"
            ")");
}

TEST(Describe, KeysStandInAscendingOrderOfTheirCharacters) {
  EXPECT_EQ(describe(Value::dictionary({{"b", "1"}, {"B", "2"}, {"\xC3\xA9", "3"}, {"a", "4"}})),
            "{\n    B = 2;\n    a = 4;\n    b = 1;\n    \"\xC3\xA9\" = 3;\n}");
}

TEST(Describe, InsideAContainerOnlyLettersAndDigitsStandBare) {
  EXPECT_EQ(describe(Value::array({"aZ09", "", "a b", "a\"b\\c", "x\n\r\ty", "\xC3\xA9",
                                   Value::null(), Value::data("a"), Value::boolean(true),
                                   Value::number("1e3"), Value::number("0.5")})),
            "(\n"
            "    aZ09,\n"
            "    \"\",\n"
            "    \"a b\",\n"
            "    \"a\\\"b\\\\c\",\n"
            "    \"x\\n\\r\\ty\",\n"
            "    \"\xC3\xA9\",\n"
            "    \"<null>\",\n"
            "    \"<61>\",\n"
            "    1,\n"
            "    1e3,\n"
            "    \"0.5\"\n"
            ")");
}

TEST(Format, FillsPlaceholdersInOrder) {
  EXPECT_EQ(format("[%@] [%s][%d] %x %ld %lu|%4d|", Value("t"), "f", -5, 0x4027U, 7L, 8UL, 42),
            "[t] [f][-5] 4027 7 8|  42|");
}

TEST(Format, AnAbsentValueAndANullTextShowAsNull) {
  EXPECT_EQ(format("%@ %s", Value(), static_cast<const char*>(nullptr)), "(null) (null)");
}

TEST(Format, PercentSignsInArgumentsAreText) {
  EXPECT_EQ(format("%@ %s %%", Value("%d %@"), "%s"), "%d %@ %s %");
}

TEST(Format, StringsOfTheLanguageAreValues) { EXPECT_EQ(format("%@", std::string("a")), "a"); }

TEST(Format, AMissingOrMisfittingArgumentRaises) {
  EXPECT_THROW(format("%d"), Exception);
  EXPECT_THROW(format("%@", 5), Exception);
  EXPECT_THROW(format("%d", Value("a")), Exception);
  EXPECT_THROW(format("%d", "a"), Exception);
}

TEST(Split, KeepsEmptyPieces) {
  EXPECT_EQ(split("/a//b/", '/'), Value::array({"", "a", "", "b", ""}));
  EXPECT_EQ(split("a", '/'), Value::array({"a"}));
  EXPECT_EQ(split("", '/'), Value::array({""}));
}

TEST(Utf8, KnowsWellFormedText) {
  for (const char* text : {"", "abc", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                           "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isUtf8(text)) << text;
  }
}

TEST(Utf8, KnowsWhatIsNotText) {
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x80\x80", "\xE0\x9F\xBF",
        "\xE1\x80", "\xE1\x80\x41", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80",
        "\xF0\x90\x80\x41", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(isUtf8(bytes)) << bytes;
  }
}

TEST(Utf8, RepairsByteByByte) {
  EXPECT_EQ(repairedUtf8("plain \xC3\xA9"), "plain \xC3\xA9");
  EXPECT_EQ(repairedUtf8("a\xFF"
                         "b\xC3"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(repairedUtf8("\xE1\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8, DecodesToNothingWhatIsNotText) {
  EXPECT_EQ(decodedUtf8("17"), Value("17"));
  EXPECT_TRUE(decodedUtf8("\xFF").isNothing());
  EXPECT_TRUE(decodedUtf8(nullptr).isNothing());
}

}  // namespace
}  // namespace kelvane::platform
