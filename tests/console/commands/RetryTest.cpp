// The sub-command retry, with small scripts as workers.

#include <filesystem>

#include "console/commands/Retry.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/explain/LogOfFlashes.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::console {
namespace {

using platform::Value;

class Retry : public ConsoleWorld {
 protected:
  Retry() {
    folder.write("image", "");
    job.noWait = true;
    makeWorker("echo \"$1\" > \"$2started\"");
  }

  // The job file gets a firmware job 7 with these keys in front of others.
  void writeJob(const std::string& state, const std::string& more = "") const {
    writeRecord(R"("job_id": "updateFW", "state_id": ")" + state +
                R"(", "input_parameters": [{"wwn": "A1", "file_path": ")" + (folder / "image") +
                "\"}]" + more);
  }
  void writeRecord(const std::string& keys) const {
    folder.write(test::kJobFile,
                 R"([{"log_id": "7", )" + keys + R"(}, {"log_id": "8", "n": 1.0}])");
  }
  int run(const std::string& logId = "7") {
    return runHere(retry, RetryOptions{job, logId, false});
  }
  Value jobs() const { return platform::parseJson(folder.read(test::kJobFile)); }
  void expectNothingDone() const {
    EXPECT_EQ(jobs().count(), 2U);
    EXPECT_FALSE(platform::exists(folder / "shared/started"));
  }
};

TEST_F(Retry, AFinishedJobGetsANewRecord) {
  writeJob("FREE", R"(, "result": 32852, "resultStr": "bad", "output": [], "user": "ann")");
  const Value before = jobs();
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_EQ(shown.str(), "9\n");
  ASSERT_EQ(jobs().count(), 3U);
  EXPECT_EQ(jobs().at(0), before.at(0));
  EXPECT_EQ(jobs().at(1), before.at(1));
  const Value added = platform::parseJson(R"({"log_id": "9", "job_id": "updateFW",
      "state_id": "WAIT", "input_parameters": [{"wwn": "A1", "file_path": ")" +
                                          (folder / "image") + R"("}], "user": "ann"})");
  EXPECT_EQ(jobs().at(2), added);
}

TEST_F(Retry, TheRecordOfADeadWorkerStaysAndGetsANewOne) {
  writeJob("RUN");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(jobs().count(), 3U);
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("RUN"));
}

TEST_F(Retry, TheNewRecordsLogIdCanBeChosen) {
  writeJob("FREE");
  job.logId = "again";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(jobs().at(2).get("log_id"), Value("again"));
}

TEST_F(Retry, AWaitingJobIsRunItself) {
  writeJob("WAIT");
  const std::string before = folder.read(test::kJobFile);
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "7\n");
  EXPECT_EQ(folder.read(test::kJobFile), before);
}

TEST_F(Retry, AWaitingJobThatAWorkerTookIsNotRunUnasked) {
  writeJob("WAIT");
  folder.write("shared/utility/logs/TarselVistrelUtility.txt",
               test::takenLines("7", "updateFW") + test::controllerLines(folder / "image") +
                   test::flashedLines());
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(
      messages.str(),
      "kelvane-console: a worker took job 7, and the flash may have been done, by the log of 1 "
      "controller: look whether it was; --yes runs it all the same\n");
  expectNothingDone();
  EXPECT_EQ(runHere(retry, RetryOptions{job, "7", true}), kSuccess);
}

TEST_F(Retry, AWaitingJobKeepsItsLogId) {
  writeJob("WAIT");
  job.logId = "9";
  EXPECT_EQ(run(), kBadUsage);
  expectNothingDone();
}

