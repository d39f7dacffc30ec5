// What workers say on standard error, kept beside the log.

#include <chrono>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "console/job/StandardError.h"
#include "platform/Json.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;
using Lines = std::vector<std::string>;

class StandardError : public ::testing::Test {
 protected:
  // What the worker of this record says that the console started at noon.
  void say(const std::string& text) const {
    const std::string path = makeStandardError(folder / "", record, std::chrono::hours(12));
    std::ofstream(path, std::ios::app) << text;
  }
  Lines told(const LogStretch& log = {}) const { return standardErrorOf(folder / "", record, log); }
  Lines inShort() const { return standardErrorInShort(folder / "", record, {}); }

  test::TempFolder folder;
  Value record = parseJson(R"({"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
                               "input_parameters": {"file_path": "/a"}})");
};

// That of a worker whose first line came then.
LogStretch logFrom(const std::string& time) {
  return {.isFound = true, .history = JobHistory{.start = time}};
}

TEST_F(StandardError, HasAFileForEachJob) {
  EXPECT_EQ(standardErrorPath("/shared/", "17"), "/shared/utility/logs/standard-error-17.txt");
  EXPECT_EQ(standardErrorPath("", "a/b %"), "utility/logs/standard-error-a%2Fb%20%25.txt");
  EXPECT_EQ(standardErrorPath("", "ü"), "utility/logs/standard-error-%C3%BC.txt");
}

TEST_F(StandardError, OfALogIdThatNoNameCanHoldIsNotKept) {
  const std::string tooLong(250, 'x');
  EXPECT_EQ(standardErrorPath("", tooLong), "");
  record.set("log_id", tooLong);
  EXPECT_EQ(makeStandardError(folder / "", record, {}), "/dev/null");
}

TEST_F(StandardError, IsMadeAnewForAJob) {
  say("of another time");
  EXPECT_EQ(makeStandardError(folder / "", record, std::chrono::hours(12)),
            folder / "utility/logs/standard-error-17.txt");
  EXPECT_EQ(inShort(), Lines());
}

TEST_F(StandardError, ItsFirstLineTellsWhoseItIs) {
  say("rm: no\n");
  EXPECT_EQ(folder.read("utility/logs/standard-error-17.txt"),
            "kelvane-console started a worker at 12:00:00 for {\"log_id\":\"17\",\"job_id\":"
            "\"updateSW\",\"state_id\":\"WAIT\",\"input_parameters\":{\"file_path\":\"/a\"}}\n"
            "rm: no\n");
}

TEST_F(StandardError, IsThatOfTheJobThroughoutIt) {
  say("rm: no\n");
  record.set("state_id", "FREE");
  record.set("result", Value::integer(0));
  EXPECT_EQ(told(), Lines{"rm: no"});
  for (const char* start : {"12:00:00", "12:00:40"}) {
    EXPECT_EQ(told(logFrom(start)), Lines{"rm: no"}) << start;
  }
}

TEST_F(StandardError, OfAnotherJobThatHadTheLogIdIsNotTold) {
  say("rm: no\n");
  record.set("input_parameters", parseJson(R"({"file_path": "/b"})"));
  EXPECT_EQ(told(), Lines());
  EXPECT_EQ(inShort(), Lines());
}

TEST_F(StandardError, OfAJobThatAskedForTheSameAtAnotherTimeIsNotTold) {
  say("rm: no\n");
  for (const char* start : {"11:59:00", "12:02:00", "00:00:00"}) {
    EXPECT_EQ(told(logFrom(start)), Lines()) << start;
  }
}

TEST_F(StandardError, IsThatOfTheFirstWorkerBehindItsStart) {
  say("rm: no\n");
  LogStretch log = logFrom("12:00:08");
  log.startsOfOthers = {"11:59:59"};
  EXPECT_EQ(told(log), Lines{"rm: no"});
  log.startsOfOthers.emplace_back("12:00:00");
  EXPECT_EQ(told(log), Lines());
}

TEST_F(StandardError, OfAJobThatNoWorkerTookIsThatOfOneThatCouldNotBegin) {
  say("Kelvane: a library is missing\n");
  EXPECT_EQ(told().size(), 1U);
  EXPECT_EQ(told({.startsOfOthers = {"09:00:00"}}).size(), 1U);
  EXPECT_EQ(told({.startsOfOthers = {"12:00:01", "13:00:00"}}), Lines());
}

TEST_F(StandardError, WithoutAFirstLineItIsNobodys) {
  for (const char* text :
       {"rm: no\n", "kelvane-console started a worker at 12:00:00 for nobody\nrm: no\n",
        "kelvane-console started a worker at noon\n", "kelvane-console started a worker at "}) {
    folder.write("utility/logs/standard-error-17.txt", text);
    EXPECT_EQ(told(), Lines()) << text;
  }
}

TEST_F(StandardError, ByItsLogIdItIsThatOfTheJobInTheJobFile) {
  say("rm: no\n");
  EXPECT_EQ(standardErrorInShort(folder / "", "17"), inShort());  // there is no job file
  const auto write = [&] {
    folder.write("utility/command/BGPLog.json",
                 platform::printJson(Value::array({record})).value_or(""));
  };
  write();
  EXPECT_EQ(standardErrorInShort(folder / "", "17"), inShort());
  record.set("job_id", "updateHW");
  write();
  EXPECT_EQ(standardErrorInShort(folder / "", "17"), Lines());
}

TEST_F(StandardError, WhereItsFolderCannotBeMadeNothingIsKept) {
  folder.write("utility", "a file");
  EXPECT_EQ(makeStandardError(folder / "", record, {}), "/dev/null");
  EXPECT_EQ(inShort(), Lines());
}

TEST_F(StandardError, IsToldWithItsPlace) {
  say("rm: no\ncp: no\n");
  EXPECT_EQ(told(), (Lines{"rm: no", "cp: no"}));
  EXPECT_EQ(inShort(),
            (Lines{"rm: no", "cp: no",
                   "(kept in " + (folder / "utility/logs/standard-error-17.txt") + ")"}));
}

TEST_F(StandardError, OfManyLinesTheFirstAreTold) {
  std::string text;
  for (int i = 0; i < 12; ++i) text += "line " + std::to_string(i) + "\n";
  say(text);
  const Lines lines = inShort();
  ASSERT_EQ(lines.size(), 12U);
  EXPECT_EQ(lines[9], "line 9");
  EXPECT_EQ(lines[10], "... 2 more");
}

TEST_F(StandardError, SilenceIsNotKept) {
  say("");
  discardSilence(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines());
  say("rm: no\n");
  discardSilence(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines{"standard-error-17.txt"});
  discardStandardError(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines());
}

}  // namespace
}  // namespace kelvane::console
