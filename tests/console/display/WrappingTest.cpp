// Texts fitted to columns.

#include <gtest/gtest.h>

#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

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

TEST(Beginning, OfATextThatFitsIsTheText) {
  EXPECT_EQ(beginningOf("5000A1B2", 8, Charset::utf8), "5000A1B2");
  EXPECT_EQ(beginningOf("", 8, Charset::utf8), "");
}

TEST(Beginning, OfALongerTextTellsItsSize) {
  EXPECT_EQ(beginningOf("5000A1B2C", 8, Charset::utf8), "5000A1B2… (9 bytes)");
  EXPECT_EQ(beginningOf("5000A1B2C", 8, Charset::ascii), "5000A1B2... (9 bytes)");
}

TEST(Beginning, CutsNoCharacter) {
  EXPECT_EQ(beginningOf("aéb", 2, Charset::utf8), "a… (4 bytes)");
}

TEST(FittedLines, WrapsWhatIsTooWideBehindItsIndentation) {
  EXPECT_EQ(fittedLines("ab cd\n  ab cd ef\n\nx\n", 7), "ab cd\n  ab cd\n  ef\n\nx\n");
  EXPECT_EQ(fittedLines("  ab cd ef\n", 0), "  ab cd ef\n");
  EXPECT_EQ(fittedLines("        ab\n", 4), "        ab\n");
}

}  // namespace
}  // namespace kelvane::console
