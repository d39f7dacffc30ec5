// The checks of the job file's records.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/RecordChecks.h"
#include "platform/Json.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The job with the log id "run" is run by a worker.
Findings findings(const std::string& records) {
  return recordFindings(
      "F", parseJson(records), [](const std::string& id) { return id == "run"; },
      [](const platform::Value&) { return LogStretch(); });
}

std::vector<std::string> foundIn(const std::string& records) { return inShort(findings(records)); }

std::string record(const std::string& command, const std::string& inputs) {
  return R"({"log_id": "1", "job_id": ")" + command + R"(", "state_id": "WAIT",
             "input_parameters": )" +
         inputs + "}";
}

// What speaks against a waiting job.
std::string fault(const std::string& command, const std::string& inputs) {
  return whyNotStarted(parseJson(record(command, inputs)));
}

constexpr char kProduct[] = R"({"productid": "p", "version": "1", "url": "u", "folder": "/f"})";

TEST(RecordChecks, EveryCommandWithItsParametersIsFine) {
  EXPECT_EQ(fault("getOnlineUpdateData", kProduct), "");
  EXPECT_EQ(fault("downloadOnlineUpdateFile", std::string("[") + kProduct + ", {}]"), "");
  EXPECT_EQ(fault("updateSW", R"({"file_path": "/a"})"), "");
  EXPECT_EQ(fault("updateFW", R"([{"wwn": "A", "file_path": "/a"}])"), "");
}

TEST(RecordChecks, ParametersOfEveryCommandAreExamined) {
  EXPECT_EQ(fault("getOnlineUpdateData", "[]"), "input_parameters is no object");
  EXPECT_EQ(fault("getOnlineUpdateData", R"({"productid": "p"})"),
            "input_parameters has no \"version\"");
  EXPECT_EQ(fault("getOnlineUpdateData", R"({"productid": 5})"),
            "input_parameters has a \"productid\" that is no string");
  EXPECT_EQ(fault("downloadOnlineUpdateFile", kProduct), "input_parameters is no array");
  EXPECT_EQ(fault("downloadOnlineUpdateFile", "[]"), "input_parameters is an empty array");
  EXPECT_EQ(fault("downloadOnlineUpdateFile", "[{}]"), "input_parameters[0] has no \"productid\"");
  EXPECT_EQ(fault("updateSW", "{}"), "input_parameters has no \"file_path\"");
  EXPECT_EQ(fault("updateFW", R"([{"wwn": "A", "file_path": "/a"}, {"wwn": "B"}])"),
            "input_parameters[1] has no \"file_path\"");
  EXPECT_EQ(fault("updateFW", "[5]"), "input_parameters[0] is no object");
}

TEST(RecordChecks, UnknownCommandIsAnErrorOfAWaitingJob) {
  EXPECT_EQ(
      findings("[" + record("updateHW", "{}") + "]"),
      (Findings{
          {Code::jobFaulty, Severity::error,
           "F: job 1 cannot be carried out: job_id is \"updateHW\", which is no command of the "
           "worker's",
           "The worker leaves the job in state WAIT without having done anything.",
           "Compare the record with the examples of its command, and add it anew.", "F", "1"}}));
}

// What the worker does with a firmware job over a whole entry and this one.
std::string firmwareMeaning(const std::string& entry) {
  const Findings all = findings(
      "[" + record("updateFW", R"([{"wwn": "A", "file_path": "/"}, )" + entry + "]") + "]");
  return all.empty() ? "" : all[0].meaning;
}

TEST(RecordChecks, OfAFirmwareJobItIsToldWhatIsFlashedAllTheSame) {
  const std::string before = "The controllers before it are flashed. ";
  const std::string behind = " Later ones are not started.";
  EXPECT_EQ(firmwareMeaning(R"({"file_path": "/a"})"),
            before + "At this entry the job ends with 1026 (0x0402)." + behind);
  EXPECT_EQ(firmwareMeaning(R"({"wwn": 5, "file_path": "/a"})"),
            before + "No progress is written, and at this entry the job ends with 1026 (0x0402)." +
                behind);
  EXPECT_EQ(firmwareMeaning(R"({"wwn": "B"})"),
            before + "At this entry the job ends as with an image that cannot be read." + behind);
  EXPECT_EQ(firmwareMeaning(R"({"wwn": "B", "file_path": 5})"),
            before + "At this entry the worker gives up: the job stays in state RUN." + behind);
  EXPECT_EQ(firmwareMeaning("5"),
            before +
                "No progress is written, and at this entry the worker gives up: the job stays "
                "in state WAIT." +
                behind);
}

