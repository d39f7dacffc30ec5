// A page under way: what comes out of files is text, never markup.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/report/Html.h"

namespace kelvane::console {
namespace {

using ::testing::ElementsAre;

std::string printedText(const std::string& text) {
  Html page;
  page.text(text);
  return page.printed();
}

TEST(Html, TextHasNoMarkup) {
  EXPECT_EQ(printedText(R"(</pre><script>a("b" & 'c')</script>)"),
            "&lt;/pre&gt;&lt;script&gt;a(&quot;b&quot; &amp; &#39;c&#39;)&lt;/script&gt;");
}

TEST(Html, ControlCharactersAndBrokenTextBecomeReplacementCharacters) {
  EXPECT_EQ(printedText("a\x1B[31mb"), "a\xEF\xBF\xBD[31mb");
  EXPECT_EQ(printedText(std::string("a\0b", 3)),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(printedText("a\xFF"
                        "b"),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(printedText("a\xE2\x80\xAE"
                        "b"),
            "a\xEF\xBF\xBD"
            "b");  // from right to left
}

TEST(Html, LinesAndTabulatorsStay) { EXPECT_EQ(printedText("a\n\tb"), "a\n    b"); }

TEST(Html, AttributesAreEscaped) {
  Html page;
  page.lone("rect", {{"class", "a\" onload=\"b"}});
  EXPECT_EQ(page.printed(), "<rect class=\"a&quot; onload=&quot;b\"/>");
}

TEST(Html, ElementsEndInTheOrderOfTheirNesting) {
  Html page;
  page.open("ul", {{"class", "x"}});
  page.element("li", "a");
  page.label("li", "b");
  page.close();
  EXPECT_EQ(page.printed(), "<ul class=\"x\"><li>a</li><li>b</li></ul>");
}

TEST(Html, TheFilterSeesTextsAloneAndCannotMakeMarkup) {
  Html page;
  page.label("h2", "ann");
  page.element("p", "ann");
  ASSERT_EQ(page.texts().size(), 1U);
  EXPECT_EQ(page.texts().front().text, "ann");
  EXPECT_EQ(page.printed([](const Html::Text&) { return "<b>"; }), "<h2>ann</h2><p>&lt;b&gt;</p>");
}

TEST(Html, TheFilterIsToldWhatATextIsTheValueOf) {
  Html page;
  page.element("td", "ann", {}, {.name = "owner"});
  EXPECT_EQ(page.printed([](const Html::Text& text) { return std::string(text.name); }),
            "<td>owner</td>");
}

TEST(Html, OfALongTextTheRestIsLeftOutAndThatIsSaid) {
  Html page;
  page.text("abcdef", {.most = 5});
  page.text("abcdef", {.most = 4});
  page.text("abcdef", {.most = 6});
  EXPECT_EQ(page.printed(), "abcde ... (1 byte is left out)abcd ... (2 bytes are left out)abcdef");
}

TEST(Html, ACharacterIsNotCut) {
  Html page;
  page.text("a\xC3\xBC", {.most = 2});
  EXPECT_EQ(page.printed(), "a ... (2 bytes are left out)");
}

TEST(Html, TheFilterSeesWhatGoesOnBehindTheBorder) {
  Html page;
  page.text("abc", {.most = 2});
  page.text(std::string(100000, 'x'), {.most = 2});
  const std::vector<Html::Text> texts = page.texts();
  EXPECT_EQ(texts.front().text, "abc");
  EXPECT_EQ(texts.front().shown, 2U);
  EXPECT_LT(texts.back().text.size(), 10000U);
  EXPECT_EQ(page.printed([](const Html::Text&) { return "-"; }),
            "- ... (1 byte is left out)- ... (99998 bytes are left out)");
}

TEST(Html, TextsTakeNoMoreThanTheRoomThatIsGiven) {
  Html page;
  page.giveRoom(7);
  page.element("p", "a&b");
  page.element("p", "c\"d");
  page.label("p", "words have room");
  page.giveRoom(1);
  page.text("e");
  EXPECT_EQ(page.printed(),
            "<p>a&amp;b</p><p> ... (3 bytes are left out)</p><p>words have room</p>e");
}

TEST(Html, AnotherPageIsTakenWhole) {
  Html page;
  Html other;
  other.element("p", "a");
  page.open("main");
  page.append(other);
  page.close();
  EXPECT_EQ(page.printed(), "<main><p>a</p></main>");
}

}  // namespace
}  // namespace kelvane::console
