// A job's status as taken out of its record.

#include <gtest/gtest.h>

#include "console/job/JobStatus.h"
#include "platform/Json.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

JobStatus statusOfText(const char* record) { return statusOf(platform::parseJson(record)); }

TEST(JobStatus, TakesProgressFromTheOutput) {
  const JobStatus status = statusOfText(R"({
    "log_id": "18", "state_id": "RUN", "result": 0, "resultStr": "no error",
    "input_parameters": [{"wwn": "other"}],
    "output": [{"wwn": "A", "cpld_percentage": 100, "fw_percentage": 37, "total_percentage": 68},
               {"wwn": "B", "cpld_percentage": 0, "fw_percentage": 0, "total_percentage": 0}]})");
  const JobStatus expected = {"18", "RUN", {{"A", 100, 37, 68}, {"B", 0, 0, 0}}, "0", "no error"};
  EXPECT_EQ(status, expected);
}

TEST(JobStatus, BeforeThereIsOutputShowsTheInput) {
  const JobStatus status = statusOfText(R"({"input_parameters": [{"wwn": "A"}, {"wwn": "B"}]})");
  EXPECT_EQ(status.controllers, (std::vector<ControllerStatus>{{"A", 0, 0, 0}, {"B", 0, 0, 0}}));
}

TEST(JobStatus, PercentagesAreHeldBetween0And100) {
  const JobStatus status = statusOfText(R"({"output": [
    {"wwn": "A", "cpld_percentage": -1, "fw_percentage": 101, "total_percentage": 1e300},
    {"wwn": "B", "cpld_percentage": "50", "fw_percentage": null, "total_percentage": [50]}]})");
  EXPECT_EQ(status.controllers,
            (std::vector<ControllerStatus>{{"A", 0, 100, 100}, {"B", 0, 0, 0}}));
}

TEST(JobStatus, WhatIsOfAnotherTypeIsEmpty) {
  const JobStatus status = statusOfText(R"({"log_id": 1, "state_id": null, "result": "0",
    "resultStr": [], "input_parameters": {"wwn": "A"}, "output": [1, "x", [], {"wwn": 5}]})");
  JobStatus expected = {"", "", {{"", 0, 0, 0}}, "", ""};
  expected.otherResult = "\"0\"";
  EXPECT_EQ(status, expected);
}

TEST(JobStatus, PackagesAreNoControllers) {
  const JobStatus status = statusOfText(R"({"job_id": "getOnlineUpdateData",
    "input_parameters": {"productid": "A"}, "output": [{"ProductID": "A"}, {"ProductID": "B"}]})");
  EXPECT_TRUE(status.controllers.empty());
  EXPECT_EQ(status.command, "getOnlineUpdateData");
}

TEST(JobStatus, PhaseFollowsThePercentages) {
  EXPECT_STREQ(phaseOf({"A", 0, 0, 0}), "waiting");
  EXPECT_STREQ(phaseOf({"A", 1, 0, 0}), "CPLD");
  EXPECT_STREQ(phaseOf({"A", 99, 0, 49}), "CPLD");
  EXPECT_STREQ(phaseOf({"A", 100, 0, 50}), "firmware");
  EXPECT_STREQ(phaseOf({"A", 0, 1, 1}), "firmware");
  EXPECT_STREQ(phaseOf({"A", 0, 0, 50}), "firmware");
  EXPECT_STREQ(phaseOf({"A", 100, 100, 99}), "firmware");
  EXPECT_STREQ(phaseOf({"A", 100, 100, 100}), "done");
  EXPECT_STREQ(phaseOf({"A", 0, 100, 100}), "done");
}

// The standings of a finished firmware job's controllers with these CPLD and total percentages.
std::vector<std::string> phases(int result, const std::vector<std::pair<int, int>>& percentages) {
  std::string output;
  for (const auto& [cpld, total] : percentages) {
    output += std::string(output.empty() ? "" : ",") + R"({"wwn": "A", "cpld_percentage": )" +
              std::to_string(cpld) + R"(, "total_percentage": )" + std::to_string(total) + "}";
  }
  const std::string record = R"({"job_id": "updateFW", "state_id": "FREE", "result": )" +
                             std::to_string(result) + R"(, "output": [)" + output + "]}";
  std::vector<std::string> found;
  for (const ControllerStatus& one : statusOfText(record.c_str()).controllers) {
    found.emplace_back(phaseOf(one));
  }
  return found;
}

using Phases = std::vector<std::string>;

TEST(JobStatus, AFlashErrorIsNotDoneThoughTheRecordHas100Percent) {
  constexpr int kFlashFailed = 32852;
  EXPECT_EQ(phases(kFlashFailed, {{100, 100}, {100, 100}, {0, 0}}),
            (Phases{"done", "failed", "not started"}));
  EXPECT_EQ(phases(kFlashFailed, {{100, 100}}), (Phases{"failed"}));
  EXPECT_EQ(phases(kFlashFailed, {{100, 100}, {50, 25}, {0, 0}}),
            (Phases{"done", "failed", "not started"}));
  EXPECT_EQ(phases(kFlashFailed, {{0, 0}}), (Phases{"failed"}));
}

