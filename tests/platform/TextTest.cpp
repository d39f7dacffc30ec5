#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Text.h"
#include "platform/Utf8.h"
#include "tests/platform/Reason.h"

namespace kelvane::platform {
namespace {

// What the action raises, to the character.
using test::reasonOf;

// The bytes, also where a NUL character is among them.
std::string bytes(std::initializer_list<int> values) {
  std::string made;
  for (const int value : values) made += static_cast<char>(value);
  return made;
}

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

TEST(Describe, EveryFieldOfADateIsPadded) {
  EXPECT_EQ(describe(Date{0}), "1970-01-01 00:00:00 +0000");
  EXPECT_EQ(describe(Date{951'782'400}), "2000-02-29 00:00:00 +0000");
  EXPECT_EQ(describe(Date{1'136'171'045}), "2006-01-02 03:04:05 +0000");
  EXPECT_EQ(describe(Date{-62'135'596'800}), "0001-01-01 00:00:00 +0000");
}

TEST(Describe, EveryByteOfDataIsTwoDigits) {
  EXPECT_EQ(describe(Value::data(bytes({0x00, 0x01, 0x0F, 0x10, 0x80, 0xFF}))), "<00010f1080ff>");
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

TEST(Describe, DatesDataAndTruthInsideADictionary) {
  EXPECT_EQ(describe(Value::dictionary({{"when", Date{0}},
                                        {"what", Value::data("\x01")},
                                        {"yes", Value::boolean(true)},
                                        {"no", Value::boolean(false)},
                                        {"null", Value::null()}})),
            "{\n"
            "    no = 0;\n"
            "    null = \"<null>\";\n"
            "    what = \"<01>\";\n"
            "    when = \"1970-01-01 00:00:00 +0000\";\n"
            "    yes = 1;\n"
            "}");
}

TEST(Describe, EveryLevelIsFourBlanksDeeper) {
  EXPECT_EQ(describe(Value::array({Value::array({Value::array({"x"}), "y"})})),
            "(\n"
            "        (\n"
            "                (\n"
            "            x\n"
            "        ),\n"
            "        y\n"
            "    )\n"
            ")");
}

TEST(Describe, OnlyTheLettersAndDigitsOfAsciiStandBare) {
  for (int code = 1; code < 128; ++code) {
    const std::string text(1, static_cast<char>(code));
    const bool isBare = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                        (code >= 'a' && code <= 'z');
    const std::string described = describe(Value::array({text}));
    EXPECT_EQ(described == "(\n    " + text + "\n)", isBare) << code;
    EXPECT_EQ(described.find('"') == std::string::npos, isBare) << code;
  }
}

TEST(Describe, KeysAreQuotedAsTextsAre) {
  EXPECT_EQ(describe(Value::dictionary({{"", "a"}, {"a\tb", "b"}, {"a\"\\", "c"}})),
            "{\n    \"\" = a;\n    \"a\\tb\" = b;\n    \"a\\\"\\\\\" = c;\n}");
}

TEST(Format, FillsPlaceholdersInOrder) {
  EXPECT_EQ(format("[%@] [%s][%d] %x %ld %lu|%4d|", Value("t"), "f", -5, 0x4027U, 7L, 8UL, 42),
            "[t] [f][-5] 4027 7 8|  42|");
}

TEST(Format, NumbersOfEverySizeAreWhole) {
  EXPECT_EQ(format("%ld", std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(format("%lu", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(format("%lld %llu", std::int64_t{-5}, std::uint64_t{7}), "-5 7");
  EXPECT_EQ(format("%x", std::uint32_t{0xFFFFFFFF}), "ffffffff");
  EXPECT_EQ(format("%d %d", std::uint8_t{255}, -1), "255 -1");
}

TEST(Format, WidthsAndFlagsAreTakenAsInC) {
  EXPECT_EQ(format("%4d|%-4d|%04d|%+d|%#x|%08lx|%5s|%-5s|%.2s", 42, 42, 42, 42, 42U, 0xABUL, "ab",
                   "ab", "abc"),
            "  42|42  |0042|+42|0x2a|000000ab|   ab|ab   |ab");
}

TEST(Format, TextAroundPlaceholdersStays) {
  EXPECT_EQ(format(""), "");
  EXPECT_EQ(format("plain"), "plain");
  EXPECT_EQ(format("%@%@", "a", "b"), "ab");
  EXPECT_EQ(format(" %@ - %d. ", "a", 1), " a - 1. ");
  EXPECT_EQ(format("100 %%"), "100 %");
}

TEST(Format, ATextOfTheLanguageStandsForAValue) {
  EXPECT_EQ(format("%@ %@", "text", static_cast<const char*>(nullptr)), "text (null)");
}

TEST(Format, EveryPieceStaysWhereItIsMade) {
  const auto numbers = argumentList(1, 2, 3, 4, 5, 6, 7, 8, 9);
  const FilledFormat filled("%d%d%d%d%d%d%d%d%d", numbers);
  // They take what memory was given back meanwhile.
  std::vector<std::string> others;
  for (std::size_t size = 16; size <= 1024; size += 16) others.emplace_back(size, 'x');
  EXPECT_EQ(joined(filled.pieces()), "123456789");
}

TEST(Format, ArgumentsThatNoPlaceholderAsksForAreLeftOut) {
  EXPECT_EQ(format("%d", 1, 2, "three"), "1");
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

TEST(Format, AReasonNamesThePlaceholder) {
  EXPECT_EQ(reasonOf([] { format("a %@ %4d", Value("x")); }), "no argument for \"%4d\"");
  EXPECT_EQ(reasonOf([] { format("%@"); }), "no argument for \"%@\"");
  EXPECT_EQ(reasonOf([] { format("100 %"); }), "no argument for \"%\"");
  EXPECT_EQ(reasonOf([] { format("%-5"); }), "no argument for \"%-5\"");
  EXPECT_EQ(reasonOf([] { format("%s", Value("x")); }), "a value stands at the placeholder \"%s\"");
  EXPECT_EQ(reasonOf([] { format("%@", 5); }), "a number stands at the placeholder \"%@\"");
  EXPECT_EQ(reasonOf([] { format("%@", 5U); }), "a number stands at the placeholder \"%@\"");
  EXPECT_EQ(reasonOf([] { format("%y", 5); }).rfind("\"%y\": invalid ", 0), 0U);
  EXPECT_EQ(reasonOf([] { format("%ld", "x"); }).rfind("\"%ld\": ", 0), 0U);
}

TEST(Format, APlaceholderEndsWithTheFirstCharacterThatIsNoneOfItsFlagsAndSizes) {
  const std::string flagsAndSizes = "0123456789.-+ #lhjzt";
  for (char character = ' '; character <= '~'; ++character) {
    if (character == '%') continue;
    const std::string begin = std::string("%") + character;
    const bool goesOn = flagsAndSizes.find(character) != std::string::npos;
    EXPECT_EQ(reasonOf([&] { format(begin + "d"); }),
              "no argument for \"" + begin + (goesOn ? "d" : "") + "\"");
  }
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

TEST(Utf8, EveryRangeReachesFromItsFirstCharacterToItsLast) {
  for (const char* text : {"\x01",
                           "\x7F",
                           "\xC2\xBF",
                           "\xDF\x80",
                           "\xE0\xA0\xBF",
                           "\xE0\xBF\x80",
                           "\xE0\xBF\xBF",
                           "\xE1\x80\x80",
                           "\xEC\xBF\xBF",
                           "\xED\x80\x80",
                           "\xEE\xBF\xBF",
                           "\xEF\x80\x80",
                           "\xEF\xBF\xBF",
                           "\xF0\x90\xBF\xBF",
                           "\xF0\xBF\x80\x80",
                           "\xF0\xBF\xBF\xBF",
                           "\xF1\x80\x80\x80",
                           "\xF3\xBF\xBF\xBF",
                           "\xF4\x80\x80\x80",
                           "\xF4\x80\xBF\xBF"}) {
    EXPECT_TRUE(isUtf8(text)) << text;
  }
}

TEST(Utf8, OneBeyondARangeIsNotText) {
  for (const char* bytes :
       {"\xC2\x7F",         "\xC2\xC0",         "\xDF\x7F",         "\xDF\xC0",
        "\xE0\xC0\x80",     "\xE1\x7F\x80",     "\xE1\xC0\x80",     "\xE1\x80\x7F",
        "\xE1\x80\xC0",     "\xEC\xC0\x80",     "\xED\x7F\x80",     "\xED\xBF\xBF",
        "\xEE\x7F\x80",     "\xEF\xC0\x80",     "\xEF\xBF\xC0",     "\xF0\xC0\x80\x80",
        "\xF0\x90\x7F\x80", "\xF0\x90\xC0\x80", "\xF0\x90\x80\x7F", "\xF0\x90\x80\xC0",
        "\xF1\x7F\x80\x80", "\xF3\xC0\x80\x80", "\xF4\x7F\x80\x80", "\xF4\x8F\xBF\xC0",
        "\xF8\x88\x80\x80"}) {
    EXPECT_FALSE(isUtf8(bytes)) << bytes;
    EXPECT_EQ(repairedUtf8(bytes).rfind("\xEF\xBF\xBD", 0), 0U) << bytes;
  }
}

TEST(Utf8, ASequenceEndsWithTheBytesAndNotBehindThem) {
  const std::string_view text = "\xF0\x9F\x98\x80";
  for (std::size_t length = 1; length < text.size(); ++length) {
    EXPECT_FALSE(isUtf8(text.substr(0, length))) << length;
  }
  EXPECT_TRUE(isUtf8(text));
}

TEST(Utf8, ANulCharacterIsText) {
  EXPECT_TRUE(isUtf8(std::string_view("a\0b", 3)));
  EXPECT_EQ(repairedUtf8(std::string_view("\0\xFF\0", 3)), bytes({0, 0xEF, 0xBF, 0xBD, 0}));
}

TEST(Utf8, KnowsWhatIsNotText) {
  for (const char* bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x80\x80", "\xE0\x9F\xBF",
        "\xE1\x80", "\xE1\x80\x41", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80",
        "\xF0\x90\x80\x41", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(isUtf8(bytes)) << bytes;
  }
}

TEST(Utf8, OneByteThatIsNotTextIsFoundWhereverItStands) {
  for (const std::size_t size : {1U, 63U, 64U, 65U, 128U, 200U}) {
    for (std::size_t at = 0; at < size; ++at) {
      std::string text(size, 'a');
      text[at] = '\x80';
      EXPECT_FALSE(isUtf8(text)) << at << " of " << size;
      EXPECT_EQ(repairedUtf8(text),
                std::string(at, 'a') + "\xEF\xBF\xBD" + std::string(size - at - 1, 'a'));
    }
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

TEST(Utf8, WhatFollowsARepairedByteIsReadAfresh) {
  EXPECT_EQ(repairedUtf8("\xE1\xC3\xA9"), "\xEF\xBF\xBD\xC3\xA9");
  EXPECT_EQ(repairedUtf8("\xFF\xFF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(repairedUtf8("\xC3\xA9\xA9x"), "\xC3\xA9\xEF\xBF\xBDx");
  EXPECT_EQ(repairedUtf8(""), "");
}

TEST(Utf8, DecodesToNothingWhatIsNotText) {
  EXPECT_EQ(decodedUtf8("17"), Value("17"));
  EXPECT_TRUE(decodedUtf8("\xFF").isNothing());
  EXPECT_TRUE(decodedUtf8(nullptr).isNothing());
}

}  // namespace
}  // namespace kelvane::platform