TEST(RecordChecks, ImagesThatAreNotThereAreErrorsOfAWaitingJob) {
  const Findings all = findings("[" + record("updateFW", R"([{"wwn": "A", "file_path": "/no.img"},
                                                       {"wwn": "B", "file_path": "b.img"}])") +
                                "]");
  EXPECT_THAT(
      inShort(all),
      ElementsAre("error: F: job 1: the image of input_parameters[0], /no.img, does not exist",
                  "error: F: job 1: the image of input_parameters[1], b.img, is relative: it is "
                  "looked for in the worker's current folder"));
  EXPECT_EQ(all[0].path, "/no.img");
  EXPECT_EQ(all[0].job, "1");
}

TEST(RecordChecks, FinishedJobOfAnUnknownCommandWithoutAResultIsAWarning) {
  EXPECT_THAT(foundIn(R"([{"log_id": "1", "job_id": "updateHW", "state_id": "FREE",
                         "input_parameters": {}}])"),
              ElementsAre("warning: F: job 1 is finished, and there is no result"));
}

TEST(RecordChecks, ElementThatIsNoObjectIsAnError) {
  EXPECT_THAT(foundIn("[5, null, [1]]"), ElementsAre("error: F: element [0] is no object: 5",
                                                     "error: F: element [1] is no object: null",
                                                     "error: F: element [2] is no object: [1]"));
}

TEST(RecordChecks, LogIdHasToBeAText) {
  EXPECT_THAT(foundIn(R"([{"log_id": 17}, {"log_id": null}, {}])"),
              ElementsAre("error: F: element [0] has a log_id that is no string: 17",
                          "error: F: element [1] has a log_id that is no string: null",
                          "warning: F: element [2] has no log_id"));
}

TEST(RecordChecks, RequiredKeysAreExamined) {
  EXPECT_THAT(foundIn(R"([
      {"log_id": "1", "state_id": "WAIT", "input_parameters": {}},
      {"log_id": "2", "job_id": "updateSW", "input_parameters": {}},
      {"log_id": "3", "job_id": "updateSW", "state_id": "WAIT"},
      {"log_id": "4", "job_id": 5, "state_id": "WAIT", "input_parameters": {}},
      {"log_id": "5", "job_id": "updateSW", "state_id": 5, "input_parameters": {}}])"),
              ElementsAre("error: F: job 1 cannot be carried out: there is no job_id",
                          "error: F: job 2 cannot be carried out: there is no state_id",
                          "error: F: job 3 cannot be carried out: there is no input_parameters",
                          "error: F: job 4 cannot be carried out: job_id is no string",
                          "error: F: job 5 cannot be carried out: state_id is no string"));
}

TEST(RecordChecks, FinishedJobThatIsNotWholeIsAWarning) {
  EXPECT_THAT(foundIn(R"([{"log_id": "1", "state_id": "FREE", "input_parameters": {}}])"),
              ElementsAre("warning: F: job 1 is finished, and there is no job_id"));
}

TEST(RecordChecks, ParametersOfAFinishedJobAreNoConcern) {
  EXPECT_THAT(foundIn(R"([{"log_id": "1", "job_id": "updateHW", "state_id": "FREE",
                         "result": 0, "input_parameters": 5}])"),
              IsEmpty());
}

TEST(RecordChecks, UnknownStateIsAnError) {
  EXPECT_THAT(
      foundIn(R"([{"log_id": "1", "job_id": "updateSW", "state_id": "wait",
                         "input_parameters": {"file_path": "/a"}}])"),
      ElementsAre("error: F: job 1 cannot be carried out: state_id is \"wait\", which is none of "
                  "WAIT, RUN, FREE"));
}

