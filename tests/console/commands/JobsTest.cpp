// The sub-commands list, show and watch.

#include <filesystem>

#include <sys/stat.h>

#include "console/commands/Jobs.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

// What is told of a job file with such a record, where a job is not finished.
std::string noUpdates(const std::string& path, const std::string& record) {
  return "no job can be updated: " + path + ": " + record +
         ". While it stands there, the worker can write of no job how it goes and what became of "
         "it. Remove it from the file\n";
}

class Jobs : public ConsoleWorld {
 protected:
  Jobs() {
    folder.write(test::kJobFile, R"([
      {"log_id": "1", "job_id": "updateSW", "state_id": "FREE", "result": 0, "resultStr": "fine"},
      {"log_id": "2", "job_id": "updateFW", "state_id": "RUN", "result": 0, "resultStr": "fine",
       "n": 12345678901234567890123,
       "output": [{"wwn": "A1", "cpld_percentage": 50, "fw_percentage": 0, "total_percentage": 25}]},
      {"log_id": "3", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0,
       "resultStr": "", "output": [{"ProductID": "p\u001b", "Version": "1"}]},
      5])");
  }

  int runList() { return runHere(list, {folder / "shared"}); }
  int runShow(const std::string& logId) { return runHere(show, {folder / "shared", logId}); }
  int runWatch(const std::string& logId) { return runHere(watch, {folder / "shared", logId}); }
};

TEST_F(Jobs, ListIsATable) {
  EXPECT_EQ(runList(), kSuccess);
  EXPECT_EQ(shown.str(),
            "Log id  Command              State           Result  Text\n"
            "     1  updateSW             FREE                 0  fine\n"
            "     2  updateFW             RUN, no worker          A1 stopped at 25%\n"
            "     3  getOnlineUpdateData  FREE                 0\n"
            "     -  (no record)\n" +
                noUpdates(folder / test::kJobFile, "[3] is no object: 5"));
}

constexpr char kNotLooked[] = "this is a copy: whether a worker runs was not looked at";

TEST_F(Jobs, ListOfACopyTellsNothingOfWorkersAndSaysSoOnce) {
  EXPECT_EQ(runHere(list, {.sharedFolder = folder / "shared", .copy = {.offline = true}}),
            kSuccess);
  EXPECT_NE(shown.str().find("     2  updateFW             RUN            A1 at 25% (CPLD)\n"),
            std::string::npos)
      << shown.str();
  EXPECT_TRUE(shown.str().ends_with(kNotLooked + std::string("\n"))) << shown.str();
}

TEST_F(Jobs, ListAndShowOfAJobFileAlone) {
  const std::string file = folder.write("mail/jobs.json", folder.read(test::kJobFile));
  EXPECT_EQ(runHere(list, {.sharedFolder = "", .copy = {.jobFile = file}}), kSuccess);
  EXPECT_NE(shown.str().find("     1  updateSW             FREE        0  fine\n"),
            std::string::npos)
      << shown.str();
  shown.str("");
  EXPECT_EQ(runHere(show, {"", "2", {.jobFile = file}}), kSuccess);
  EXPECT_EQ(shown.str().substr(0, shown.str().find('{')),
            "job 2: running\n"
            "command updateFW\n"
            "Controller  Phase  CPLD  Firmware  Total\n"
            "A1          CPLD    50%        0%    25%\n" +
                noUpdates(file, "[3] is no object: 5") + kNotLooked +
                "; the log is not at hand; what was kept of the worker's standard error is not at "
                "hand\n");
}

TEST_F(Jobs, TheFailedOnesOfACopyAreToldWithThoseThatRan) {
  const std::string file = folder.write("mail/jobs.json", folder.read(test::kJobFile));
  const std::string told = "running when it was copied, which may have failed: 2\n";
  EXPECT_EQ(runHere(list, {.sharedFolder = "", .failed = true, .copy = {.jobFile = file}}),
            kSuccess);
  EXPECT_NE(shown.str().find(told), std::string::npos) << shown.str();
  shown.str("");
  EXPECT_EQ(runHere(list, {.sharedFolder = folder / "shared", .failed = true}), kSuccess);
  EXPECT_EQ(shown.str().find(told), std::string::npos) << shown.str();
}

