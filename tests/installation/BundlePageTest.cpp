// docs/bundle.md: its commands make a bundle, and its layout is what is installed.

#include <algorithm>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/Page.h"
#include "tests/installation/InstalledTree.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace fs = std::filesystem;

using NameSet = std::set<std::string>;

std::string part(const char* heading) { return section(readSource("docs/bundle.md"), heading); }

// The pieces of the layout that are a component's, by the page.
NameSet piecesOf(const std::string& component) {
  NameSet found;
  for (const Row& row : tableRows(part("## The layout"))) {
    if (row.size() != 3 || row[1].find(component) == std::string::npos) continue;
    for (const std::string& name : namesOf({row})) found.insert(name);
  }
  return found;
}

// What the component installs, but for what is below "share".
NameSet installedBy(const std::string& component) {
  const test::TempFolder prefix;
  test::installComponent(component, prefix.path());
  NameSet found;
  for (const std::string& name : test::filesBelow(prefix.path())) {
    if (!name.starts_with("share/")) found.insert(name);
  }
  return found;
}

class BundleLayout : public ::testing::TestWithParam<const char*> {};

TEST_P(BundleLayout, IsAsThePageShowsIt) {
  EXPECT_EQ(installedBy(GetParam()), piecesOf(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Of, BundleLayout,
                         ::testing::Values("worker", "simulators", "console", "documentation"),
                         [](const auto& test) { return std::string(test.param); });

class BundlePage : public ::testing::Test {
 protected:
  BundlePage() {
    fs::create_directories(folder / "build");
    fs::create_directory_symlink(KELVANE_BUILD, folder / "build/default");
  }

  // Runs the commands as they stand there, with a bundle of the test's own.
  test::Ended run(std::string commands) const {
    const std::string name = "/tmp/Manager.app";
    for (auto at = commands.find(name); at != commands.npos; at = commands.find(name)) {
      commands.replace(at, name.size(), bundle.path());
    }
    const std::string tools = fs::path(KELVANE_CMAKE).parent_path();
    test::Ended ended =
        test::runProgram({"/bin/sh", "-ec", commands}, folder.path(),
                         {{"PATH", tools + ":/usr/bin:/bin"}, {"LD_LIBRARY_PATH", ""}});
    EXPECT_EQ(ended.exitStatus, 0) << commands << ended.err;
    return ended;
  }

  test::TempFolder bundle{".app"};
  test::TempFolder folder;
};

TEST_F(BundlePage, ItsCommandsMakeABundleWithAWorkerThatRuns) {
  const auto blocks = codeBlocks(part("## On Linux"), "sh");
  ASSERT_THAT(blocks, SizeIs(3));
  run(blocks[0]);
  const std::string libraries = run(blocks[1]).out;
  EXPECT_THAT(libraries, HasSubstr("Contents/Resources/../Frameworks/libplist"));
  EXPECT_THAT(libraries, HasSubstr("Contents/Resources/../Frameworks/libZORAPI.so"));
  EXPECT_THAT(libraries, Not(HasSubstr("not found")));
  run(blocks[2]);
  EXPECT_THAT(folder.read("shared/utility/logs/TarselVistrelUtility.txt"), Not(IsEmpty()));
  EXPECT_THAT(folder.read("shared/utility/logs/TarselVistrelUtility.txt"),
              Not(HasSubstr("[error]")));
}

TEST_F(BundlePage, ItsPackagesAreMade) {
  run(codeBlocks(part("## The packages"), "sh").at(0));
  EXPECT_THAT(
      folder.names("packages"),
      ElementsAre("_CPack_Packages", ::testing::EndsWith(".tar.gz"), ::testing::EndsWith(".deb")));
}

}  // namespace
}  // namespace kelvane::docs
