// The checks of the job file as a file.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/JobFileChecks.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/console/explain/LogOfFlashes.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

using test::PermissionBits;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class JobFileChecks : public ::testing::Test {
 protected:
  JobFileChecks() {
    folder.write("jobs/file", "[]");
    ::chmod(folder.path().c_str(), 0755);
  }
  std::vector<std::string> found() const { return inShort(jobFileFindings({.jobFile = path})); }
  std::string foundByOrdinaryUser() const {
    return test::asOrdinaryUser([this] { return asLines(jobFileFindings({.jobFile = path})); });
  }

  test::TempFolder folder;
  std::string path = folder / "jobs/file";
};

TEST_F(JobFileChecks, AListOfRecordsIsFine) { EXPECT_THAT(found(), IsEmpty()); }

TEST_F(JobFileChecks, BeforeTheFirstJobThereIsNoFile) {
  fs::remove(path);
  EXPECT_THAT(found(), IsEmpty());
}

TEST_F(JobFileChecks, AFileThatIsGoneThoughTheLogShowsJobsIsAWarning) {
  const Places places = {.jobFile = path, .log = folder / "log"};
  const auto lost = [&places] { return inShort(lostJobFileFindings(places)); };
  fs::remove(path);
  EXPECT_THAT(lost(), IsEmpty());
  folder.write("log", test::writtenLine("17", "A1", 50));
  EXPECT_THAT(lost(),
              ElementsAre("warning: " + path + " does not exist, though the log shows jobs"));
  EXPECT_THAT(lostJobFileFindings(places)[0].advice,
              ::testing::HasSubstr("report --log-file " + (folder / "log")));
  folder.write("jobs/file", "[]");
  EXPECT_THAT(lost(), IsEmpty());
}

TEST_F(JobFileChecks, OfADamagedFileWhoseJobsTheLogShowsItIsToldHowTheyAreLookedAt) {
  const Places places = {.jobFile = path, .log = folder / "log"};
  const auto advice = [&places] { return jobFileFindings(places).at(0).advice; };
  for (const char* damaged : {"[1,", "{}"}) {
    SCOPED_TRACE(damaged);
    folder.write("jobs/file", damaged);
    fs::remove(folder / "log");
    EXPECT_THAT(advice(), ::testing::Not(::testing::HasSubstr("Meanwhile")));
    folder.write("log", test::writtenLine("17", "A1", 50));
    EXPECT_THAT(advice(), ::testing::EndsWith(" Meanwhile the log shows jobs: give list, show, "
                                              "explain or report --log-file " +
                                              (folder / "log") + " alone."));
  }
}

TEST_F(JobFileChecks, MissingFolderIsAWarningAsNoJobWasEverAdded) {
  fs::remove_all(folder / "jobs");
  EXPECT_EQ(jobFileFindings({.jobFile = path}),
            (Findings{{Code::jobFileFolderMissing, Severity::warning,
                       "the job file's folder " + (folder / "jobs") + " does not exist",
                       "No job was ever added here: a worker that is started finds nothing to do.",
                       "Check that this is the folder that the application shares with the "
                       "worker. The console makes what is missing when it adds a job."}}));
}

TEST_F(JobFileChecks, WhatIsNotJsonIsAnErrorWithItsCause) {
  folder.write("jobs/file", "");
  EXPECT_THAT(found(), ElementsAre("error: " + path + " is not JSON: it is empty"));
  folder.write("jobs/file", "[\"\xFF\"]");
  EXPECT_THAT(found(), ElementsAre(::testing::StartsWith(
                           "error: " + path +
                           " is not JSON: it is not UTF-8: line 1, column 3: invalid string")));
  folder.write("jobs/file", "[1,]");
  EXPECT_THAT(found(), ElementsAre("error: " + path +
                                   " is not JSON: line 1, column 4: unexpected ']'; expected "
                                   "'[', '{', or a literal"));
}

TEST_F(JobFileChecks, ANumberThatTheWorkerCannotReadIsNamedWithItsPlace) {
  folder.write("jobs/file", "[\n  {\"n\": 1e400}\n]\n");
  EXPECT_THAT(found(), ElementsAre("error: " + path +
                                   " cannot be read: the number 1e400 in line 2, column 9 is "
                                   "beyond the range of a double"));
}

