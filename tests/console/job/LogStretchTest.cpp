// A job's stretch of the log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/LogStretch.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string line(const std::string& function, const std::string& message,
                 const std::string& level = "debug") {
  return "[14:03:07] [x.cpp][1][" + function + "][" + level + "] " + message + "\n";
}

std::string error(const std::string& function, const std::string& message) {
  return line(function, message, "error");
}

// A worker's first lines, with the jobs that it looks at.
std::string start() { return line("run", "currentJobArray = (\n)"); }
std::string look(const std::string& logId, const std::string& state) {
  return line("run",
              "logId = " + logId + ", inputParmsDict = {\n}, stateId = " + state + ". jobId = x");
}
std::string taken(const std::string& logId) { return start() + look(logId, "WAIT"); }

// A job with this log id that asks for this.
platform::Value record(const std::string& logId, const std::string& command,
                       const std::string& inputs) {
  return platform::parseJson(R"({"log_id": ")" + logId + R"(", "job_id": ")" + command +
                             R"(", "state_id": "WAIT", "input_parameters": )" + inputs + "}");
}

LogStretch stretch(const std::string& log) {
  return stretchOf(parseLog(log), record("17", "updateFW", "[]"));
}

// A worker that reads this record alone and takes it.
std::string takenAs(const platform::Value& record) {
  return line("run", "currentJobArray = " + platform::describe(platform::Value::array({record}))) +
         look(record.get("log_id").string(), "WAIT");
}

std::string end(const std::string& logId) {
  return line("updateFW", "updateAllFW end, retDict = {\n    \"log_id\" = " + logId + ";\n}");
}

TEST(LogStretch, HasTheErrorsAndTheLastStepOfTheJob) {
  const LogStretch found =
      stretch(taken("17") + line("updateFW", "one") + error("updateFW", "cause") +
              line("updateFW", "  ...  50 percent\nmore") + line("updateJSONFile", "all") +
              line("updateFW", "updateAllFW end, retDict = {\n}"));
  EXPECT_TRUE(found.isFound);
  EXPECT_THAT(found.errors, ElementsAre("14:03:07 updateFW: cause"));
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: ...  50 percent");
}

TEST(LogStretch, OtherJobsBeforeAndAfterItAreNotPartOfIt) {
  const LogStretch found =
      stretch(taken("16") + error("updateFW", "before") + taken("17") + line("updateFW", "mine") +
              taken("18") + error("updateFW", "after") + line("updateFW", "last"));
  EXPECT_THAT(found.errors, IsEmpty());
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: mine");
}

TEST(LogStretch, TheLastOfSeveralCounts) {
  EXPECT_EQ(stretch(taken("17") + line("updateFW", "old") + taken("17") + line("updateFW", "new"))
                .lastStep,
            "14:03:07 updateFW: new");
}

TEST(LogStretch, AJobThatWasOnlyLookedAtWasNotTaken) {
  EXPECT_FALSE(stretch(start() + look("17", "WAIT") + look("18", "WAIT")).isFound);
  EXPECT_FALSE(stretch(start() + look("17", "FREE")).isFound);
  EXPECT_FALSE(stretch(taken("170") + line("updateFW", "x")).isFound);
  EXPECT_FALSE(stretch("").isFound);
}

TEST(LogStretch, AJobThatIsBehindOthersWasTaken) {
  EXPECT_TRUE(stretch(start() + look("16", "FREE") + look("17", "WAIT")).isFound);
}

TEST(LogStretch, AnErrorAtTheWorkersStartIsPartOfIt) {
  const std::string settings = error("init", "open setting.json: No such file");
  const LogStretch found = stretch(settings + taken("17"));
  EXPECT_THAT(found.startErrors, ElementsAre("14:03:07 init: open setting.json: No such file"));
  EXPECT_THAT(found.errors, IsEmpty());
  EXPECT_FALSE(found.gaveUp);
  EXPECT_THAT(stretch(taken("17") + line("updateFW", "x") + settings + taken("18")).errors,
              IsEmpty());
}

TEST(LogStretch, AnErrorOfTheJobRunnerBelongsToTheWorkerThatLookedBefore) {
  EXPECT_THAT(stretch(taken("17") + error("run", "no string")).errors,
              ElementsAre("14:03:07 run: no string"));
  EXPECT_THAT(stretch(taken("17") + line("updateFW", "x") + error("run", "open: No")).errors,
              IsEmpty());
}

