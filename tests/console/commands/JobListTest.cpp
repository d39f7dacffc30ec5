// list, with what the log tells of each job.

#include <fstream>

#include "console/commands/Jobs.h"
#include "console/job/ExitCode.h"
#include "console/job/StandardError.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

using platform::Value;

std::string line(const std::string& time, const std::string& function, const std::string& message) {
  return "[" + time + "] [x.cpp][1][" + function + "][debug] " + message + "\n";
}

std::string taken(const std::string& time, const std::string& logId) {
  return line(time, "run", "currentJobArray = (\n)") +
         line(time, "run",
              "logId = " + logId + ", inputParmsDict = {\n}, stateId = WAIT. jobId = x");
}

std::string end(const std::string& time, const std::string& logId) {
  return line(time, "updateFW", "updateAllFW end, retDict = {\n    \"log_id\" = " + logId + ";\n}");
}

class JobListTest : public ConsoleWorld {
 protected:
  JobListTest() {
    folder.write(test::kJobFile, R"([
      {"log_id": "1", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0,
       "resultStr": "no error", "input_parameters": {}, "output": []},
      {"log_id": "2", "job_id": "downloadOnlineUpdateFile", "state_id": "FREE", "result": 259,
       "resultStr": "file is not found", "input_parameters": []},
      {"log_id": "3", "job_id": "updateSW", "state_id": "RUN", "result": 0, "resultStr": "",
       "input_parameters": {}},
      {"log_id": "4", "job_id": "updateFW", "state_id": "WAIT", "input_parameters":
       [{"wwn": "A1", "file_path": "/a"}]},
      {"log_id": "5", "job_id": "updateFW", "state_id": "WAIT", "input_parameters": []},
      7])");
  }

  void writeLog() {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt",
                 taken("14:03:07", "1") + line("14:03:09", "getOnlineUpdateData", "step") +
                     taken("23:59:50", "3") + line("00:00:05", "updateSW", "step") +
                     taken("01:00:00", "4") +
                     line("01:00:01", "updateFW", "devId = 0, filePath = /a") +
                     line("01:00:02", "updateFW", "Start transferring image, please wait ...") +
                     line("01:10:00", "updateFW", "Flash Completed.") + end("01:10:01", "4"));
  }
  int run() { return runHere(list, options); }
  // What is told of the last record.
  std::string noUpdates() const {
    return "no job can be updated: " + (folder / test::kJobFile) +
           ": [5] is no object: 7. While it stands there, the worker can write of no job how it "
           "goes and what became of it. Remove it from the file\n";
  }
  // What the worker of the record said that a console submitted.
  void keepStandardError(const std::string& record, const std::string& text) const {
    const std::string path =
        makeStandardError(folder / "shared/", platform::parseJson(record), std::chrono::hours(12));
    std::ofstream(path, std::ios::app) << text;
  }
  // The object that is added to the record, as it is shown for machines.
  Value toldOf(const std::string& logId) {
    screen.json = true;
    run();
    std::istringstream lines(shown.str());
    for (std::string text; std::getline(lines, text);) {
      if (text.rfind('{', 0) != 0) continue;
      const Value record = platform::parseJson(text);
      if (record.get("log_id") == Value(logId)) return record.get("told_by_log");
    }
    return Value("no such record");
  }

  ListOptions options{folder / "shared"};
};

TEST_F(JobListTest, ShowsStartAndLengthWhereTheLogTellsThem) {
  writeLog();
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(
      shown.str(),
      "Log id  Command                   State           Start     Length        Result  Text\n"
      "     1  getOnlineUpdateData       FREE            14:03:07    0:02             0  no error\n"
      "     2  downloadOnlineUpdateFile  FREE                              259 (0x0103)  file is "
      "not "
      "found\n"
      "     3  updateSW                  RUN, no worker  23:59:50   0:15+\n"
      "     4  updateFW                  WAIT, taken     01:00:00  10:01+                the flash "
      "may have been done, by the log of 1 controller\n"
      "     5  updateFW                  WAIT\n"
      "     -  (no record)\n" +
          noUpdates());
}

TEST_F(JobListTest, WithoutALogThereAreNoColumnsForIt) {
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().substr(0, shown.str().find('\n')),
            "Log id  Command                   State                 Result  Text");
}

TEST_F(JobListTest, ForMachinesTheLogsPartIsAnObjectOfItsOwn) {
  writeLog();
  EXPECT_EQ(platform::printJsonLine(toldOf("1")), R"({"start":"14:03:07","seconds":2})");
  EXPECT_EQ(platform::printJsonLine(toldOf("4")),
            R"({"start":"01:00:00","seconds":601,"may_have_been_done":true})");
  EXPECT_TRUE(toldOf("5").isNothing());
}

