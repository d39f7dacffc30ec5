// The laws of what the console shows bite.
#include <string>

#include <gtest/gtest.h>

#include "console/job/ExitCode.h"
#include "tests/fuzz/laws/ConsoleLaws.h"

namespace kelvane::fuzz {
namespace {

TEST(ColourLaw, KnowsTheConsolesColoursAlone) {
  EXPECT_EQ(withoutColours("a \x1b[31mb\nc\x1b[0m \x1b[33md\x1b[0m\x1b[32me\x1b[0m"), "a b\nc de");
  for (const char* text : {"\x1b", "\x1b[0m", "\x1b[34mb\x1b[0m", "\x1b[31mb\x1b[m", "\x1b[1;31mb",
                           "\x1b[31m\x1b[31mb\x1b[0m", "\x1b[31mb\x1b[2J\x1b[0m", "\x1b]0;b\x07"}) {
    EXPECT_DEATH(withoutColours(text), "no sequences but") << text;
  }
  EXPECT_DEATH(withoutColours("\x1b[31mb"), "a colour ends");
}

TEST(ColourLaw, IsBrokenByWhatElseChanges) {
  requireSameInColour("ab", "a\x1b[32mb\x1b[0m", false);
  requireSameInColour("{}", "{}", true);
  EXPECT_DEATH(requireSameInColour("ab", "a\x1b[32mc\x1b[0m", false), "change nothing else");
  EXPECT_DEATH(requireSameInColour("{}", "\x1b[32m{}\x1b[0m", true), "change nothing else");
}

TEST(DrawingLaw, KeepsWhatIsNoDrawing) {
  EXPECT_EQ(withoutDrawing("a\x1b[K\n\x1b[J\r\x1b[1A"
                           "b\x1b[K\n\x1b[Jdone\n",
                           9),
            "a\nb\ndone\n");
  EXPECT_EQ(withoutDrawing("a\x1b[2J\n", 9), "a\x1b[2J\n");
  EXPECT_DEATH(withoutDrawing("abc\x1b[K\n", 3), "drawn again is full");
}

TEST(ConsoleLaws, AreOfWidthJsonAndPages) {
  requireForeseen(console::kJobFailed, "");
  EXPECT_DEATH(requireForeseen(console::kInternalError, "vector"), "of another kind\nvector");
  requireFitting("abc\nde", 3);
  EXPECT_DEATH(requireFitting("a\nabcd", 3), "wider than the screen");
  requireJson("{\n}\n");
  requireJson("{\"a\": 1}\n[2]\n");
  EXPECT_DEATH(requireJson("{\"a\": 1}\nerror\n"), "is JSON");
  requirePage("<p>a</p>");
  EXPECT_DEATH(requirePage("<p>a"), "well-formed");
  EXPECT_DEATH(requirePage("<p>\x1b[2J</p>"), "steers");
  EXPECT_DEATH(requirePage("<p><script/></p>"), "no script");
}

}  // namespace
}  // namespace kelvane::fuzz