TEST(JobStatus, TheFalsePercentagesOfAFlashErrorAreUnknown) {
  const JobStatus status = statusOfText(R"({"job_id": "updateFW", "state_id": "FREE",
      "result": 32852, "output": [{"wwn": "A", "cpld_percentage": 100, "fw_percentage": 100,
                                   "total_percentage": 100}]})");
  EXPECT_EQ(status.controllers[0].cpld, 100);
  EXPECT_EQ(status.controllers[0].firmware, kUnknownPercent);
  EXPECT_EQ(status.controllers[0].total, kUnknownPercent);
}

TEST(JobStatus, AnotherFailureIsOfTheFirstControllerThatIsNotDone) {
  EXPECT_EQ(phases(1026, {{100, 100}, {0, 0}, {0, 0}}), (Phases{"done", "failed", "not started"}));
  EXPECT_EQ(phases(32848, {{100, 100}, {100, 100}}), (Phases{"done", "failed"}));
  EXPECT_EQ(phases(0, {{100, 100}, {0, 30}}), (Phases{"done", "done"}));
}

TEST(JobStatus, ProgressThatTheWorkerCouldNotWriteIsUnknown) {
  const JobStatus status = statusOfText(R"({"job_id": "updateFW", "state_id": "FREE",
      "result": 1026, "output": [{"wwn": "A"}, {"wwn": 5}]})");
  EXPECT_STREQ(phaseOf(status.controllers[0]), "unknown");
  EXPECT_STREQ(phaseOf(status.controllers[1]), "unknown");
}

TEST(JobStatus, TheControllerThatTheWorkerIsAtHasStartedAlsoAt0Percent) {
  const JobStatus status = statusOfText(R"({"job_id": "updateFW", "state_id": "RUN", "output": [
      {"wwn": "A", "total_percentage": 100}, {"wwn": "B"}, {"wwn": "C"}]})");
  EXPECT_STREQ(phaseOf(status.controllers[1]), "started");
  EXPECT_STREQ(phaseOf(status.controllers[2]), "waiting");
}

TEST(JobStatus, OfAJobThatCouldNotBeWrittenTheLogTells) {
  const platform::Value record = platform::parseJson(R"({"log_id": "17", "job_id": "updateFW",
      "state_id": "WAIT", "input_parameters": [{"wwn": "A", "file_path": "/a"},
      {"wwn": "B", "file_path": "/b"}, {"wwn": "C", "file_path": "/c"}]})");
  JobStatus status = statusOf(
      record, test::stretchWith(record, test::controllerLines("/a") + test::flashedLines() +
                                            test::controllerLines("/b") +
                                            test::logLine("updateFW", "Start transferring image")));
  EXPECT_EQ(status.controllers[0],
            (ControllerStatus{"A", kUnknownPercent, 100, 100, Standing::done}));
  EXPECT_STREQ(phaseOf(status.controllers[1]), "unknown");
  EXPECT_STREQ(phaseOf(status.controllers[2]), "waiting");
  markWithoutWorker(status);
  EXPECT_STREQ(phaseOf(status.controllers[2]), "not started");
}

TEST(JobStatus, WithoutAWorkerARunningJobHasStopped) {
  JobStatus status = statusOfText(R"({"job_id": "updateFW", "state_id": "RUN", "output": [
      {"wwn": "A", "total_percentage": 100}, {"wwn": "B", "total_percentage": 68}, {"wwn": "C"}]})");
  markWithoutWorker(status);
  EXPECT_TRUE(status.hasNoWorker);
  EXPECT_STREQ(phaseOf(status.controllers[0]), "done");
  EXPECT_STREQ(phaseOf(status.controllers[1]), "stopped");
  EXPECT_STREQ(phaseOf(status.controllers[2]), "not started");
}

TEST(JobStatus, OnlyAFinishedJobWithResult0HasSucceeded) {
  EXPECT_TRUE(statusOfText(R"({"state_id": "FREE", "result": 0})").hasSucceeded());
  EXPECT_FALSE(statusOfText(R"({"state_id": "RUN", "result": 0})").hasSucceeded());
  EXPECT_FALSE(statusOfText(R"({"state_id": "FREE", "result": 259})").hasSucceeded());
  EXPECT_FALSE(statusOfText(R"({"state_id": "FREE", "result": 0.5})").hasSucceeded());
  EXPECT_FALSE(statusOfText(R"({"state_id": "FREE", "result": "0"})").hasSucceeded());
  EXPECT_FALSE(statusOfText(R"({"state_id": "FREE"})").hasSucceeded());
}

}  // namespace
}  // namespace kelvane::console
