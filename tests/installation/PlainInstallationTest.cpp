// "cmake --install" below a prefix such as /usr/local, without the name of a component.

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/File.h"
#include "tests/installation/InstalledTree.h"
#include "tests/support/LogLine.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAreArray;

class PlainInstallation : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    prefix = std::make_unique<TempFolder>();
    installPlainly(prefix->path());
  }
  static void TearDownTestSuite() { prefix.reset(); }

  static std::string outputOf(const std::vector<std::string>& argv) {
    const Ended ended = runProgram(argv, "/", {{"LD_LIBRARY_PATH", ""}});
    EXPECT_EQ(ended.exitStatus, 0) << argv.at(0) << ": " << ended.err;
    EXPECT_EQ(ended.err, "");
    return ended.out;
  }
  static std::string program(const std::string& name) { return *prefix / ("bin/" + name); }
  // Without the endings of their sections.
  static std::vector<std::string> pagesOfPrograms() {
    std::vector<std::string> pages = prefix->names("share/man/man1");
    for (std::string& page : pages) page.resize(page.rfind('.'));
    return pages;
  }

  static inline std::unique_ptr<TempFolder> prefix;
};

TEST_F(PlainInstallation, PutsNothingOddBelowThePrefix) {
  EXPECT_THAT(prefix->names(), ElementsAre("bin", "lib", "share"));
  EXPECT_THAT(prefix->names("bin"), ElementsAre("kelvane-console", "make-image", "make-service"));
  EXPECT_THAT(prefix->names("lib"), ElementsAre("kelvane"));
  EXPECT_THAT(prefix->names("share"), ElementsAre("bash-completion", "doc", "fish", "man", "zsh"));
}

TEST_F(PlainInstallation, HasAManualPageForEachProgramAndNoOther) {
  EXPECT_THAT(pagesOfPrograms(), UnorderedElementsAreArray(prefix->names("bin")));
}

TEST_F(PlainInstallation, ManualPagesCarryDateAndVersion) {
  for (const std::string& name : filesBelow(*prefix / "share/man")) {
    const std::string page = platform::readFile(*prefix / ("share/man/" + name));
    EXPECT_THAT(page, HasSubstr("\"" KELVANE_DATE "\" \"Kelvane " KELVANE_VERSION "\"")) << name;
    EXPECT_THAT(page, Not(HasSubstr("@"))) << name;
  }
}

TEST_F(PlainInstallation, EveryProgramTellsItsVersion) {
  for (const std::string& name : prefix->names("bin")) {
    EXPECT_EQ(outputOf({program(name), "--version"}), name + " " KELVANE_VERSION "\n");
    EXPECT_THAT(outputOf({program(name), "--help"}), HasSubstr("--version")) << name;
  }
}

// The options in the help, as a page writes them.
std::vector<std::string> optionsIn(const std::string& help) {
  std::vector<std::string> found;
  for (const std::string& line : splitLines(help)) {
    const std::size_t start = line.find("--");
    if (start == std::string::npos) continue;
    found.push_back("\\-\\-" + line.substr(start + 2, line.find(' ', start) - start - 2));
  }
  return found;
}

TEST_F(PlainInstallation, ThePagesOfTheToolsTellEveryOption) {
  using Call = std::vector<std::string>;
  const std::vector<Call> calls = {
      {"make-image"}, {"make-image", "standard"}, {"make-image", "qvxf"}, {"make-service"}};
  for (Call call : calls) {
    const std::string page = platform::readFile(*prefix / ("share/man/man1/" + call[0] + ".1"));
    call[0] = program(call[0]);
    call.push_back("--help");
    const std::vector<std::string> options = optionsIn(outputOf(call));
    EXPECT_THAT(options, Not(IsEmpty()));
    for (const std::string& option : options) EXPECT_THAT(page, HasSubstr(option));
  }
}

}  // namespace
}  // namespace kelvane::test
