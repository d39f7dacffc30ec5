// The worker's ways in and out, through the real executable.

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/end_to_end/Installation.h"
#include "tests/support/JobFiles.h"

namespace kelvane {
namespace {

using ::testing::HasSubstr;

constexpr char kUnknownCommand[] =
    R"([{"log_id":"17","job_id":"unknown","state_id":"WAIT","input_parameters":{}}])";

using Start = Installation;

TEST_F(Start, WithoutAnArgumentItSaysSoAndExitsWithZero) {
  const test::Ended ended = runWorker({});
  EXPECT_EQ(ended.err, "Fail: Kelvane params <= 1\n");
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(log(), "");
}

// Where the arguments end the variables begin, and none of them is looked at.
TEST_F(Start, WithoutAnArgumentNothingElseIsTakenForOne) {
  folder.write("0=shared-utility/logs/TarselVistrelUtility.txt", "");
  test::runProgram({"/usr/bin/env", "-i", "0=shared-", worker}, folder.path());
  EXPECT_EQ(folder.read("0=shared-utility/logs/TarselVistrelUtility.txt"), "");
}

TEST_F(Start, WithoutASharedFolderItsFilesAreRelativeToTheCurrentFolder) {
  folder.write("utility/command/BGPLog.json", kUnknownCommand);
  folder.write("utility/logs/TarselVistrelUtility.txt", "");
  EXPECT_EQ(runWorker({"17"}).exitStatus, 0);
  EXPECT_THAT(folder.read("utility/logs/TarselVistrelUtility.txt"),
              HasSubstr("logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = unknown\n"));
  EXPECT_EQ(log(), "");
}

TEST_F(Start, ASharedFolderWithoutASlashIsAPlainPrefix) {
  folder.write("shared-utility/command/BGPLog.json", kUnknownCommand);
  folder.write("shared-utility/logs/TarselVistrelUtility.txt", "");
  EXPECT_EQ(runWorker({"17", folder / "shared-"}).exitStatus, 0);
  EXPECT_THAT(folder.read("shared-utility/logs/TarselVistrelUtility.txt"),
              HasSubstr("currentJobArray = ("));
}

TEST_F(Start, FurtherArgumentsAreIgnored) {
  writeJobs(kUnknownCommand);
  EXPECT_EQ(runWorker({"17", shared(), "--help", "x"}).exitStatus, 0);
  EXPECT_THAT(log(), HasSubstr("jobId = unknown"));
}

TEST_F(Start, ALogIdThatIsNotUtf8CountsAsNone) {
  writeJobs(kUnknownCommand);
  EXPECT_EQ(runWorker({"\xFF", shared()}).exitStatus, 0);
  EXPECT_THAT(log(), HasSubstr("][run][debug] Fail, logid = nil\n"));
}

TEST_F(Start, ASharedFolderThatIsNotUtf8CountsAsNone) {
  folder.write("utility/command/BGPLog.json", kUnknownCommand);
  folder.write("utility/logs/TarselVistrelUtility.txt", "");
  EXPECT_EQ(runWorker({"17", "\xFF/"}).exitStatus, 0);
  EXPECT_THAT(folder.read("utility/logs/TarselVistrelUtility.txt"), HasSubstr("jobId = unknown"));
}

TEST_F(Start, ALineShowsTheTimeTheFileTheLineAndTheFunction) {
  writeJobs("[]");
  runWorker({"17", shared()});
  EXPECT_THAT(log(), ::testing::MatchesRegex("\\[[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\] "
                                             "\\[JobRunner.cpp\\]\\[[0-9]+\\]\\[run\\]\\[debug\\] "
                                             "currentJobArray = \\(\n\\)\n"));
}

TEST_F(Start, MissingProductSettingsAreLogged) {
  std::filesystem::remove(bundle / "Contents/Resources/Config/setting.json");
  writeJobs("[]");
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);
  EXPECT_THAT(log(), HasSubstr("][init][error] open " + bundle.path() +
                               "/Contents/Resources/Config/setting.json: No such file"));
}

TEST_F(Start, EveryBadJobFileEndsWithZeroAndStaysAsItIs) {
  for (const char* text : {"", "no json", "{}", "[5]", "[{\"log_id\": 17}]", "[[]]", "\xFF"}) {
    writeJobs(text);
    const test::Ended ended = runWorker({"17", shared()});
    EXPECT_EQ(ended.exitStatus, 0) << text;
    EXPECT_EQ(ended.err, "");
    EXPECT_EQ(folder.read(test::kJobFile), text);
  }
}

TEST_F(Start, AMissingSharedFolderEndsWithZero) {
  const test::Ended ended = runWorker({"17", folder / "missing/"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
}

TEST_F(Start, ALogPathTooLongEndsTheProcessAtOnce) {
  std::string path = folder.path() + "/";
  path.resize(512 - std::string("utility/logs/TarselVistrelUtility.txt").size(), 'x');
  EXPECT_EQ(runWorker({"17", path}).signal, SIGABRT);
  path.pop_back();
  EXPECT_EQ(runWorker({"17", path}).exitStatus, 0);
}

TEST_F(Start, TheLogFileIsNeverCreated) {
  std::filesystem::remove(shared() + "utility/logs/TarselVistrelUtility.txt");
  writeJobs(kUnknownCommand);
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);
  EXPECT_TRUE(folder.names("shared/utility/logs").empty());
}

TEST_F(Start, AnUnknownCommandLeavesTheFileAsItIs) {
  writeJobs(kUnknownCommand);
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);
  EXPECT_EQ(folder.read(test::kJobFile), kUnknownCommand);
  EXPECT_TRUE(versions().empty());
}

TEST_F(Start, AnotherFrameworkCanBePutInPlaceByTheLibraryPath) {
  std::filesystem::rename(bundle / "Contents/Frameworks", folder / "elsewhere");
  writeJobs("[]");
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 127);
  environment["LD_LIBRARY_PATH"] = folder / "elsewhere";
  EXPECT_EQ(runWorker({"17", shared()}).exitStatus, 0);
}

}  // namespace
}  // namespace kelvane