TEST_F(JobListTest, AnothersLinesAreNoLength) {
  folder.write("shared/utility/logs/TarselVistrelUtility.txt",
               taken("01:00:00", "4") + taken("02:00:00", "3") +
                   line("02:00:01", "updateSW", "step") + end("02:00:02", "4"));
  EXPECT_EQ(platform::printJsonLine(toldOf("3")), R"({"start":"02:00:00"})");
}

TEST_F(JobListTest, FailedOnesAreThoseThatDidNotComeToAGoodEnd) {
  writeLog();
  options.failed = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_NE(shown.str().find("\n     2  "), std::string::npos);
  EXPECT_NE(shown.str().find("\n     3  "), std::string::npos);
  EXPECT_NE(shown.str().find("\n     4  "), std::string::npos);
  EXPECT_EQ(shown.str().find("\n     1  "), std::string::npos);
  EXPECT_EQ(shown.str().find("\n     5  "), std::string::npos);
  EXPECT_EQ(shown.str().find("no record"), std::string::npos);
}

TEST_F(JobListTest, TheLastOnesAreThoseOfTheFailedOnesWhereBothAreAskedFor) {
  options.failed = true;
  options.last = "1";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "Log id  Command   State           Result  Text\n"
            "     3  updateSW  RUN, no worker\n" +
                noUpdates());
}

TEST_F(JobListTest, LastIsAWholeNumber) {
  options.last = "9";
  EXPECT_EQ(run(), kSuccess);
  shown.str("");
  options.last = "0";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "--last 0 shows no jobs\n");
  for (const char* last : {"-1", "1x", "all"}) {
    options.last = last;
    EXPECT_EQ(run(), kBadUsage) << last;
  }
}

TEST_F(JobListTest, AJobThatEndedWith0AndDidNotDoAllHasFailed) {
  folder.write(test::kJobFile, R"([
      {"log_id": "1", "job_id": "updateSW", "state_id": "FREE", "result": 0, "resultStr":
       "no error", "input_parameters": {"file_path": "/a"}},
      {"log_id": "2", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0,
       "resultStr": "no error", "input_parameters": {}}])");
  keepStandardError(R"({"log_id": "1", "job_id": "updateSW",
                        "input_parameters": {"file_path": "/a"}})",
                    "cp: /x: Permission denied\n");
  options.failed = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "Log id  Command              State  Result  Text\n"
            "     1  updateSW             FREE        0  no error, but the system's tools "
            "complained in this run or an earlier one: cp: /x: Permission denied\n"
            "     2  getOnlineUpdateData  FREE        0  no error, but the update engine left no "
            "catalogue\n");
}

TEST_F(JobListTest, WhatTheToolsSaidOfAnotherJobWithTheLogIdIsNotToldOfThisOne) {
  folder.write(test::kJobFile, R"([
      {"log_id": "1", "job_id": "updateSW", "state_id": "FREE", "result": 0, "resultStr":
       "no error", "input_parameters": {"file_path": "/a"}}])");
  keepStandardError(R"({"log_id": "1", "job_id": "updateSW",
                        "input_parameters": {"file_path": "/b"}})",
                    "cp: /x: Permission denied\n");
  options.failed = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "no failed jobs\n");
}

TEST_F(JobListTest, ForMachinesItTellsWhatBecameOfEachController) {
  folder.write(test::kJobFile, R"([{"log_id": "1", "job_id": "updateFW", "state_id": "FREE",
      "result": 32852, "output": [
        {"wwn": "A1", "cpld_percentage": 100, "fw_percentage": 100, "total_percentage": 100},
        {"wwn": "B2", "cpld_percentage": 0, "fw_percentage": 0, "total_percentage": 0}]}])");
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(platform::printJsonLine(platform::parseJson(shown.str()).get("console_status")),
            R"({"controllers":[{"wwn":"A1","standing":"failed","cpld_percentage":100},)"
            R"({"wwn":"B2","standing":"not started","cpld_percentage":0,"fw_percentage":0,)"
            R"("total_percentage":0}]})");
}

TEST_F(JobListTest, ForMachinesItTellsThatNoWorkerIsSeen) {
  folder.write(test::kJobFile, R"([{"log_id": "1", "job_id": "updateSW", "state_id": "RUN"}])");
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(platform::parseJson(shown.str()).get("console_status").get("no_worker"),
            Value::boolean(true));
}

TEST_F(JobListTest, AResultThatIsNoNumberIsShownAsItIs) {
  folder.write(test::kJobFile, R"([{"log_id": "1", "state_id": "FREE", "result": "7"}])");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_NE(shown.str().find("FREE      \"7\""), std::string::npos) << shown.str();
}

TEST_F(JobListTest, WhereNoneHasFailedItSaysSo) {
  folder.write(test::kJobFile, R"([{"log_id": "1", "state_id": "FREE", "result": 0}])");
  options.failed = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "no failed jobs\n");
}

}  // namespace
}  // namespace kelvane::console
