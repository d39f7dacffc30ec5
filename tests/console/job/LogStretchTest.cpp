// A job's stretch of the log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/LogStretch.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::console {
namespace {

using test::endLine;
using test::logLine;
using test::lookLine;
using test::startLine;
using test::takenLines;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string error(const std::string& function, const std::string& message) {
  return logLine(function, message, "error");
}

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
  return logLine("run",
                 "currentJobArray = " + platform::describe(platform::Value::array({record}))) +
         lookLine(record.get("log_id").string(), "WAIT");
}

TEST(LogStretch, HasTheErrorsAndTheLastStepOfTheJob) {
  const LogStretch found =
      stretch(takenLines("17") + logLine("updateFW", "one") + error("updateFW", "cause") +
              logLine("updateFW", "  ...  50 percent\nmore") + logLine("updateJSONFile", "all") +
              logLine("updateFW", "updateAllFW end, retDict = {\n}"));
  EXPECT_TRUE(found.isFound);
  EXPECT_THAT(found.errors, ElementsAre("14:03:07 updateFW: cause"));
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: ...  50 percent");
}

TEST(LogStretch, OtherJobsBeforeAndAfterItAreNotPartOfIt) {
  const LogStretch found =
      stretch(takenLines("16") + error("updateFW", "before") + takenLines("17") +
              logLine("updateFW", "mine") + takenLines("18") + error("updateFW", "after") +
              logLine("updateFW", "last"));
  EXPECT_THAT(found.errors, IsEmpty());
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: mine");
}

TEST(LogStretch, TheLastOfSeveralCounts) {
  EXPECT_EQ(stretch(takenLines("17") + logLine("updateFW", "old") + takenLines("17") +
                    logLine("updateFW", "new"))
                .lastStep,
            "14:03:07 updateFW: new");
}

TEST(LogStretch, AJobThatWasOnlyLookedAtWasNotTaken) {
  EXPECT_FALSE(stretch(startLine() + lookLine("17", "WAIT") + lookLine("18", "WAIT")).isFound);
  EXPECT_FALSE(stretch(startLine() + lookLine("17", "FREE")).isFound);
  EXPECT_FALSE(stretch(takenLines("170") + logLine("updateFW", "x")).isFound);
  EXPECT_FALSE(stretch("").isFound);
}

TEST(LogStretch, AJobThatIsBehindOthersWasTaken) {
  EXPECT_TRUE(stretch(startLine() + lookLine("16", "FREE") + lookLine("17", "WAIT")).isFound);
}

TEST(LogStretch, AnErrorAtTheWorkersStartIsPartOfIt) {
  const std::string settings = error("init", "open setting.json: No such file");
  const LogStretch found = stretch(settings + takenLines("17"));
  EXPECT_THAT(found.startErrors, ElementsAre("14:03:07 init: open setting.json: No such file"));
  EXPECT_THAT(found.errors, IsEmpty());
  EXPECT_FALSE(found.gaveUp);
  EXPECT_THAT(
      stretch(takenLines("17") + logLine("updateFW", "x") + settings + takenLines("18")).errors,
      IsEmpty());
}

TEST(LogStretch, AnErrorOfTheJobRunnerBelongsToTheWorkerThatLookedBefore) {
  EXPECT_THAT(stretch(takenLines("17") + error("run", "no string")).errors,
              ElementsAre("14:03:07 run: no string"));
  EXPECT_THAT(
      stretch(takenLines("17") + logLine("updateFW", "x") + error("run", "open: No")).errors,
      IsEmpty());
}

TEST(LogStretch, AWorkerWithoutALogIdIsAnother) {
  EXPECT_EQ(stretch(takenLines("17") + logLine("updateFW", "x") +
                    logLine("run", "Fail, logid = nil") + logLine("updateFW", "y"))
                .lastStep,
            "14:03:07 updateFW: x");
}

TEST(LogStretch, AWorkerGaveUpWhereNoStepFollowsItsError) {
  EXPECT_TRUE(
      stretch(takenLines("17") + logLine("updateFW", "x") + error("updateFW", "cause")).gaveUp);
  EXPECT_FALSE(
      stretch(takenLines("17") + error("updateJSONFile", "cause") + logLine("updateFW", "x"))
          .gaveUp);
}