TEST(LogStretch, AWorkerWithoutALogIdIsAnother) {
  EXPECT_EQ(stretch(taken("17") + line("updateFW", "x") + line("run", "Fail, logid = nil") +
                    line("updateFW", "y"))
                .lastStep,
            "14:03:07 updateFW: x");
}

TEST(LogStretch, AWorkerGaveUpWhereNoStepFollowsItsError) {
  EXPECT_TRUE(stretch(taken("17") + line("updateFW", "x") + error("updateFW", "cause")).gaveUp);
  EXPECT_FALSE(
      stretch(taken("17") + error("updateJSONFile", "cause") + line("updateFW", "x")).gaveUp);
}

TEST(LogStretch, AnErrorThatComesAgainIsCounted) {
  EXPECT_THAT(stretch(taken("17") + error("a", "x") + error("a", "y") + error("a", "x")).errors,
              ElementsAre("14:03:07 a: x (2 times)", "14:03:07 a: y"));
}

TEST(LogStretch, ALogIdThatWasAnotherJobsIsNotThisJobs) {
  const auto now = record("17", "updateFW", R"([{"wwn": "B2", "file_path": "/b c"}])");
  const auto before = record("17", "updateFW", R"([{"wwn": "A1", "file_path": "/a"}])");
  const auto other = record("17", "updateSW", R"([{"wwn": "B2", "file_path": "/b c"}])");
  const std::string steps = line("updateFW", "x");
  EXPECT_TRUE(stretchOf(parseLog(takenAs(now) + steps), now).isFound);
  EXPECT_FALSE(stretchOf(parseLog(takenAs(before) + steps), now).isFound);
  EXPECT_FALSE(stretchOf(parseLog(takenAs(other) + steps), now).isFound);
  EXPECT_EQ(stretchOf(parseLog(takenAs(now) + steps + takenAs(before) + line("updateFW", "y")), now)
                .lastStep,
            "14:03:07 updateFW: x");
}

TEST(LogStretch, WhatIsBehindTheJobsEndIsNotPartOfIt) {
  const LogStretch found =
      stretch(taken("17") + line("updateFW", "x") + end("17") + error("updateFW", "behind"));
  EXPECT_TRUE(found.hasEnded);
  EXPECT_FALSE(found.isMixed);
  EXPECT_THAT(found.errors, IsEmpty());
}

TEST(LogStretch, AWorkerThatGoesOnBehindTheStartOfAnotherIsMixedWithIt) {
  const std::string log = taken("17") + line("updateFW", "mine") + taken("18") +
                          line("updateFW", "whose") + end("17") + end("18");
  const LogStretch first = stretch(log);
  EXPECT_TRUE(first.isMixed);
  EXPECT_TRUE(first.hasEnded);
  EXPECT_EQ(first.lastStep, "14:03:07 updateFW: whose");
  EXPECT_TRUE(stretchOf(parseLog(log), record("18", "updateFW", "[]")).isMixed);
}

TEST(LogStretch, WorkersOneAfterTheOtherAreNotMixed) {
  const std::string log = taken("16") + end("16") + taken("17") + line("updateFW", "x") +
                          end("17") + taken("16") + end("16");
  EXPECT_FALSE(stretch(log).isMixed);
  EXPECT_FALSE(stretch(taken("17") + taken("17") + end("17")).isMixed);
  EXPECT_FALSE(stretch(taken("16") + taken("17") + end("17") + taken("16") + end("16")).isMixed);
}

TEST(LogStretch, LinesThatOnlyAnotherCommandWritesAreNotTaken) {
  const LogStretch found = stretch(taken("17") + line("updateFW", "x") + taken("18") +
                                   error("getOnlineUpdateData", "not mine") + end("17"));
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: x");
  EXPECT_THAT(found.errors, IsEmpty());
}

TEST(LogStretch, AControllerWithAnotherImageIsAnotherJobs) {
  const auto job = record("17", "updateFW", R"([{"wwn": "A1", "file_path": "/a"}])");
  const auto mixed = [&](const std::string& image) {
    return stretchOf(parseLog(takenAs(job) + line("updateFW", "devId = 0, filePath = " + image)),
                     job)
        .isMixed;
  };
  EXPECT_FALSE(mixed("/a"));
  EXPECT_TRUE(mixed("/b"));
}

}  // namespace
}  // namespace kelvane::console
