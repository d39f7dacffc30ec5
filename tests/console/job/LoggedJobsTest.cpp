// The jobs of a log: the part that is each one's.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/job/LoggedJobs.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

std::string line(const std::string& function, const std::string& message) {
  return "[14:03:07] [x.cpp][1][" + function + "][debug] " + message + "\n";
}

std::string taken(const std::string& logId) {
  return line("run", "currentJobArray = (\n)") +
         line("run", "logId = " + logId + ", inputParmsDict = {\n}, stateId = WAIT. jobId = x");
}

std::string end(const std::string& logId) {
  return line("updateFW", "updateAllFW end, retDict = {\n    \"log_id\" = " + logId + ";\n}");
}

class LoggedJobsTest : public ::testing::Test {
 protected:
  // The messages' first words of the last part that is the log id's.
  std::string partOf(const std::string& logId) const {
    const LoggedJobs jobs(entries);
    const auto found = jobs.findLast(logId);
    if (!found) return "none";
    std::string words;
    for (const LogEntry& entry : found->entries) {
      words += entry.message.substr(0, entry.message.find(' ')) + " ";
    }
    return words + (found->hasEnded ? "ended" : "open") + (found->isMixed ? " mixed" : "");
  }
  void writeLog(const std::string& text) { entries = parseLog(text); }

  std::vector<LogEntry> entries;
};

TEST_F(LoggedJobsTest, APartIsFromTheWorkersFirstEntryToTheJobsLastLine) {
  writeLog(line("init", "before") + taken("17") + line("updateFW", "step") + end("17") +
           line("updateFW", "behind") + taken("18") + line("updateSW", "other"));
  EXPECT_EQ(partOf("17"), "before currentJobArray logId step updateAllFW ended");
  EXPECT_EQ(partOf("18"), "currentJobArray logId other open");
  EXPECT_EQ(partOf("19"), "none");
}

TEST_F(LoggedJobsTest, ALastLineBehindTheStartOfAnotherWorkerIsStillTheJobs) {
  writeLog(taken("17") + taken("18") + line("updateFW", "whose") + end("17") + end("18"));
  EXPECT_EQ(partOf("17"),
            "currentJobArray logId currentJobArray logId whose updateAllFW ended mixed");
  EXPECT_EQ(partOf("18"), "currentJobArray logId whose updateAllFW updateAllFW ended mixed");
}

TEST_F(LoggedJobsTest, ALastLineIsThatOfTheWorkerThatTookTheLogIdLast) {
  writeLog(taken("17") + line("updateFW", "killed") + taken("17") + line("updateFW", "again") +
           end("17"));
  EXPECT_EQ(partOf("17"), "currentJobArray logId again updateAllFW ended");
}

TEST_F(LoggedJobsTest, ALogThatBeginsWithALastLineHasNoWorkerForIt) {
  writeLog(end("17") + taken("17"));
  EXPECT_EQ(partOf("17"), "currentJobArray logId open");
}

TEST_F(LoggedJobsTest, AnEmptyLogHasNone) { EXPECT_EQ(partOf("17"), "none"); }

TEST_F(LoggedJobsTest, ARecordWithoutALogIdHasNone) {
  writeLog(taken(""));
  EXPECT_FALSE(LoggedJobs(entries).find(platform::parseJson(R"({"log_id": 5})")));
  EXPECT_FALSE(LoggedJobs(entries).find(platform::parseJson("[]")));
}

}  // namespace
}  // namespace kelvane::console