TEST(RecordChecks, WaitingJobWithStepsInTheLogIsAnError) {
  const std::string records = R"([{"log_id": "1", "job_id": "updateSW", "state_id": "WAIT",
                                   "input_parameters": {"file_path": "/a"}}])";
  const auto look = [&](bool runs) {
    return recordFindings(
        "F", parseJson(records), [runs](const std::string&) { return runs; },
        [](const platform::Value&) {
          LogStretch log;
          log.isFound = true;
          log.hasStarted = true;
          log.lastStep = "14:03:07 updateSW: result = ";
          return log;
        });
  };
  const Findings all = look(false);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].what, "F: job 1 is in state WAIT, and the log tells that a worker took it");
  EXPECT_EQ(all[0].meaning,
            "A worker took it, and its record does not tell what became of it: the application may "
            "have been removed or replaced. The log last saw \"14:03:07 updateSW: result = \".");
  EXPECT_THAT(look(true), IsEmpty());
}

TEST(RecordChecks, AnEmptyPathOfAnImageIsToldAsOne) {
  EXPECT_THAT(
      foundIn("[" + record("updateFW", R"([{"wwn": "A", "file_path": ""}])") + "]"),
      ElementsAre("error: F: job 1: the path of the image of input_parameters[0] is empty"));
}

TEST(RecordChecks, AnEmptyLogIdIsToldAsOne) {
  EXPECT_EQ(findings(R"([{"log_id": "", "job_id": "updateSW", "state_id": "RUN",
                          "input_parameters": {}}])")[0]
                .what,
            "F: job \"\" is in state RUN, and no worker for it is seen");
}

std::string installationOf(const std::string& package, const std::string& logId = "1") {
  return R"([{"log_id": ")" + logId + R"(", "job_id": "updateSW", "state_id": "WAIT",
             "input_parameters": {"file_path": ")" +
         package + R"("}}])";
}

TEST(RecordChecks, AnInstallationWithoutAnApplicationIsAnError) {
  const test::TempFolder folder;
  const std::string data = folder.write("data.app/Contents/data", "");
  const std::string folderOfData = folder / "data.app";
  const std::vector<std::pair<std::string, std::string>> faults = {
      {"", "the package's path is empty"},
      {"New.app",
       "the package, New.app, is relative: it is looked for in the worker's current "
       "folder"},
      {"/nowhere/New.app", "the package, /nowhere/New.app, does not exist"},
      {data, "the package, " + data + ", is no application bundle: it is a file"},
      {folderOfData, "the package, " + folderOfData +
                         ", is no application bundle: there is no program in its Contents"}};
  for (const auto& [package, fault] : faults) {
    const Findings all = findings(installationOf(package));
    ASSERT_EQ(all.size(), 1U) << package;
    EXPECT_EQ(nameOf(all[0].code), std::string("package-unusable"));
    EXPECT_EQ(all[0].what, "F: job 1: " + fault);
    EXPECT_EQ(all[0].path, package);
  }
}

TEST(RecordChecks, WhatIsInstalledInsteadIsTold) {
  constexpr char kRemoves[] =
      "The worker looks at nothing beforehand: it removes the application and ";
  EXPECT_EQ(findings(installationOf("/nowhere/New.app"))[0].meaning,
            std::string(kRemoves) + "copies nothing, with result 0 all the same.");
  EXPECT_EQ(findings(installationOf("/"))[0].meaning,
            std::string(kRemoves) + "copies this to its place, with result 0 all the same.");
}

TEST(RecordChecks, ThePackageOfAnInstallationThatRunsIsNotLookedAt) {
  EXPECT_THAT(findings(installationOf("", "run")), IsEmpty());
}

TEST(RecordChecks, OfACopyOnlyAPathThatIsEmptyIsAFault) {
  const auto ofCopy = [](const std::string& package) {
    return recordFindings("F", parseJson(installationOf(package)), {},
                          [](const platform::Value&) { return LogStretch(); });
  };
  EXPECT_THAT(ofCopy("/nowhere/New.app"), IsEmpty());
  EXPECT_EQ(ofCopy("").size(), 1U);
}

