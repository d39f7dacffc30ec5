// Texts made safe for the terminal.

#include <gtest/gtest.h>

#include "console/display/DisplayText.h"

namespace kelvane::console {
namespace {

TEST(DisplayText, PlainTextStaysAsItIs) {
  EXPECT_EQ(displayText("no error", Charset::ascii), "no error");
  EXPECT_EQ(displayText("Gerät überhitzt €", Charset::utf8), "Gerät überhitzt €");
}

TEST(DisplayText, ControlCharactersAreReplaced) {
  EXPECT_EQ(displayText("a\x1b[2Jb\r\nc\x07\x7f", Charset::utf8), "a�[2Jb��c��");
  EXPECT_EQ(displayText("a\x1b[2Jb\r\nc\x07\x7f", Charset::ascii), "a?[2Jb??c??");
  EXPECT_EQ(displayText(std::string_view("a\0b", 3), Charset::ascii), "a?b");
}

TEST(DisplayText, ControlCharactersBeyondAsciiAreReplaced) {
  EXPECT_EQ(displayText("a\xC2\x9B"
                        "31mb",
                        Charset::utf8),
            "a�31mb");  // U+009B
  EXPECT_EQ(displayText("a\xE2\x80\xAE"
                        "b",
                        Charset::utf8),
            "a�b");  // U+202E
  EXPECT_EQ(displayText("a\xE2\x80\xA8"
                        "b",
                        Charset::utf8),
            "a�b");  // U+2028
  EXPECT_EQ(displayText("a\xEF\xBB\xBF"
                        "b",
                        Charset::utf8),
            "a�b");  // U+FEFF
}

TEST(DisplayText, NeighboursOfControlCharactersAreKept) {
  EXPECT_EQ(displayText("\x20~\xC2\xA0\xE2\x80\xA7\xE2\x80\xAF\xF0\x9F\x92\xBE", Charset::utf8),
            "\x20~\xC2\xA0\xE2\x80\xA7\xE2\x80\xAF\xF0\x9F\x92\xBE");
}

TEST(DisplayText, WhatIsNotUtf8IsReplaced) {
  EXPECT_EQ(displayText("a\xFF"
                        "b\xE2\x80",
                        Charset::utf8),
            "a�b��");
  EXPECT_EQ(displayText("a\xFF"
                        "b",
                        Charset::ascii),
            "a?b");
}

TEST(DisplayText, WithoutUtf8EachCharacterBeyondAsciiIsOneQuestionMark) {
  EXPECT_EQ(displayText("ä€💾", Charset::ascii), "???");
}

TEST(DisplayName, IsPrintableAscii) { EXPECT_EQ(displayName("5000Ä\t1"), "5000??1"); }

}  // namespace
}  // namespace kelvane::console
