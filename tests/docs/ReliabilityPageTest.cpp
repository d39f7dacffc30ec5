// Each promise of docs/reliability.md has a command that is there, and a short form of it among the
// tests, or is a step of tools/check-all.

#include <algorithm>
#include <filesystem>
#include <set>
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
using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::SizeIs;

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

Promise promiseOf(const std::string& proof, const std::string& test) {
  const std::size_t quote = test.find('\'') + 1;
  return {proof.substr(0, proof.find(' ')), test.substr(0, test.find(' ')),
          test.substr(quote, test.rfind('\'') - quote)};
}

std::vector<Row> rowsOf(const std::string& heading) {
  return tableRows(section(readSource("docs/reliability.md"), heading));
}

std::vector<Promise> promises() {
  std::vector<Promise> all;
  for (const Row& row : rowsOf("## The promises")) {
    all.push_back(promiseOf(codeOf(row.at(1)), codeOf(row.at(2))));
  }
  return all;
}

// Those whose tests are all there is to them.
std::vector<Promise> wholePromises() {
  std::vector<Promise> all;
  for (const Row& row : rowsOf("## Whole among the tests")) {
    all.push_back(promiseOf("", codeOf(row.at(1))));
  }
  return all;
}

constexpr const char* kProvingPrograms[] = {"dialogues_tests", "fuzz_tests", "proofs_tests",
                                            "tools_tests"};

// The sanitizers' build has no kills in it; other systems have fewer of them.
bool isBuilt(const std::string& program) {
  return std::string(" " KELVANE_PROVING " ").find(' ' + program + ' ') != std::string::npos;
}

// "A.*:B.*" are two.
std::vector<std::string> partsOf(std::string filter) {
  std::replace(filter.begin(), filter.end(), ':', '\n');
  return test::splitLines(filter);
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

// "tools/NAME" wherever the page has it between backticks, alone or before arguments; not the
// lists, whose names have an ending.
std::set<std::string> scriptsOf(const std::string& page) {
  std::set<std::string> scripts;
  const std::string start = "`tools/";
  for (std::size_t at = page.find(start); at != std::string::npos; at = page.find(start, at + 1)) {
    const std::string script = page.substr(at + 1, page.find_first_of(" `", at + 1) - at - 1);
    if (script.find('.') == std::string::npos) scripts.insert(script);
  }
  return scripts;
}

TEST(ReliabilityPage, HasEachScriptThatItNames) {
  const std::set<std::string> scripts = scriptsOf(readSource("docs/reliability.md"));
  EXPECT_THAT(scripts, IsSupersetOf({"tools/check-all", "tools/check-memory", "tools/coverage"}));
  for (const std::string& script : scripts) {
    const fs::path file = KELVANE_SOURCES + script;
    ASSERT_TRUE(fs::is_regular_file(file)) << script;
    EXPECT_NE(fs::status(file).permissions() & fs::perms::owner_exec, fs::perms::none) << script;
  }
}

TEST(ReliabilityPage, HasAPromiseForEachProof) {
  std::set<std::string> promised;
  for (const Promise& promise : promises()) promised.insert(promise.script);
  std::set<std::string> proofs = {"tools/coverage", "tools/fuzz", "tools/mutate"};
  for (const auto& file : fs::directory_iterator(KELVANE_SOURCES "tools")) {
    const std::string name = file.path().filename();
    const bool isProof = name.starts_with("prove-") && name != "prove-faults";
    if (isProof) proofs.insert("tools/" + name);
  }
  EXPECT_EQ(promised, proofs);
  EXPECT_THAT(promises(), SizeIs(10));
}

TEST(ReliabilityPage, EachPromiseHasAShortFormAmongTheTests) {
  std::vector<Promise> all = promises();
  const std::vector<Promise> whole = wholePromises();
  EXPECT_THAT(whole, SizeIs(1));
  all.insert(all.end(), whole.begin(), whole.end());
  for (const Promise& promise : all) {
    ASSERT_THAT(kProvingPrograms, Contains(promise.program));
    if (!isBuilt(promise.program)) continue;
    for (const std::string& filter : partsOf(promise.filter)) {
      EXPECT_THAT(casesOf(promise.program, filter), Not(SizeIs(0)))
          << promise.program << ' ' << filter;
    }
  }
}

TEST(ReliabilityPage, EachPromiseOfAnotherBuildIsAStepOfAll) {
  std::set<std::string> promised;
  for (const Row& row : rowsOf("## In other builds")) promised.insert(codeOf(row.at(1)));
  EXPECT_THAT(promised, SizeIs(5));
  const std::string all = "tools/check-all";
  const test::Ended steps = test::runProgram({KELVANE_SOURCES + all, "steps"}, KELVANE_SOURCES);
  std::set<std::string> known;
  for (const std::string& line : test::splitLines(steps.out)) {
    known.insert(all + " " + line.substr(0, line.find(' ')));
  }
  EXPECT_THAT(known, IsSupersetOf(promised));
}

TEST(ReliabilityPage, AShortFormThatIsNotThereIsSeen) {
  EXPECT_THAT(casesOf("dialogues_tests", "NoSuchSuite.*"), SizeIs(0));
}

}  // namespace
}  // namespace kelvane::docs
