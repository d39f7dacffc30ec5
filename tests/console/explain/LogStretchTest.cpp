// A job's stretch of the log.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/LogStretch.h"

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

LogStretch stretch(const std::string& log) { return stretchOf(parseLog(log), "17"); }

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
  EXPECT_THAT(stretch(settings + taken("17")).errors,
              ElementsAre("14:03:07 init: open setting.json: No such file"));
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

}  // namespace
}  // namespace kelvane::console
