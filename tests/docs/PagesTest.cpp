// What holds for every reference page: its JSON can be read, and its links lead somewhere.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

class PageNamed : public ::testing::TestWithParam<const char*> {
 protected:
  static std::string text() { return readSource(std::string("docs/") + GetParam()); }
};

// The targets of "](target)", those of other sites aside.
std::vector<std::string> linksIn(const std::string& page) {
  std::vector<std::string> found;
  for (std::size_t at = page.find("]("); at != std::string::npos; at = page.find("](", at + 1)) {
    const std::string target = page.substr(at + 2, page.find(')', at) - at - 2);
    if (target.rfind("https:", 0) != 0) found.push_back(target);
  }
  return found;
}

// A heading as links name it: "## A job, ended" is "a-job-ended".
std::string anchorOf(const std::string& heading) {
  std::string anchor;
  for (const char character : heading.substr(heading.find(' ') + 1)) {
    if (character == ' ') anchor += '-';
    if (std::isalnum(static_cast<unsigned char>(character)) == 0) continue;
    anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return anchor;
}

bool hasAnchor(const std::string& page, const std::string& anchor) {
  for (const std::string& line : test::splitLines(page)) {
    if (line.rfind('#', 0) == 0 && anchorOf(line) == anchor) return true;
  }
  return false;
}

TEST_P(PageNamed, ShowsOnlyJsonThatCanBeRead) {
  for (const std::string& block : codeBlocks(text(), "json")) {
    EXPECT_FALSE(platform::parseJson(block).isNothing()) << block;
  }
}

TEST_P(PageNamed, HasLinksThatLeadSomewhere) {
  for (const std::string& link : linksIn(text())) {
    const std::size_t mark = std::min(link.find('#'), link.size());
    const std::string file = mark == 0 ? GetParam() : link.substr(0, mark);
    ASSERT_TRUE(std::filesystem::exists(KELVANE_SOURCES "docs/" + file)) << link;
    if (mark == link.size()) continue;
    EXPECT_TRUE(hasAnchor(readSource("docs/" + file), link.substr(mark + 1))) << link;
  }
}

INSTANTIATE_TEST_SUITE_P(Docs, PageNamed,
                         ::testing::Values("bundle.md", "findings.md", "integration.md",
                                           "job-file.md", "log.md", "performance.md",
                                           "reliability.md", "report.md", "result-codes.md",
                                           "settings.md"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::erase_if(name, [](char c) { return c == '-' || c == '.'; });
                           return name;
                         });

}  // namespace
}  // namespace kelvane::docs