TEST(RecordChecks, RunningJobWithoutAWorkerIsAWarning) {
  const std::string rest = R"(", "job_id": "updateSW", "state_id": "RUN", "input_parameters": {}})";
  EXPECT_EQ(
      findings(R"([{"log_id": "1)" + rest + R"(, {"log_id": "run)" + rest + "]"),
      (Findings{{Code::jobNoWorker, Severity::warning,
                 "F: job 1 is in state RUN, and no worker for it is seen",
                 "Its worker was killed, or gave up with an error line in the log. Nothing "
                 "takes the job up.",
                 "See \"kelvane-console explain 1\" for the job; then add it anew under another "
                 "log_id.",
                 "F", "1"}}));
}

TEST(RecordChecks, WhatIsToBeTypedHasTheSharedFolder) {
  const platform::Value records = parseJson(
      R"([{"log_id": "1", "job_id": "updateSW", "state_id": "RUN", "input_parameters": {}}])");
  const Findings all = recordFindings(
      "/s/utility/command/BGPLog.json", records, [](const std::string&) { return false; },
      [](const platform::Value&) { return LogStretch(); });
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].advice.rfind("See \"kelvane-console explain --shared /s/ 1\" for the job", 0),
            0U)
      << all[0].advice;
}

TEST(RecordChecks, AbandonedFirmwareJobTellsOfTheBridgesNvram) {
  const Findings all = findings(R"([{"log_id": "1", "job_id": "updateFW", "state_id": "RUN",
                                     "input_parameters": []}])");
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(
      all[0].advice,
      "See \"kelvane-console explain 1\" for the job; then add it anew under another log_id. A "
      "bridge that was flashed before its NVRAM was written does not get it then: the "
      "versions are equal.");
}

TEST(RecordChecks, FinishedJobWithoutAResultLostItsFirstWrite) {
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile", "updateSW"}) {
    const std::string start = R"([{"log_id": "1", "job_id": ")" + std::string(command) +
                              R"(", "state_id": "FREE", "input_parameters": {})";
    EXPECT_EQ(
        findings(start + "}]"),
        (Findings{{Code::jobNoResult, Severity::warning,
                   "F: job 1 is finished, and there is no result",
                   "The worker's first write of the job failed, as on a full disk, and its last "
                   "one did not. The job was done, and would have the result 0.",
                   "Mend what kept the file from being written, then remove the record or leave "
                   "it.",
                   "F", "1"}}));
    EXPECT_THAT(foundIn(start + R"(, "result": 0}])"), IsEmpty());
    EXPECT_THAT(foundIn(start + R"(, "result": "0"}])"),
                ElementsAre("warning: F: job 1 is finished, and its result is no number: \"0\""));
  }
}

TEST(RecordChecks, FinishedFirmwareJobWithoutAResultIsNotTheWorkers) {
  EXPECT_EQ(findings(R"([{"log_id": "1", "job_id": "updateFW", "state_id": "FREE",
                          "input_parameters": []}])"),
            (Findings{{Code::jobNoResult, Severity::warning,
                       "F: job 1 is finished, and there is no result",
                       "The end of a firmware job always has its result: not the worker wrote this "
                       "one.",
                       "Find out who writes the job file besides the worker.", "F", "1"}}));
}

TEST(RecordChecks, FinishedFirmwareJobWithoutItsOutputLostItsFirstWrite) {
  const std::string start = R"([{"log_id": "1", "job_id": "updateFW", "state_id": "FREE",
                                 "result": 0, "input_parameters": )";
  const std::string entries = R"([{"wwn": "A", "file_path": "/a"}])";
  const Findings all = findings(start + entries + "}]");
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].what, "F: job 1 is finished, and there is no output");
  EXPECT_EQ(all[0].meaning,
            "The worker's first write of the job failed, as on a full disk, and its last one did "
            "not. The job was done, and its result counts; its progress is lost.");
  EXPECT_THAT(foundIn(start + entries + R"(, "output": []}])"), IsEmpty());
  EXPECT_THAT(foundIn(start + "[{}]}]"), IsEmpty());  // there was nothing to report
}

TEST(RecordChecks, LogIdThatStandsTwiceIsOneWarning) {
  const std::string job =
      R"({"log_id": "7", "job_id": "x", "state_id": "FREE", "result": 0, "input_parameters": {}})";
  EXPECT_THAT(foundIn("[" + job + "," + job + "," + job + "]"),
              ElementsAre("warning: F: 3 jobs have the log_id 7"));
}

}  // namespace
}  // namespace kelvane::console