// With the job file as a worker wrote it last.
TEST_F(Jobs, ALogAloneShowsTheRecordsThatAreInIt) {
  const std::string written = platform::describe(platform::parseJson(folder.read(test::kJobFile)));
  const std::string file =
      folder.write("mail/log.txt",
                   "[14:03:07] [a.cpp][1][run][debug] currentJobArray = (\n)\n"
                   "[14:03:08] [a.cpp][1][writeJSONFile][debug] writeJSONFile, "
                   "newArray = " +
                       written + "\n");
  EXPECT_EQ(runHere(list, {.sharedFolder = "", .copy = {.logFile = file}}), kSuccess);
  EXPECT_NE(shown.str().find("     1  updateSW             FREE        0  fine\n"
                             "     2  updateFW             RUN            A1 at 25% (CPLD)\n"),
            std::string::npos)
      << shown.str();
  EXPECT_TRUE(shown.str().ends_with(
      kNotLooked +
      std::string("; the job file is not at hand: the records are as the log shows them last; what "
                  "was kept of the worker's standard error is not at hand\n")));
  EXPECT_EQ(runHere(show, {"", "2", {.logFile = file}}), kSuccess);
  EXPECT_EQ(runHere(show, {"", "9", {.logFile = file}}), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 9 in " + file + "\n");
}

TEST_F(Jobs, ALogWithoutRecordsSaysSo) {
  const std::string file = folder.write("mail/log.txt", "");
  EXPECT_EQ(runHere(list, {.sharedFolder = "", .copy = {.logFile = file}}), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: " + file + " shows no records\n");
}

TEST_F(Jobs, PackagesOfACopyAreNotLookedFor) {
  folder.write(test::kJobFile, R"([{"log_id": "5", "job_id": "downloadOnlineUpdateFile",
      "state_id": "FREE", "result": 0, "output": [
      {"productid": "p", "version": "1", "size": 5, "file_path": "/tmp"},
      {"productid": "q", "version": "1", "size": 5, "file_path": ""}]}])");
  EXPECT_EQ(runHere(show, {folder / "shared", "5", {.offline = true}}), kSuccess);
  EXPECT_NE(shown.str().find("p        1         5 B  ?        /tmp\n"
                             "q        1         5 B  no\n"),
            std::string::npos)
      << shown.str();
}

TEST_F(Jobs, ListForMachinesIsARecordALine) {
  screen.json = true;
  folder.write(test::kJobFile, R"([{"log_id": "1", "a": [1, 2]}, {"log_id": "2"}])");
  EXPECT_EQ(runList(), kSuccess);
  EXPECT_EQ(shown.str(), "{\"log_id\":\"1\",\"a\":[1,2]}\n{\"log_id\":\"2\"}\n");
}

