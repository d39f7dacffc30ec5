// Jobs that were left, and what to do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/UnfinishedJob.h"
#include "console/job/UnwrittenJob.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using platform::Value;
using test::controllerLines;
using test::flashedLines;
using test::logLine;
using test::stretchWith;
using ::testing::HasSubstr;

Value waiting(const std::string& command, const std::string& rest = "") {
  return platform::parseJson(R"({"log_id": "17", "job_id": ")" + command +
                             R"(", "state_id": "WAIT", "input_parameters": [
                               {"wwn": "A1", "file_path": "/a"}])" +
                             rest + "}");
}

bool mayBeDone(const std::string& command, const std::string& lines) {
  const Value record = waiting(command);
  return mayHaveBeenDone(record, stretchWith(record, lines));
}

std::string error(const std::string& function) {
  return "[14:03:07] [x.cpp][1][" + function + "][error] cause\n";
}

TEST(UnwrittenJob, IsOneWhoseFlashWasBegun) {
  EXPECT_TRUE(mayBeDone("updateFW", controllerLines("/a") + flashedLines()));
  EXPECT_TRUE(mayBeDone("updateFW", controllerLines("/a") +
                                        logLine("flashCPLD", "Start transferring CPLD image, p")));
  EXPECT_FALSE(mayBeDone("updateFW", logLine("updateFW", "updateFW start") + error("updateFW")));
  EXPECT_FALSE(mayBeDone("updateFW", controllerLines("/a")));
}

TEST(UnwrittenJob, IsOneWhoseToolsOrEngineAnswered) {
  EXPECT_TRUE(mayBeDone("updateSW", logLine("updateSW", "result = ")));
  EXPECT_FALSE(mayBeDone("updateSW", error("updateSW")));
  const std::string start = logLine("getOnlineUpdateData", "getOnlineUpdateData start");
  EXPECT_FALSE(mayBeDone("getOnlineUpdateData", start + error("getOnlineUpdateData")));
  EXPECT_TRUE(mayBeDone("getOnlineUpdateData",
                        start + logLine("getOnlineUpdateData", "execute EngineRunner result = x") +
                            error("getOnlineUpdateData")));
}

TEST(UnwrittenJob, IsNoneThatWasNotTakenOrWasPutBack) {
  const std::string lines = controllerLines("/a") + flashedLines();
  EXPECT_FALSE(mayHaveBeenDone(waiting("updateFW"), {}));
  const Value putBack = waiting("updateFW", R"(, "result": 0)");
  EXPECT_FALSE(mayHaveBeenDone(putBack, stretchWith(putBack, lines)));
}

TEST(UnwrittenJob, TellsHowManyControllersTheLogSawFlashed) {
  const Value record = waiting("updateFW");
  EXPECT_EQ(whatMayHaveBeenDone(record, stretchWith(record, controllerLines("/a"))),
            "the flash may have been done");
  EXPECT_EQ(
      whatMayHaveBeenDone(record, stretchWith(record, controllerLines("/a") + flashedLines())),
      "the flash may have been done, by the log of 1 controller");
}

TEST(UnfinishedJob, AWaitingJobThatFlashedIsNotSaidNotToBeBegun) {
  const Value record = waiting("updateFW");
  const std::string advice =
      adviceForUnfinished(record, stretchWith(record, controllerLines("/a") + flashedLines()), "");
  EXPECT_EQ(advice,
            "a worker took it, and its record does not tell what became of it: the flash may have "
            "been done, "
            "by the log of 1 controller. The log last saw \"14:03:07 updateFW: Flash Completed.\". "
            "\"kelvane-console check\" tells whether anything keeps the record from being written; "
            "look what "
            "was done before it is submitted again");
}

TEST(UnfinishedJob, AJobThatWaitsIsRunAgainAndNotSubmittedOnceMore) {
  EXPECT_EQ(adviceForUnfinished(waiting("updateFW"), {}, ""),
            "it was not begun. \"kelvane-console check\" tells what may be in the way; then "
            "\"kelvane-console retry 17\" runs it: its record is still waiting");
}

TEST(UnfinishedJob, WhatIsToBeTypedHasTheSharedFolder) {
  EXPECT_THAT(adviceForUnfinished(waiting("updateFW"), {}, "/a b/"),
              HasSubstr("\"kelvane-console retry --shared '/a b/' 17\" runs it"));
  const Value left = platform::parseJson(R"({"log_id": "17", "job_id": "x", "state_id": "RUN"})");
  EXPECT_EQ(
      adviceForUnfinished(left, {}, "/s/"),
      "nobody goes on with it. \"kelvane-console explain --shared /s/ 17\" tells what the log "
      "says; \"kelvane-console retry --shared /s/ 17\" adds it anew");
}

TEST(UnfinishedJob, WithoutALogItIsNotSaidThatItWasNotBegun) {
  EXPECT_THAT(adviceForUnfinished(waiting("updateFW"), {}, ""), HasSubstr("it was not begun. "));
  LogStretch none;
  none.absence = "there is no log";
  EXPECT_THAT(adviceForUnfinished(waiting("updateFW"), none, ""),
              HasSubstr("whether it was begun is not known, as there is no log. "));
}

}  // namespace
}  // namespace kelvane::console
