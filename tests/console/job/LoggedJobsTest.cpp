// The jobs of a log: the part that is each one's.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/job/LoggedJobs.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::console {
namespace {

using test::endLine;
using test::logLine;
using test::takenLines;

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
  writeLog(logLine("init", "before") + takenLines("17") + logLine("updateFW", "step") +
           endLine("17") + logLine("updateFW", "behind") + takenLines("18") +
           logLine("updateSW", "other"));
  EXPECT_EQ(partOf("17"), "before currentJobArray logId step updateAllFW ended");
  EXPECT_EQ(partOf("18"), "currentJobArray logId other open");
  EXPECT_EQ(partOf("19"), "none");
}

TEST_F(LoggedJobsTest, ALastLineBehindTheStartOfAnotherWorkerIsStillTheJobs) {
  writeLog(takenLines("17") + takenLines("18") + logLine("updateFW", "whose") + endLine("17") +
           endLine("18"));
  EXPECT_EQ(partOf("17"),
            "currentJobArray logId currentJobArray logId whose updateAllFW ended mixed");
  EXPECT_EQ(partOf("18"), "currentJobArray logId whose updateAllFW updateAllFW ended mixed");
}

TEST_F(LoggedJobsTest, ALastLineIsThatOfTheWorkerThatTookTheLogIdLast) {
  writeLog(takenLines("17") + logLine("updateFW", "killed") + takenLines("17") +
           logLine("updateFW", "again") + endLine("17"));
  EXPECT_EQ(partOf("17"), "currentJobArray logId again updateAllFW ended");
}

TEST_F(LoggedJobsTest, ALogThatBeginsWithALastLineHasNoWorkerForIt) {
  writeLog(endLine("17") + takenLines("17"));
  EXPECT_EQ(partOf("17"), "currentJobArray logId open");
}

TEST_F(LoggedJobsTest, AnEmptyLogHasNone) { EXPECT_EQ(partOf("17"), "none"); }

// A worker that reads these records, takes the waiting one with this log id, and does this.
std::string run(const std::string& records, const std::string& step) {
  return logLine("run", "currentJobArray = " + platform::describe(platform::parseJson(records))) +
         logLine("run", "logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = x") +
         logLine("updateSW", step);
}

class LogIdUsedAgain : public LoggedJobsTest {
 protected:
  // The last line of the record's part.
  std::string lastOf(const std::string& record) const {
    const LoggedJobs jobs(entries);
    const auto found = jobs.find(platform::parseJson(record));
    return found ? found->entries.back().message : "none";
  }
};

constexpr char kWaiting[] = R"({"log_id": "17", "job_id": "a", "state_id": "WAIT"})";
constexpr char kFailed[] = R"({"log_id": "17", "job_id": "a", "state_id": "FREE", "result": 259})";
constexpr char kDone[] = R"({"log_id": "17", "job_id": "a", "state_id": "FREE", "result": 0})";
constexpr char kOther[] = R"({"log_id": "17", "job_id": "b", "state_id": "WAIT"})";

std::string list(const std::string& one, const std::string& other) {
  return "[" + one + ", " + other + "]";
}

TEST_F(LogIdUsedAgain, AFinishedJobIsNotGivenTheRunOfALaterOne) {
  writeLog(run(list(kWaiting, "{}"), "first") + run(list(kFailed, kOther), "second"));
  EXPECT_EQ(lastOf(kFailed), "first");
  EXPECT_EQ(lastOf(R"({"log_id": "17", "job_id": "b", "state_id": "FREE", "result": 0})"),
            "second");
}

TEST_F(LogIdUsedAgain, AFinishedJobIsNotGivenTheRunOfALaterOneThatAsksForTheSame) {
  writeLog(run(list(kWaiting, "{}"), "first") + run(list(kFailed, kWaiting), "second"));
  EXPECT_EQ(lastOf(kFailed), "first");
  EXPECT_EQ(lastOf(kDone), "second");
}

TEST_F(LogIdUsedAgain, AJobWhoseRunIsNoLongerInTheLogIsGivenNone) {
  writeLog(run(list(kFailed, kOther), "second"));
  EXPECT_EQ(lastOf(kFailed), "none");
}

TEST_F(LogIdUsedAgain, AJobThatWasPutBackIsGivenItsLastRun) {
  const std::string again = R"({"log_id": "17", "job_id": "a", "state_id": "WAIT", "result": 259})";
  writeLog(run(list(kWaiting, "{}"), "first") + run(list(again, "{}"), "second"));
  EXPECT_EQ(lastOf(kDone), "second");
}

std::string filed(const std::string& function, const std::string& before,
                  const std::string& record) {
  return logLine(function, before + platform::describe(platform::parseJson("[" + record + "]")));
}

// What a worker adds that finishes the job; the second time it finds this record.
std::string finish(const std::string& found) {
  return filed("updateJSONFile", "currentJobArray = ", kWaiting) +
         filed("writeJSONFile", "writeJSONFile, newArray = ",
               R"({"log_id": "17", "job_id": "a", "state_id": "RUN"})") +
         filed("updateJSONFile", "currentJobArray = ", found) +
         filed("writeJSONFile", "writeJSONFile, newArray = ", kDone);
}

TEST_F(LogIdUsedAgain, AWaitingJobThatAsksForTheSameIsNotGivenTheRunOfOneThatIsOver) {
  const std::string first = run(list(kWaiting, "{}"), "first");
  writeLog(first + finish(R"({"log_id": "17", "job_id": "a", "state_id": "RUN"})") +
           logLine("updateSW", "end"));
  EXPECT_EQ(lastOf(kWaiting), "none");
  EXPECT_EQ(lastOf(kDone), "end");
  EXPECT_EQ(lastOf(R"({"log_id": "17", "job_id": "a", "state_id": "WAIT", "result": 0})"), "end");
  const LoggedJobs jobs(entries);
  EXPECT_EQ(jobs.startsOf("17", nullptr), std::vector<std::string>{"14:03:07"});
  EXPECT_TRUE(jobs.startsOf("17", entries.data()).empty());
  EXPECT_TRUE(jobs.startsOf("18", nullptr).empty());
}

TEST_F(LogIdUsedAgain, AJobWhoseEndDidNotComeIntoTheJobFileIsStillThatOfItsRun) {
  const std::string first = run(list(kWaiting, "{}"), "first");
  writeLog(first + finish(kWaiting) + logLine("updateSW", "end"));
  EXPECT_EQ(lastOf(kWaiting), "end");
}

TEST_F(LogIdUsedAgain, AJobWhoseWorkerWasKilledIsStillThatOfItsRun) {
  writeLog(run(list(kWaiting, "{}"), "first") +
           filed("writeJSONFile", "writeJSONFile, newArray = ",
                 R"({"log_id": "17", "job_id": "a", "state_id": "RUN"})") +
           logLine("updateSW", "killed"));
  EXPECT_EQ(lastOf(kWaiting), "killed");
}

TEST_F(LoggedJobsTest, ARecordWithoutALogIdHasNone) {
  writeLog(takenLines(""));
  EXPECT_FALSE(LoggedJobs(entries).find(platform::parseJson(R"({"log_id": 5})")));
  EXPECT_FALSE(LoggedJobs(entries).find(platform::parseJson("[]")));
}

}  // namespace
}  // namespace kelvane::console
