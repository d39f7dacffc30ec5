// Headings with labelled paragraphs, wide and narrow.

#include <sstream>

#include <gtest/gtest.h>

#include "console/display/Colour.h"
#include "console/display/Paragraphs.h"
#include "console/display/Wrapping.h"
#include "tests/support/LogLine.h"

namespace kelvane::console {
namespace {

class Paragraphs : public ::testing::Test {
 protected:
  std::string shown(const Heading& heading, const std::vector<Paragraph>& paragraphs) {
    out.str("");
    showParagraphs(heading, paragraphs, screen);
    return out.str();
  }

  std::ostringstream out;
  Screen screen{out, Charset::utf8};
};

TEST_F(Paragraphs, OutsideATerminalEveryTextIsOneLine) {
  EXPECT_EQ(shown({"error: it is so", Colour::red}, {{"means", "much"}, {"to do", "a lot"}}),
            "error: it is so\n  means  much\n  to do  a lot\n");
}

TEST_F(Paragraphs, LabelsAreAsWideAsTheLongestThatIsShown) {
  EXPECT_EQ(shown({"x", Colour::red}, {{"a", "1"}, {"very long", ""}, {"bb", "2"}}),
            "x\n  a   1\n  bb  2\n");
}

TEST_F(Paragraphs, TextsWrapBehindTheirLabels) {
  screen.columns = 26;
  EXPECT_EQ(shown({"error: no such file or directory", Colour::red},
                  {{"to do", "put it where it belongs"}}),
            "error: no such file or\ndirectory\n  to do  put it where it\n         belongs\n");
}

TEST_F(Paragraphs, InANarrowTerminalTextsFollowTheirLabels) {
  screen.columns = 20;
  EXPECT_EQ(shown({"x", Colour::red}, {{"to do", "put it where it belongs"}}),
            "x\nto do: put it where\nit belongs\n");
}

TEST_F(Paragraphs, NoLineIsLongerThanTheScreen) {
  const std::string path = "/" + std::string(60, 'x') + "/\xC3\xA9\xC3\xA9\xC3\xA9";
  for (screen.columns = 1; screen.columns < 90; ++screen.columns) {
    for (const std::string& line :
         test::splitLines(shown({"error: open " + path, Colour::red}, {{"means", path}}))) {
      EXPECT_LE(columnsOf(line), screen.columns) << line;
    }
  }
}

TEST_F(Paragraphs, NoCharacterIsCutWhereALongWordWraps) {
  screen.columns = 4;
  EXPECT_EQ(shown({"a\xC3\xA9\xC3\xA9\xC3\xA9", Colour::red}, {}), "a\xC3\xA9\n\xC3\xA9\xC3\xA9\n");
}

TEST_F(Paragraphs, TheHeadingIsColouredUpToItsColon) {
  screen.colour = true;
  EXPECT_EQ(shown({"error: x", Colour::red}, {}), "\x1b[31merror\x1b[0m: x\n");
  EXPECT_EQ(shown({"no findings", Colour::green}, {}), "\x1b[32mno findings\x1b[0m\n");
}

TEST_F(Paragraphs, TextsAreShownSafely) {
  screen.charset = Charset::ascii;
  EXPECT_EQ(shown({"a\x1b[2J", Colour::red}, {{"b", "c\nd\xFF"}}), "a?[2J\n  b  c?d?\n");
}

}  // namespace
}  // namespace kelvane::console