TEST_F(Jobs, ASharedFolderThatIsNotThereIsBadUsage) {
  EXPECT_EQ(runHere(list, {"/nowhere"}), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: the shared folder /nowhere does not exist\n");
  messages.str("");
  const std::string file = folder.write("a file", "");
  EXPECT_EQ(runHere(list, {file}), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: the shared folder " + file + " is no folder\n");
}

TEST_F(Jobs, AFolderThatIsNotSharedWithAWorkerIsToldAsThat) {
  std::filesystem::create_directories(folder / "photos/tmp");
  const std::string photos = folder / "photos";
  EXPECT_EQ(runHere(list, {photos}), kBadUsage);
  EXPECT_EQ(runHere(show, {photos, "1"}), kBadUsage);
  EXPECT_EQ(messages.str().rfind(
                "kelvane-console: " + photos + " is no folder shared with the worker: ", 0),
            0U);
  EXPECT_EQ(shown.str(), "");
}

TEST_F(Jobs, APipeInPlaceOfTheJobFileIsToldAndNotRead) {
  std::filesystem::remove(folder / test::kJobFile);
  ASSERT_EQ(::mkfifo((folder / test::kJobFile).c_str(), 0600), 0);
  EXPECT_EQ(runList(), kJobFileFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: " + (folder / test::kJobFile) + " is no regular file\n");
}

TEST_F(Jobs, ALogIdThatIsNoStringIsShownAsThat) {
  folder.write(test::kJobFile, R"([{"log_id": 9, "state_id": "WAIT"}])");
  EXPECT_EQ(runList(), kSuccess);
  EXPECT_EQ(shown.str().rfind("       Log id  Command  State  Result  Text\n"
                              "9 (no string)           WAIT\n",
                              0),
            0U)
      << shown.str();
}

TEST_F(Jobs, WithoutAJobFileTheListIsEmpty) {
  std::filesystem::remove(folder / test::kJobFile);
  EXPECT_EQ(runList(), kSuccess);
  EXPECT_EQ(shown.str(), "no jobs\n");
}

TEST_F(Jobs, ADamagedJobFileIsTold) {
  folder.write(test::kJobFile, "[{");
  const std::string message = "kelvane-console: " + (folder / test::kJobFile) +
                              " is not JSON: line 1, column 3: unexpected end of input; expected "
                              "string literal. It is left "
                              "as it is; see \"kelvane-console check\"\n";
  EXPECT_EQ(runList(), kJobFileFailed);
  EXPECT_EQ(runShow("1"), kJobFileFailed);
  EXPECT_EQ(runWatch("1"), kJobFileFailed);
  EXPECT_EQ(messages.str(), message + message + message);
}

TEST_F(Jobs, AJobFileThatIsNoListOrHasANumberBeyondAllRangeIsTold) {
  const std::string path = folder / test::kJobFile;
  constexpr char kLeft[] = ". It is left as it is; see \"kelvane-console check\"\n";
  folder.write(test::kJobFile, "{}");
  EXPECT_EQ(runList(), kJobFileFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: " + path + " is an object, not an array of records" + kLeft);
  messages.str("");
  folder.write(test::kJobFile, "[1e400]");
  EXPECT_EQ(runList(), kJobFileFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: " + path +
                                " cannot be read: the number 1e400 in line 1, column 2 is beyond "
                                "the range of a double" +
                                kLeft);
}

TEST_F(Jobs, ShowOfAFirmwareJobHasItsControllersAndTheWholeRecord) {
  EXPECT_EQ(runShow("2"), kSuccess);
  EXPECT_EQ(shown.str().substr(0, shown.str().find('{')),
            "job 2: running, no worker\n"
            "command updateFW\n"
            "Controller  Phase    CPLD  Firmware  Total\n"
            "A1          stopped   50%        0%    25%\n" +
                noUpdates(folder / test::kJobFile, "[3] is no object: 5"));
  EXPECT_NE(shown.str().find("  \"n\": 12345678901234567890123,\n"), std::string::npos);
}

TEST_F(Jobs, ShowOfAQueryHasItsPackages) {
  screen.charset = Charset::ascii;
  EXPECT_EQ(runShow("3"), kSuccess);
  EXPECT_EQ(shown.str().substr(0, shown.str().find('{')),
            "job 3: finished\n"
            "command getOnlineUpdateData\n"
            "result 0: \n"
            "Product  Version  Size  System  Package\n"
            "p?       1           -  -       -\n");
  EXPECT_EQ(shown.str().find('\x1b'), std::string::npos);
}

TEST_F(Jobs, ShowForMachinesIsTheRecord) {
  screen.json = true;
  EXPECT_EQ(runShow("2"), kSuccess);
  EXPECT_EQ(platform::parseJson(shown.str()).get("log_id"), platform::Value("2"));
}

TEST_F(Jobs, AJobThatIsNotThereIsNotFound) {
  EXPECT_EQ(runShow("9"), kNotFound);
  EXPECT_EQ(runWatch("9"), kNotFound);
  const std::string message = "kelvane-console: no job 9 in " + (folder / test::kJobFile) + "\n";
  EXPECT_EQ(messages.str(), message + message);
}

TEST_F(Jobs, WatchOfAFinishedJobIsItsResult) {
  EXPECT_EQ(runWatch("3"), kSuccess);
  EXPECT_EQ(shown.str(),
            "result 0: \n"
            "Product  Version  Size  System  Package\n"
            "p�       1           -  -       -\n");
}

TEST_F(Jobs, WatchOfARunningJobWithoutAWorkerTellsThatItDied) {
  EXPECT_EQ(runWatch("2"), kWorkerFailed);
  EXPECT_EQ(messages.str(),
            "kelvane-console: no worker is seen any more, and left job 2 unfinished in state RUN: "
            "nobody goes on with it. Leave the enclosures powered for some minutes, as a flash may "
            "still be going on in a controller; then \"kelvane-console retry --shared " +
                (folder / "shared/") + " 2\" adds it anew\n");
}

// A job that flashed one controller, failed at the next and did not start the third.
class FailedFlash : public Jobs {
 protected:
  FailedFlash() {
    folder.write(test::kJobFile, R"([{"log_id": "17", "job_id": "updateFW", "state_id": "FREE",
      "result": 32852, "resultStr": "the flash failed", "output": [
        {"wwn": "A1", "cpld_percentage": 100, "fw_percentage": 100, "total_percentage": 100},
        {"wwn": "B2", "cpld_percentage": 100, "fw_percentage": 100, "total_percentage": 100},
        {"wwn": "C3", "cpld_percentage": 0, "fw_percentage": 0, "total_percentage": 0}]}])");
  }
};

TEST_F(FailedFlash, IsNotDoneInAList) {
  runList();
  EXPECT_NE(
      shown.str().find("    17  updateFW  FREE   32852 (0x8054)  the flash failed (1 done, B2 "
                       "failed, 1 not started)\n"),
      std::string::npos)
      << shown.str();
}

TEST_F(FailedFlash, IsNotDoneWhereItIsShown) {
  runShow("17");
  EXPECT_NE(shown.str().find("A1          done         100%      100%   100%\n"
                             "B2          failed       100%         -      -\n"
                             "C3          not started    0%        0%     0%\n"
                             "B2 failed\n"),
            std::string::npos)
      << shown.str();
}

TEST_F(FailedFlash, IsNotDoneWhereItIsWatched) {
  EXPECT_EQ(runWatch("17"), kJobFailed);
  EXPECT_EQ(shown.str(),
            "A1  cpld 100%  firmware 100%  total 100%\n"
            "B2  failed  cpld 100%  firmware -  total -\n"
            "C3  not started  cpld 0%  firmware 0%  total 0%\n"
            "result 32852 (0x8054): the flash failed\n"
            "B2 failed\n");
}

TEST_F(Jobs, WatchOfAWaitingJobWithoutAWorkerSaysSoAlsoAtItsInterrupt) {
  folder.write(test::kJobFile, R"([{"log_id": "4", "job_id": "updateSW", "state_id": "WAIT",
                                    "input_parameters": {}}])");
  interrupt = true;
  EXPECT_EQ(runWatch("4"), kInterrupted);
  EXPECT_EQ(shown.str(),
            "job 4: waiting, no worker\n"
            "no worker is seen; the job goes on when one is started with its log id\n");
  EXPECT_NE(messages.str().find("interrupted: job 4 is waiting, and no worker for it is seen; "),
            std::string::npos);
}

