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
  EXPECT_THAT(page.texts(), ElementsAre("ann"));
  EXPECT_EQ(page.printed([](std::string_view) { return "<b>"; }), "<h2>ann</h2><p>&lt;b&gt;</p>");
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
