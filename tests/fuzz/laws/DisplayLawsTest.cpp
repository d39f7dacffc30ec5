// The laws of text for people bite.
#include <gtest/gtest.h>

#include "tests/fuzz/laws/DisplayLaws.h"

namespace kelvane::fuzz {
namespace {

TEST(WrappingLaws, AreBrokenByWhatIsLostCutOrTooWide) {
  requireWrapped("ab c\xC3\xA4", 3, {"ab", "c\xC3\xA4"});
  EXPECT_DEATH(requireWrapped("ab c", 3, {"ab"}), "all but blanks");
  EXPECT_DEATH(requireWrapped("ab c", 3, {"ab c"}), "line fits");
  EXPECT_DEATH(requireWrapped("c\xC3\xA4", 3, {"c\xC3", "\xA4"}), "no character is cut");
  requireFitted("  abc def\ng", 6, "  abc\n  def\ng\n");
  EXPECT_DEATH(requireFitted("  abc def", 6, "  abc\n"), "all but blanks");
  EXPECT_DEATH(requireFitted("  abc def", 6, "  abc def\n"), "line fits");
  EXPECT_DEATH(requireShortened("abcd", 3), "name fits");
  EXPECT_DEATH(requireShortened("\xC3", 3), "name fits");
}

TEST(DisplayLaws, AreOfTablesQuestionsAndQuoting) {
  EXPECT_DEATH(requireRow("abcd", 3, true), "table fits");
  EXPECT_DEATH(requireRow("a\nb", 3, true), "one line");
  EXPECT_DEATH(requireRow("\x1b[31ma\x1b[0m", 30, false), "steers nothing");
  requireQuestion("Go on?\n[y/N] ", 6, true);
  EXPECT_DEATH(requireQuestion("Go on? [y/N] ", 6, true), "question fits");
  EXPECT_DEATH(requireQuestion("Go on?", 6, true), "may be answered");
  EXPECT_DEATH(requireQuestion("\x1b[y/N] ", 9, true), "steers nothing");
  requireQuoted("a'b", "'a'\\''b'");
  EXPECT_DEATH(requireQuoted("a", "a"), "everything is quoted");
  EXPECT_DEATH(requireQuoted("a", "'a"), "is quoted ends");
  EXPECT_DEATH(requireQuoted("a", "'b'"), "a shell reads");
}

}  // namespace
}  // namespace kelvane::fuzz
