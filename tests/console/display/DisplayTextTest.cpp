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

TEST(Shortened, NameThatFitsStays) {
  EXPECT_EQ(shortened("5000A1B2", 8, Charset::utf8), "5000A1B2");
  EXPECT_EQ(shortened("", 0, Charset::utf8), "");
}

TEST(Shortened, MiddleGivesWayToAnEllipsis) {
  EXPECT_EQ(shortened("5000A1B2C3D4E5F6", 9, Charset::utf8), "5000…E5F6");
  EXPECT_EQ(shortened("5000A1B2C3D4E5F6", 9, Charset::ascii), "500...5F6");
  EXPECT_EQ(shortened("5000A1B2C3D4E5F6", 8, Charset::utf8), "5000…5F6");
}

TEST(Shortened, NoEllipsisWhereThereIsNoRoomForMore) {
  EXPECT_EQ(shortened("5000A1B2", 3, Charset::ascii), "500");
  EXPECT_EQ(shortened("5000A1B2", 1, Charset::utf8), "5");
  EXPECT_EQ(shortened("5000A1B2", 0, Charset::utf8), "");
}

TEST(JobLine, NamesTheState) {
  EXPECT_EQ(jobLine({"18", "WAIT", {}, "", ""}, Charset::ascii), "job 18: waiting");
  EXPECT_EQ(jobLine({"18", "RUN", {}, "", ""}, Charset::ascii), "job 18: running");
  EXPECT_EQ(jobLine({"18", "FREE", {}, "", ""}, Charset::ascii), "job 18: finished");
}

TEST(JobLine, UnknownStateIsShownSafely) {
  EXPECT_EQ(jobLine({"\t", "\x1b[1m", {}, "", ""}, Charset::ascii), "job ?: ?[1m");
}

TEST(ResultLine, ShowsResultAndText) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "0", "no error"}, Charset::ascii), "result 0: no error");
  EXPECT_EQ(resultLine({"18", "FREE", {}, "32852", "bad\nimage"}, Charset::ascii),
            "result 32852: bad?image");
}

TEST(ResultLine, TellsThatThereIsNoResult) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "", ""}, Charset::ascii), "result missing: ");
}

TEST(ShellQuoted, KeepsQuotes) {
  EXPECT_EQ(shellQuoted("it's"), "'it'\\''s'");
  EXPECT_EQ(shellQuoted(""), "''");
}

TEST(FittedLines, WrapsWhatIsTooWideBehindItsIndentation) {
  EXPECT_EQ(fittedLines("ab cd\n  ab cd ef\n\nx\n", 7), "ab cd\n  ab cd\n  ef\n\nx\n");
  EXPECT_EQ(fittedLines("  ab cd ef\n", 0), "  ab cd ef\n");
  EXPECT_EQ(fittedLines("        ab\n", 4), "        ab\n");
}

}  // namespace
}  // namespace kelvane::console
