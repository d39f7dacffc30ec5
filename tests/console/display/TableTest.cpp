// Tables, wide and narrow.

#include <clocale>

#include <gtest/gtest.h>

#include "console/display/Table.h"

namespace kelvane::console {
namespace {

using Lines = std::vector<std::string>;

Table packages() {
  Table table({{"Product"}, {"Size", true}, {"Path"}});
  table.addRow({"manager", "9 B", "/Manager.app"});
  table.addRow({"T3", "1.2 MB", ""});
  return table;
}

TEST(Table, ColumnsAreAsWideAsTheirWidestCell) {
  EXPECT_EQ(packages().lines(0, Charset::ascii),
            (Lines{"Product    Size  Path", "manager     9 B  /Manager.app", "T3       1.2 MB"}));
}

TEST(Table, WhatFitsToTheColumnIsNotStacked) {
  EXPECT_EQ(packages().lines(29, Charset::ascii), packages().lines(0, Charset::ascii));
}

TEST(Table, OneCellALineWhereTheScreenIsNarrow) {
  EXPECT_EQ(packages().lines(28, Charset::ascii),
            (Lines{"Product  manager", "Size     9 B", "Path     /Manager.app", "", "Product  T3",
                   "Size     1.2 MB", "Path     "}));
}

TEST(Table, ACellWithoutRoomBesideItsTitleStandsBelowIt) {
  const Lines lines = packages().lines(16, Charset::ascii);
  EXPECT_EQ((Lines{lines.begin(), lines.begin() + 4}),
            (Lines{"Product  manager", "Size     9 B", "Path", "  /Manager.app"}));
}

TEST(Table, ACellOfSeveralWordsIsWrapped) {
  Table table({{"Job"}, {"Text"}, {"Of", true}});
  table.addRow({"17", "5000A1 failed at 90%, 2 not started", "3"});
  EXPECT_EQ(table.lines(24, Charset::ascii),
            (Lines{"Job   17", "Text  5000A1 failed at", "      90%, 2 not started", "Of    3"}));
}

Table jobs() {
  Table table({{"Log id", true}, {"Command"}, {"Text"}});
  table.addRow({"1", "updateSW", "no error"});
  table.addRow({"17", "updateFW", "the flash failed (1 done, 5000A1 failed at 90%)"});
  table.addRow({"18", "updateFW", ""});
  return table;
}

TEST(Table, ALongTextIsWrappedInItsColumn) {
  EXPECT_EQ(jobs().lines(40, Charset::ascii),
            (Lines{"Log id  Command   Text",                    //
                   "     1  updateSW  no error",                //
                   "    17  updateFW  the flash failed (1",     //
                   "                  done, 5000A1 failed at",  //
                   "                  90%)",                    //
                   "    18  updateFW"}));
}

TEST(Table, ATextWithoutRoomBesideTheOthersStandsBelowThem) {
  EXPECT_EQ(jobs().lines(36, Charset::ascii), (Lines{"Log id  Command", "    Text",           //
                                                     "     1  updateSW", "    no error",      //
                                                     "    17  updateFW",                      //
                                                     "    the flash failed (1 done, 5000A1",  //
                                                     "    failed at 90%)",                    //
                                                     "    18  updateFW"}));
}

TEST(Table, WhereTheOthersHaveNoRoomEachCellHasALine) {
  EXPECT_EQ(jobs().lines(15, Charset::ascii).front(), "Log id   1");
  EXPECT_EQ(jobs().lines(16, Charset::ascii).front(), "Log id  Command");
}

TEST(Table, AWordThatIsTooWideEvenSoIsBroken) {
  EXPECT_EQ(packages().lines(12, Charset::ascii)[4], "  /Manager.a");
  EXPECT_EQ(packages().lines(12, Charset::ascii)[5], "  pp");
}

TEST(Table, OfAnEndlessCellTheMiddleGivesWay) {
  Table table({{"A"}});
  table.addRow({std::string(1000, 'x')});
  EXPECT_EQ(table.lines(12, Charset::ascii).size(), 11U);
}

TEST(Table, NoLineIsWiderThanTheScreen) {
  for (const Table& table : {packages(), jobs()}) {
    for (std::size_t columns = 1; columns < 80; ++columns) {
      for (const std::string& line : table.lines(columns, Charset::ascii)) {
        EXPECT_LE(line.size(), columns);
      }
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