constexpr char kWaitingBehindANumber[] =
    R"([{"log_id": 7, "state_id": "FREE"},
        {"log_id": "8", "job_id": "updateSW", "state_id": "WAIT", "input_parameters": {}}])";
constexpr char kNumberFirst[] = ": [0] has a log_id that is no string: 7. While it stands there";

TEST_F(Jobs, WatchBehindARecordThatKeepsAllFromBeingUpdatedAdvisesNoStart) {
  folder.write(test::kJobFile, kWaitingBehindANumber);
  interrupt = true;
  EXPECT_EQ(runWatch("8"), kInterrupted);
  EXPECT_EQ(shown.str().rfind("job 8: waiting, no worker\n"
                              "no worker is seen, and none should be started for the job: " +
                                  (folder / test::kJobFile) + kNumberFirst,
                              0),
            0U)
      << shown.str();
}

TEST_F(Jobs, ListAndShowTellThatNoJobCanBeUpdatedWhereOneIsOpen) {
  const std::string told = "\nno job can be updated: " + (folder / test::kJobFile) + kNumberFirst;
  folder.write(test::kJobFile, kWaitingBehindANumber);
  runList();
  EXPECT_NE(shown.str().find(told), std::string::npos) << shown.str();
  shown.str("");
  runShow("8");
  EXPECT_NE(shown.str().find(told), std::string::npos) << shown.str();
  shown.str("");
  folder.write(test::kJobFile, R"([{"log_id": 7, "state_id": "FREE"}])");
  runList();
  EXPECT_EQ(shown.str().find("no job can be updated"), std::string::npos);
}

