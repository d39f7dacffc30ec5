// The checks of the bundle; loading a framework is shown with real libraries, end to end.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/BundleChecks.h"
#include "console/checks/Framework.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

class BundleChecks : public ::testing::Test {
 protected:
  BundleChecks() { install(bundle); }

  static void install(const test::TempFolder& folder, const std::string& below = "") {
    ::chmod(folder.write(below + "Contents/Resources/Kelvane", "#!/bin/sh\n").c_str(), 0755);
  }
  std::vector<std::string> found() const { return inShort(bundleFindings(bundle.path())); }

  test::TempFolder bundle{".app"};
};

TEST_F(BundleChecks, MissingBundleIsTheOneError) {
  EXPECT_THAT(inShort(bundleFindings("/nowhere/Manager.app")),
              ElementsAre("error: the bundle /nowhere/Manager.app does not exist"));
  const std::string file = bundle.write("file", "");
  EXPECT_THAT(inShort(bundleFindings(file)),
              ElementsAre("error: the bundle " + file + " is no folder"));
}

TEST_F(BundleChecks, BundleTwoLevelsBelowTheRootIsFineAlsoThroughALink) {
  const test::TempFolder other;
  fs::create_symlink(bundle.path(), other / "link.app");
  EXPECT_THAT(found(), Not(Contains(::testing::HasSubstr("levels below"))));
  EXPECT_THAT(inShort(bundleFindings(other / "link.app")),
              Not(Contains(::testing::HasSubstr("levels below"))));
}

TEST_F(BundleChecks, DeeperBundleIsAnErrorThatNamesWhatTheWorkerTakesForIt) {
  const test::TempFolder outer;
  install(outer, "Manager.app/");
  const Findings findings = bundleFindings(outer / "Manager.app");
  EXPECT_EQ(findings.at(0),
            (Finding{Code::bundleDepth, Severity::error,
                     (outer / "Manager.app") + " stands 3 levels below the root, not two",
                     "The worker takes " + outer.path() +
                         " for its bundle, and looks for the product's settings there. Firmware "
                         "jobs are not concerned.",
                     "Put the bundle into a folder at the root, such as /Applications.",
                     outer / "Manager.app"}));
}

TEST_F(BundleChecks, ShallowerBundleTakesContentsForIt) {
  EXPECT_THAT(bundleFindings("/tmp").at(0).what, "/tmp stands 1 level below the root, not two");
  EXPECT_THAT(bundleFindings("/tmp").at(0).meaning, StartsWith("The worker takes /tmp/Contents "));
  EXPECT_THAT(bundleFindings("/").at(0).what, "/ stands 0 levels below the root, not two");
}

TEST_F(BundleChecks, WorkerHasToBeAnExecutableFile) {
  const std::string worker = workerIn(bundle.path());
  ::chmod(worker.c_str(), 0644);
  EXPECT_THAT(found(),
              Contains("error: the worker " + worker + " cannot be executed: Permission denied"));
  fs::remove(worker);
  EXPECT_THAT(found(), Contains("error: the worker " + worker + " does not exist"));
  fs::create_directory(worker);
  EXPECT_THAT(found(), Contains("error: the worker " + worker + " is no regular file"));
}

TEST_F(BundleChecks, WorkerHasToBeAProgram) {
  const std::string worker = workerIn(bundle.path());
  const auto expectFault = [&](const std::string& bytes, const std::string& fault) {
    bundle.write("Contents/Resources/Kelvane", bytes);
    EXPECT_THAT(found(), Contains("error: the worker " + worker + " cannot be started: " + fault));
  };
  expectFault("", "it is empty");
  expectFault("text", "it is no program");
  expectFault("#!/nonexistent/x -e\n", "its interpreter /nonexistent/x does not exist");
}

TEST_F(BundleChecks, LibrariesThatAreBroughtAlongHaveToBeLibraries) {
  const std::string library = bundle.write("Contents/Frameworks/libplist-2.0.so.3", "junk");
  EXPECT_THAT(found(),
              Contains("error: the library " + library + " cannot be loaded: it is no library"));
}

TEST_F(BundleChecks, WorkerThatIsALinkIsAnErrorAsItTakesAnotherPlaceForItsOwn) {
  const test::TempFolder other;
  install(other);
  const std::string worker = workerIn(bundle.path());
  fs::remove(worker);
  fs::create_symlink(workerIn(other.path()), worker);
  EXPECT_THAT(found(), Contains("error: " + worker + " leads to " + workerIn(other.path())));
}

TEST_F(BundleChecks, SettingsAndFrameworkAreLookedForInTheBundle) {
  EXPECT_THAT(
      found(),
      ElementsAre("error: open " + bundle.path() +
                      "/Contents/Resources/Config/setting.json: No such file or directory",
                  "error: open " + frameworkPath(bundle.path()) + ": No such file or directory"));
}

TEST_F(BundleChecks, FrameworkHasToBeAFile) {
  fs::create_directories(frameworkPath(bundle.path()));
  EXPECT_THAT(inShort(frameworkFindings(frameworkPath(bundle.path()))),
              ElementsAre("error: " + frameworkPath(bundle.path()) + " is no regular file"));
}

TEST_F(BundleChecks, FrameworkThatIsNoLibraryIsToldWithTheLoadersCause) {
  const std::string path = bundle.write("lib.so", "no library");
  EXPECT_THAT(inShort(frameworkFindings(path)),
              ElementsAre(StartsWith("error: " + path + " cannot be loaded: " + path)));
}

}  // namespace
}  // namespace kelvane::console