TEST_F(Retry, IsFollowedToItsEnd) {
  folder.write(test::kJobFile, R"([{"log_id": "7", "job_id": "updateFW", "state_id": "WAIT",
      "input_parameters": [{"wwn": "A1", "file_path": ")" +
                                   (folder / "image") + "\"}]}]");
  makeWorker(
      "sed 's/WAIT/FREE/; s/\"log_id\"/\"result\": 7, &/' \"$2utility/command/BGPLog.json\" "
      "> \"$2new\"; mv \"$2new\" \"$2utility/command/BGPLog.json\"\n");
  job.noWait = false;
  EXPECT_EQ(run(), kJobFailed) << messages.str();
  EXPECT_EQ(shownAtTheEnd(), "result 7 (0x0007): \n");
}

TEST_F(Retry, AnImageThatIsGoneIsRefused) {
  writeJob("FREE");
  std::filesystem::remove(folder / "image");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: image " + (folder / "image") + " does not exist\n");
  expectNothingDone();
}

TEST_F(Retry, AnInstallationIsRefusedLikeTheFirstTime) {
  writeRecord(R"("job_id": "updateSW", "state_id": "FREE",
                 "input_parameters": {"file_path": "/etc"})");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(),
            "kelvane-console: package /etc is no application bundle: it has no folder Contents\n");
  expectNothingDone();
}

TEST_F(Retry, APackageThatIsNotThereOrNotNamedIsRefused) {
  const std::string missing = folder / "gone.app";
  for (const std::string& package : {missing, std::string()}) {
    messages.str("");
    writeRecord(R"("job_id": "updateSW", "state_id": "WAIT",
                   "input_parameters": {"file_path": ")" +
                package + "\"}");
    EXPECT_EQ(run(), kBadUsage);
    EXPECT_EQ(messages.str(), "kelvane-console: " +
                                  (package.empty() ? "the package's path is empty"
                                                   : "package " + missing + " does not exist") +
                                  "\n");
    expectNothingDone();
  }
}

TEST_F(Retry, AFolderThatHoldsOtherFilesIsNotGivenToTheEngine) {
  folder.write("mine/letter", "dear");
  const std::string product =
      R"({"productid": "p", "version": "1", "url": "u", "folder": ")" + (folder / "mine") + "\"}";
  for (const char* state : {"WAIT", "FREE", "RUN"}) {
    for (const std::string& keys :
         {R"("job_id": "getOnlineUpdateData", "input_parameters": )" + product,
          R"("job_id": "downloadOnlineUpdateFile", "input_parameters": [)" + product + "]"}) {
      messages.str("");
      writeRecord(keys + R"(, "state_id": ")" + state + "\"");
      EXPECT_EQ(run(), kBadUsage) << state;
      EXPECT_EQ(messages.str(), "kelvane-console: folder " + (folder / "mine") +
                                    " is not empty: it would be removed with everything in it\n");
      expectNothingDone();
    }
  }
  EXPECT_EQ(folder.read("mine/letter"), "dear");
}

TEST_F(Retry, TheConsolesOwnFolderMayHoldWhatAKilledEngineLeft) {
  folder.write("shared/tmp/EngineRunner/half", "");
  writeRecord(R"("job_id": "getOnlineUpdateData", "state_id": "RUN", "input_parameters":
                 {"productid": "p", "version": "1", "url": "u", "folder": ")" +
              (folder / "shared/tmp/EngineRunner") + "\"}");
  EXPECT_EQ(run(), kSuccess) << messages.str();
}

TEST_F(Retry, WhatTheWorkerWouldNotRunIsRefused) {
  writeRecord(R"("job_id": "make tea", "state_id": "FREE", "input_parameters": {})");
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_NE(messages.str().find("job 7 cannot be run: "), std::string::npos);
  expectNothingDone();
}

TEST_F(Retry, AJobThatIsNotThereIsNotFound) {
  writeJob("FREE");
  EXPECT_EQ(run("9"), kNotFound);
  expectNothingDone();
}

TEST_F(Retry, ARecordThatKeepsTheWorkerFromWritingIsRefusedForAWaitingJobToo) {
  folder.write(test::kJobFile, R"([{"log_id": "7", "job_id": "updateFW", "state_id": "WAIT",
      "input_parameters": [{"wwn": "A1", "file_path": ")" +
                                   (folder / "image") + "\"}]}, 5]");
  EXPECT_EQ(run(), kJobFileFailed);
  expectNothingDone();
}

}  // namespace
}  // namespace kelvane::console
