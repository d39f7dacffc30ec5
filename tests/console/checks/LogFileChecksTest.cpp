// The checks of the log file.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/LogFileChecks.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> found(const std::string& path) { return inShort(logFileFindings(path)); }

class LogFileChecks : public ::testing::Test {
 protected:
  test::TempFolder folder;
  std::string path = folder.write("log.txt", "");
};

TEST_F(LogFileChecks, EmptyFileIsFine) { EXPECT_THAT(found(path), IsEmpty()); }

TEST_F(LogFileChecks, MissingFileIsAWarningAsTheWorkerNeverMakesIt) {
  EXPECT_EQ(logFileFindings("/nowhere/log.txt"),
            (Findings{{Code::logMissing, Severity::warning,
                       "open /nowhere/log.txt: No such file or directory",
                       "The worker never makes the log. Nothing is logged, and jobs run all the "
                       "same: what a job did cannot be told afterwards.",
                       "Make an empty file there."}}));
}

TEST_F(LogFileChecks, FolderInItsPlaceIsAWarning) {
  EXPECT_THAT(found(folder.path()), ElementsAre("warning: " + folder.path() + " is a folder"));
}

TEST_F(LogFileChecks, PipeOrDeviceInItsPlaceIsAWarning) {
  ::mkfifo((folder / "pipe").c_str(), 0600);
  EXPECT_EQ(
      logFileFindings(folder / "pipe"),
      (Findings{{Code::logNoFile, Severity::warning, (folder / "pipe") + " is no regular file",
                 "Nothing is logged, and jobs run all the same: what a job did cannot be told "
                 "afterwards.",
                 "Put an empty file in its place."}}));
  EXPECT_THAT(found("/dev/null"), ElementsAre("warning: /dev/null is no regular file"));
}

TEST_F(LogFileChecks, FileThatCannotBeWrittenIsAWarning) {
  ::chmod(folder.path().c_str(), 0755);
  const test::PermissionBits bits(path, 0444);
  EXPECT_EQ(test::asOrdinaryUser([this] { return asLines(logFileFindings(path)); }),
            "warning: " + path + " cannot be written: Permission denied\n");
}

TEST_F(LogFileChecks, PathOf512BytesIsAnErrorAndOf511IsNot) {
  std::string longest = "nowhere";
  while (longest.size() < 511) longest += "/x";
  ASSERT_EQ(longest.size(), 511U);
  EXPECT_THAT(found(longest),
              ElementsAre("warning: open " + longest + ": No such file or directory"));
  const std::string tooLong = longest + "x";
  EXPECT_THAT(found(tooLong),
              ElementsAre("error: " + tooLong + ": the path has 512 bytes, and 511 are possible"));
}

TEST_F(LogFileChecks, FileFrom100MebibytesOnIsAWarning) {
  std::filesystem::resize_file(path, 104857599);
  EXPECT_THAT(found(path), IsEmpty());
  std::filesystem::resize_file(path, 104857600);
  EXPECT_THAT(found(path), ElementsAre("warning: " + path + " has 104857600 bytes"));
}

}  // namespace
}  // namespace kelvane::console
