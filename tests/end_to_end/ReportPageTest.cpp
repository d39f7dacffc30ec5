// A report in a real browser: on a desk, on a phone, in the dark, on paper.

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/ReportInstallation.h"

namespace kelvane {
namespace {

using platform::Value;

class ReportInABrowser : public ReportInstallation {
 protected:
  // What the browser tells of each look.
  Value looks(const std::vector<std::string>& wanted) const {
    std::vector<std::string> argv = {KELVANE_PYTHON, KELVANE_LOOK_AT_PAGE, folder / "report.html"};
    argv.insert(argv.end(), wanted.begin(), wanted.end());
    const test::Ended ended = test::runProgram(argv, folder.path(), {{"BROWSER", KELVANE_BROWSER}});
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    return platform::parseJson(ended.out);
  }
};

std::int64_t number(const Value& look, const char* key) { return look.get(key).integerValue(); }

// Heading by heading no level is left out.
bool areInOrder(const Value& levels) {
  std::int64_t before = 0;
  for (const Value& level : levels.elements()) {
    if (level.integerValue() > before + 1) return false;
    before = level.integerValue();
  }
  return levels.count() > 0;
}

TEST_F(ReportInABrowser, IsQuietAsksForNothingAndFitsEveryPlace) {
  flashThree({R"({"flash": "cpld", "do": "retry", "at": 60})",
              R"({"flash": "firmware", "do": "stall", "at": 40, "seconds": 600},
                 {"flash": "firmware", "do": "fail", "at": 90})"});
  report();
  const Value all = looks({"1280x900", "360x900", "360x900,dark,open", "800x900,dark,print"});
  ASSERT_EQ(all.count(), 4U);
  for (const Value& look : all.elements()) {
    SCOPED_TRACE(look.get("look").string());
    EXPECT_EQ(look.get("said").count(), 0U) << *platform::printJson(look.get("said"));
    EXPECT_EQ(look.get("requests"), Value::array({Value("file://" + (folder / "report.html"))}));
    EXPECT_EQ(number(look, "scrollWidth"), number(look, "clientWidth"));
    EXPECT_LE(number(look, "bodyWidth"), number(look, "clientWidth"));
    EXPECT_EQ(look.get("plots").count(), 2U);
    EXPECT_GT(look.get("plots").at(0).at(0).integerValue(), 300);
    EXPECT_TRUE(areInOrder(look.get("headings")));
    EXPECT_EQ(look.get("language"), Value("en"));
    EXPECT_EQ(number(look, "scripts"), 0);
    EXPECT_EQ(number(look, "anchors"), 0);  // that lead nowhere
  }
  EXPECT_EQ(number(all.at(1), "clientWidth"), 360);
  // The style is let in by the page's policy: without it every background is transparent.
  EXPECT_EQ(all.at(0).get("background"), Value("rgb(255, 255, 255)"));
  EXPECT_EQ(all.at(2).get("background"), Value("rgb(21, 25, 28)"));
  EXPECT_EQ(all.at(3).get("background"), Value("rgb(255, 255, 255)"));
  EXPECT_EQ(all.at(3).get("navigation"), Value("none"));
}

}  // namespace
}  // namespace kelvane