TEST_F(Jobs, WatchOfAJobThatAWorkerTookEndsAndAdvisesNoStart) {
  const std::string record =
      R"({"log_id": "1", "job_id": "updateFW", "state_id": "WAIT",
          "input_parameters": [{"wwn": "A1", "file_path": "/a"}]})";
  folder.write(test::kJobFile, "[" + record + "]");
  folder.write(
      "shared/utility/logs/TarselVistrelUtility.txt",
      test::takenLines("1", "updateFW") + test::controllerLines("/a") + test::flashedLines());
  EXPECT_EQ(runWatch("1"), kWorkerFailed);
  EXPECT_EQ(shown.str(), "");
  EXPECT_NE(messages.str().find("the flash may have been done"), std::string::npos);
}

TEST_F(Jobs, OfADamagedFileTheLogIsNamedWhereItShowsTheJobs) {
  const std::string log = folder / "shared/utility/logs/TarselVistrelUtility.txt";
  folder.write(test::kJobFile, "[{");
  EXPECT_EQ(runShow("1"), kJobFileFailed);
  EXPECT_EQ(messages.str().find("--log-file"), std::string::npos);
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", test::writtenLine("1", "A1", 50));
  EXPECT_EQ(runShow("1"), kJobFileFailed);
  EXPECT_NE(messages.str().find("--log-file " + log), std::string::npos);
}

TEST_F(Jobs, WhereTheJobFileHoldsNothingTheLogIsNamed) {
  const std::string log = folder.write("shared/utility/logs/TarselVistrelUtility.txt",
                                       test::writtenLine("3", "A1", 50));
  const std::string way =
      "give list, show, explain or report --log-file " + log +
      " in place of the folder; report --shared tells it, too, with what was kept of standard "
      "error";
  folder.write(test::kJobFile, "[]");
  EXPECT_EQ(runList(), kSuccess);
  EXPECT_EQ(shown.str(),
            "no jobs in " + (folder / test::kJobFile) + "; the log shows jobs: " + way + "\n");
  std::filesystem::remove(folder / test::kJobFile);
  EXPECT_EQ(runShow("3"), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 3 in " + (folder / test::kJobFile) +
                                ". The log shows it: " + way + "\n");
  messages.str("");
  EXPECT_EQ(runShow("4"), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 4 in " + (folder / test::kJobFile) + "\n");
}

TEST_F(Jobs, WhereNothingOfFilesAloneHasFailedItIsSaidWhatWasNotAtHand) {
  const std::string file =
      folder.write("mail/jobs.json", R"([{"log_id": "1", "state_id": "FREE", "result": 0}])");
  const CopyOptions files = {.jobFile = file};
  EXPECT_EQ(runHere(list, {.sharedFolder = "", .failed = true, .copy = files}), kSuccess);
  EXPECT_EQ(shown.str(), "no failed jobs\n" + std::string(kNotLooked) +
                             "; the log is not at hand; what was kept of the worker's standard "
                             "error is not at hand\n");
}

}  // namespace
}  // namespace kelvane::console