TEST(LogStretch, AnErrorThatComesAgainIsCounted) {
  EXPECT_THAT(
      stretch(takenLines("17") + error("a", "x") + error("a", "y") + error("a", "x")).errors,
      ElementsAre("14:03:07 a: x (2 times)", "14:03:07 a: y"));
}

TEST(LogStretch, ALogIdThatWasAnotherJobsIsNotThisJobs) {
  const auto now = record("17", "updateFW", R"([{"wwn": "B2", "file_path": "/b c"}])");
  const auto before = record("17", "updateFW", R"([{"wwn": "A1", "file_path": "/a"}])");
  const auto other = record("17", "updateSW", R"([{"wwn": "B2", "file_path": "/b c"}])");
  const std::string steps = logLine("updateFW", "x");
  EXPECT_TRUE(stretchOf(parseLog(takenAs(now) + steps), now).isFound);
  EXPECT_FALSE(stretchOf(parseLog(takenAs(before) + steps), now).isFound);
  EXPECT_FALSE(stretchOf(parseLog(takenAs(other) + steps), now).isFound);
  EXPECT_EQ(
      stretchOf(parseLog(takenAs(now) + steps + takenAs(before) + logLine("updateFW", "y")), now)
          .lastStep,
      "14:03:07 updateFW: x");
}

TEST(LogStretch, WhatIsBehindTheJobsEndIsNotPartOfIt) {
  const LogStretch found = stretch(takenLines("17") + logLine("updateFW", "x") + endLine("17") +
                                   error("updateFW", "behind"));
  EXPECT_TRUE(found.hasEnded);
  EXPECT_FALSE(found.isMixed);
  EXPECT_THAT(found.errors, IsEmpty());
}

TEST(LogStretch, AWorkerThatGoesOnBehindTheStartOfAnotherIsMixedWithIt) {
  const std::string log = takenLines("17") + logLine("updateFW", "mine") + takenLines("18") +
                          logLine("updateFW", "whose") + endLine("17") + endLine("18");
  const LogStretch first = stretch(log);
  EXPECT_TRUE(first.isMixed);
  EXPECT_TRUE(first.hasEnded);
  EXPECT_EQ(first.lastStep, "14:03:07 updateFW: whose");
  EXPECT_TRUE(stretchOf(parseLog(log), record("18", "updateFW", "[]")).isMixed);
}

TEST(LogStretch, WorkersOneAfterTheOtherAreNotMixed) {
  const std::string log = takenLines("16") + endLine("16") + takenLines("17") +
                          logLine("updateFW", "x") + endLine("17") + takenLines("16") +
                          endLine("16");
  EXPECT_FALSE(stretch(log).isMixed);
  EXPECT_FALSE(stretch(takenLines("17") + takenLines("17") + endLine("17")).isMixed);
  EXPECT_FALSE(stretch(takenLines("16") + takenLines("17") + endLine("17") + takenLines("16") +
                       endLine("16"))
                   .isMixed);
}

TEST(LogStretch, LinesThatOnlyAnotherCommandWritesAreNotTaken) {
  const LogStretch found = stretch(takenLines("17") + logLine("updateFW", "x") + takenLines("18") +
                                   error("getOnlineUpdateData", "not mine") + endLine("17"));
  EXPECT_EQ(found.lastStep, "14:03:07 updateFW: x");
  EXPECT_THAT(found.errors, IsEmpty());
}

TEST(LogStretch, AControllerWithAnotherImageIsAnotherJobs) {
  const auto job = record("17", "updateFW", R"([{"wwn": "A1", "file_path": "/a"}])");
  const auto mixed = [&](const std::string& image) {
    return stretchOf(parseLog(takenAs(job) + logLine("updateFW", "devId = 0, filePath = " + image)),
                     job)
        .isMixed;
  };
  EXPECT_FALSE(mixed("/a"));
  EXPECT_TRUE(mixed("/b"));
}

TEST(LogStretch, TheErrorOfALastWorkerThatTookNoJobIsKept) {
  EXPECT_EQ(
      stretch(takenLines("1") + startLine() + error("run", "compared a number")).errorWithoutJob,
      "14:03:07 run: compared a number");
  EXPECT_EQ(stretch(takenLines("7") + error("run", "compared a number")).errorWithoutJob,
            "14:03:07 run: compared a number");
  EXPECT_EQ(stretch(takenLines("1") + error("updateFW", "x")).errorWithoutJob, "");
}

}  // namespace
}  // namespace kelvane::console
