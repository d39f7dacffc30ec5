// Each promise of docs/reliability.md has a command that is there, and a short form of it among the
// tests that every build runs.

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/Page.h"
#include "tests/support/LogLine.h"
#include "tests/support/Program.h"

namespace kelvane::docs {
namespace {

namespace fs = std::filesystem;
using ::testing::SizeIs;
using ::testing::StartsWith;

struct Promise {
  std::string script;   // "tools/prove-dialogues"
  std::string program;  // "dialogues_tests"
  std::string filter;   // "Dialogues.*"
};

// What stands between the backticks.
std::string codeOf(const std::string& cell) {
  const std::size_t first = cell.find('`') + 1;
  return cell.substr(first, cell.find('`', first) - first);
}

std::vector<Promise> promises() {
  std::vector<Promise> all;
  for (const Row& row : tableRows(section(readSource("docs/reliability.md"), "## The promises"))) {
    const std::string proof = codeOf(row.at(1));
    const std::string test = codeOf(row.at(2));
    const std::size_t quote = test.find('\'') + 1;
    all.push_back({proof.substr(0, proof.find(' ')), test.substr(0, test.find(' ')),
                   test.substr(quote, test.rfind('\'') - quote)});
  }
  return all;
}

// The sanitizers' build has no kills in it, and one without Python no tools.
bool isBuilt(const std::string& program) {
  return std::string(" " KELVANE_PROVING " ").find(' ' + program + ' ') != std::string::npos;
}

// The names of the cases that the program has by this filter.
std::vector<std::string> casesOf(const std::string& program, const std::string& filter) {
  const std::string room = program.substr(0, program.rfind('_'));
  const test::Ended listed = test::runProgram({KELVANE_BUILD "/tests/" + room + "/" + program,
                                               "--gtest_list_tests", "--gtest_filter=" + filter},
                                              KELVANE_SOURCES);
  std::vector<std::string> cases;
  for (const std::string& line : test::splitLines(listed.out)) {
    if (line.rfind("  ", 0) == 0) cases.push_back(line.substr(2));
  }
  return cases;
}

TEST(ReliabilityPage, EachPromiseHasACommandThatIsThere) {
  for (const Promise& promise : promises()) {
    EXPECT_THAT(promise.script, StartsWith("tools/"));
    const fs::path script = KELVANE_SOURCES + promise.script;
    ASSERT_TRUE(fs::is_regular_file(script)) << script;
    EXPECT_NE(fs::status(script).permissions() & fs::perms::owner_exec, fs::perms::none) << script;
  }
}

TEST(ReliabilityPage, EachPromiseHasAShortFormAmongTheTests) {
  for (const Promise& promise : promises()) {
    if (!isBuilt(promise.program)) continue;
    EXPECT_THAT(casesOf(promise.program, promise.filter), ::testing::Not(SizeIs(0)))
        << promise.program << ' ' << promise.filter;
  }
}

TEST(ReliabilityPage, AShortFormThatIsNotThereIsSeen) {
  EXPECT_THAT(casesOf("dialogues_tests", "NoSuchSuite.*"), SizeIs(0));
}

}  // namespace
}  // namespace kelvane::docs