TEST_F(JobFileChecks, AFileOfTensOfMegabytesIsAWarning) {
  std::string text = "[";
  text.resize(9'999'998, ' ');
  folder.write("jobs/file", text + "]");
  EXPECT_THAT(found(), IsEmpty());
  folder.write("jobs/file", text + " ]");
  EXPECT_THAT(found(), ElementsAre("warning: " + path + " has 10000000 bytes"));
}

TEST_F(JobFileChecks, ObjectAtTheTopIsAnError) {
  folder.write("jobs/file", "{}");
  EXPECT_THAT(found(), ElementsAre("error: " + path + " is an object, not an array of records"));
}

TEST_F(JobFileChecks, FolderInItsPlaceIsAnError) {
  path = folder / "jobs";
  EXPECT_THAT(found(), ElementsAre("error: " + path + " is a folder"));
}

TEST_F(JobFileChecks, PipeInItsPlaceIsNotOpened) {
  path = folder / "pipe";
  ::mkfifo(path.c_str(), 0600);
  EXPECT_THAT(found(), ElementsAre("error: " + path + " is no regular file"));
}

TEST_F(JobFileChecks, DeviceInItsPlaceIsNotOpened) {
  path = "/dev/zero";
  EXPECT_THAT(found(), ::testing::Contains("error: /dev/zero is no regular file"));
}

TEST_F(JobFileChecks, LinkIsAWarningThatNamesWhereItLeads) {
  fs::create_symlink("file", folder / "jobs/link");
  path = folder / "jobs/link";
  EXPECT_THAT(found(), ElementsAre("warning: " + path + " is a link to " + (folder / "jobs/file")));
}

TEST_F(JobFileChecks, LinkThatLeadsNowhereIsAnError) {
  fs::create_symlink("gone", folder / "jobs/link");
  path = folder / "jobs/link";
  EXPECT_THAT(found(), ElementsAre("error: " + path + " is a link that leads nowhere"));
}

TEST_F(JobFileChecks, UnreadableFileIsAnError) {
  const PermissionBits bits(path, 0);
  EXPECT_EQ(foundByOrdinaryUser(),
            "error: open " + path + ": Permission denied\nwarning: " + path +
                " cannot be written: Permission denied\n" +
                (::geteuid() == 0 ? "error: the job file's folder cannot be "
                                    "changed: " +
                                        (folder / "jobs") + ": Permission denied\n"
                                  : ""));
}

TEST_F(JobFileChecks, FolderThatCannotBeChangedIsAnErrorAlsoThroughALink) {
  fs::create_symlink("jobs/file", folder / "link");
  const PermissionBits fileBits(path, 0666);
  const PermissionBits bits(folder / "jobs", 0555);
  const std::string refused =
      "error: the job file's folder cannot be changed: " + (folder / "jobs") +
      ": Permission denied\n";
  EXPECT_EQ(foundByOrdinaryUser(), refused);
  path = folder / "link";
  EXPECT_EQ(foundByOrdinaryUser(),
            "warning: " + path + " is a link to " + (folder / "jobs/file") + "\n" + refused);
}

TEST_F(JobFileChecks, FolderThatCannotBeEnteredIsToldByItsCause) {
  const PermissionBits bits(folder / "jobs", 0);
  EXPECT_THAT(foundByOrdinaryUser(),
              ::testing::StartsWith("error: open " + path + ": Permission denied\n"));
}

TEST_F(JobFileChecks, LeftoversAreNamedInTheirOrder) {
  folder.write("jobs/.replace-b12345", "");
  folder.write("jobs/.replace-a12345", "");
  folder.write("jobs/.hidden", "");
  EXPECT_THAT(inShort(leftoverFindings(path)),
              ElementsAre("warning: " + (folder / "jobs/.replace-a12345") + " is left over",
                          "warning: " + (folder / "jobs/.replace-b12345") + " is left over"));
}

}  // namespace
}  // namespace kelvane::console
