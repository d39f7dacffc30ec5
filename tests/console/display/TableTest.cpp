// Tables, wide and narrow.

#include <clocale>

#include <gtest/gtest.h>

#include "console/display/Table.h"

namespace kelvane::console {
namespace {

using Lines = std::vector<std::string>;

Table packages() {
  Table table({{"Product"}, {"Size", true}, {"Path"}});
  table.addRow({"manager", "9 B", "/a/Manager.app"});
  table.addRow({"T3", "1.2 MB", ""});
  return table;
}

TEST(Table, ColumnsAreAsWideAsTheirWidestCell) {
  EXPECT_EQ(packages().lines(0, Charset::ascii),
            (Lines{"Product    Size  Path", "manager     9 B  /a/Manager.app", "T3       1.2 MB"}));
}

TEST(Table, WhatFitsToTheColumnIsNotStacked) {
  EXPECT_EQ(packages().lines(31, Charset::ascii), packages().lines(0, Charset::ascii));
}

TEST(Table, OneCellALineWhereTheScreenIsNarrow) {
  EXPECT_EQ(packages().lines(30, Charset::ascii),
            (Lines{"Product  manager", "Size     9 B", "Path     /a/Manager.app", "", "Product  T3",
                   "Size     1.2 MB", "Path     "}));
}

TEST(Table, ACellWithoutRoomBesideItsTitleStandsBelowIt) {
  const Lines lines = packages().lines(17, Charset::ascii);
  EXPECT_EQ((Lines{lines.begin(), lines.begin() + 4}),
            (Lines{"Product  manager", "Size     9 B", "Path", "  /a/Manager.app"}));
}

TEST(Table, ACellOfSeveralWordsIsWrapped) {
  Table table({{"Job"}, {"Text"}});
  table.addRow({"17", "5000A1 failed at 90%, 2 not started"});
  EXPECT_EQ(table.lines(24, Charset::ascii),
            (Lines{"Job   17", "Text  5000A1 failed at", "      90%, 2 not started"}));
}

TEST(Table, AWordThatIsTooWideEvenSoIsBroken) {
  EXPECT_EQ(packages().lines(12, Charset::ascii)[4], "  /a/Manager");
  EXPECT_EQ(packages().lines(12, Charset::ascii)[5], "  .app");
}

TEST(Table, OfAnEndlessCellTheMiddleGivesWay) {
  Table table({{"A"}});
  table.addRow({std::string(1000, 'x')});
  EXPECT_EQ(table.lines(12, Charset::ascii).size(), 11U);
}

TEST(Table, NoLineIsWiderThanTheScreen) {
  for (std::size_t columns = 1; columns < 40; ++columns) {
    for (const std::string& line : packages().lines(columns, Charset::ascii)) {
      EXPECT_LE(line.size(), columns);
    }
  }
}

TEST(Table, CellsAreShownSafely) {
  Table table({{"A"}});
  table.addRow({"x\n\x1b[2J"});
  EXPECT_EQ(table.lines(0, Charset::ascii)[1], "x??[2J");
}

TEST(Table, CharactersOfSeveralBytesAndOfTwoColumnsLineUp) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  Table table({{"A"}, {"B"}});
  table.addRow({"\xC3\xA9\xC3\xA9", "1"});  // two columns
  table.addRow({"\xE6\x9C\xAC", "2"});      // one character, two columns
  const Lines lines = table.lines(0, Charset::utf8);
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(lines, (Lines{"A   B", "\xC3\xA9\xC3\xA9  1", "\xE6\x9C\xAC  2"}));
}

TEST(Table, WithoutRowsItIsItsTitles) {
  EXPECT_EQ(Table({{"A"}, {"B"}}).lines(0, Charset::ascii), (Lines{"A  B"}));
}

}  // namespace
}  // namespace kelvane::console
