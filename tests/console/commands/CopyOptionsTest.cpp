// Which files are looked at, and whether they are this system's.

#include <gtest/gtest.h>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/CopyOptions.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"
#include "tests/support/JobFiles.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

class CopyOptionsTest : public ::testing::Test {
 protected:
  CopyOptionsTest() {
    folder.write(test::kJobFile, "[]");
    mailed = folder.write("mail/jobs.json", "[]");
    for (const Option& option : placeOptions()) given.declare(option.names.back());
  }

  // Why what was given is refused.
  std::string refusal() const {
    try {
      copyOptionsOf(given);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.exitCode(), kBadUsage);
      return failure.what();
    }
    return "";
  }
  Places places() const {
    return placesOf(given.text(kSharedOption), copyOptionsOf(given), workersShared);
  }

  test::TempFolder folder;
  std::string mailed;
  Given given;
};

TEST_F(CopyOptionsTest, TheSharedFolderHasBothFiles) {
  given.set(kSharedOption, {folder / "shared"});
  EXPECT_EQ(places().sharedFolder, folder / "shared/");
  EXPECT_EQ(places().jobFile, folder / test::kJobFile);
  EXPECT_EQ(places().log, folder / "shared/utility/logs/TarselVistrelUtility.txt");
  EXPECT_FALSE(places().isCopy);
  EXPECT_EQ(notLookedAt(places()), "");
}

TEST_F(CopyOptionsTest, OfflineTheSameIsACopy) {
  given.set(kSharedOption, {folder / "shared"});
  given.set("--offline", {"true"});
  EXPECT_EQ(places().jobFile, folder / test::kJobFile);
  EXPECT_TRUE(places().isCopy);
}

TEST_F(CopyOptionsTest, AFileThatWasMailedStandsAlone) {
  given.set("--job-file", {mailed});
  EXPECT_EQ(places().jobFile, mailed);
  EXPECT_EQ(places().log, "");
  EXPECT_EQ(places().sharedFolder, "");
  EXPECT_TRUE(places().isCopy);
  EXPECT_EQ(notLookedAt(places()),
            "this is a copy: whether a worker runs was not looked at; the log is not at hand; what "
            "was kept of the worker's standard error is not at hand");
}

TEST_F(CopyOptionsTest, AFileGoesBeforeTheSharedFolderOfTheEnvironment) {
  given.fallBack(kSharedOption, folder / "shared");
  given.set("--log-file", {mailed});
  EXPECT_EQ(places().log, mailed);
  EXPECT_EQ(places().jobFile, "");
  EXPECT_EQ(places().sharedFolder, "");
}

TEST_F(CopyOptionsTest, AFileAndASharedFolderExcludeOneAnother) {
  given.set(kSharedOption, {folder / "shared"});
  given.set("--log-file", {mailed});
  EXPECT_EQ(refusal(),
            "--log-file and --shared exclude one another: the file is looked at in place of the "
            "folder's");
}

TEST_F(CopyOptionsTest, AFileHasToBeThere) {
  given.set("--job-file", {folder / "no.json"});
  EXPECT_EQ(refusal(), "job file " + (folder / "no.json") + " does not exist");
  given.set("--job-file", {""});
  EXPECT_EQ(refusal(), "the job file is missing");
}

}  // namespace
}  // namespace kelvane::console
