// The log as the console shows it: followed in a terminal, and of real jobs.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"
#include "tests/support/PseudoTerminal.h"

namespace kelvane {
namespace {

using platform::Value;
using test::PseudoTerminal;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;

namespace fs = std::filesystem;

constexpr char kLog[] = "shared/utility/logs/TarselVistrelUtility.txt";

std::string entry(const std::string& message, const std::string& level = "debug") {
  return "[14:03:07] [x.cpp][1][run][" + level + "] " + message + "\n";
}

// --- in a terminal

class LogOnScreen : public ::testing::Test {
 protected:
  LogOnScreen() {
    folder.write(test::kJobFile, R"([{"log_id": "17", "job_id": "updateSW", "state_id": "FREE",
                                      "result": 0, "resultStr": "no error",
                                      "input_parameters": {}}])");
    folder.write(kLog, entry("one"));
  }
  void append(const std::string& text) const {
    std::ofstream(folder / kLog, std::ios::app) << text;
  }

  test::TempFolder folder;
};

TEST_F(LogOnScreen, IsFollowedUntilTheInterrupt) {
  PseudoTerminal terminal({KELVANE_CONSOLE, "log", "--follow", "--shared", "shared"}, folder.path(),
                          {40, 24, true});
  ASSERT_TRUE(terminal.waitFor("14:03:07 run: one"));
  append(entry("two", "error"));
  ASSERT_TRUE(terminal.waitFor("\x1b[31m14:03:07 error run: two"));
  fs::rename(folder / kLog, folder / "old");
  folder.write(kLog, entry("three"));
  ASSERT_TRUE(terminal.waitFor("the log begins anew"));
  ASSERT_TRUE(terminal.waitFor("14:03:07 run: three"));
  fs::remove(folder / kLog);
  ASSERT_TRUE(terminal.waitFor("waiting for it"));
  terminal.type("\x03");
  EXPECT_EQ(terminal.end(), test::kInterrupted);
  EXPECT_THAT(terminal.output(), Not(HasSubstr("kelvane-console: ")));
}

TEST_F(LogOnScreen, WhereOutputIsNoTerminalItIsPlain) {
  append(entry("two", "error"));
  const test::Ended ended = test::runProgram(
      {KELVANE_CONSOLE, "log", "--shared", "shared", "--tail", "1"}, folder.path());
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, "14:03:07 error run: two\n");
}

TEST_F(LogOnScreen, JobsWithTheirTimesFitNarrowAndWideTerminals) {
  append(entry("logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = updateSW"));
  const std::vector<std::string> argv = {KELVANE_CONSOLE, "list", "--shared", "shared"};
  PseudoTerminal wide(argv, folder.path(), {200, 24, true});
  wide.end();
  EXPECT_EQ(wide.screen(), (std::vector<std::string>{
                               "Log id  Command   State  Start     Length  Result  Text",
                               "    17  updateSW  FREE   14:03:07    0:00       0  no error"}));
  PseudoTerminal narrow(argv, folder.path(), {20, 24, false});
  narrow.end();
  EXPECT_EQ(narrow.screen(),
            (std::vector<std::string>{"Log id   17", "Command  updateSW", "State    FREE",
                                      "Start    14:03:07", "Length   0:00", "Result   0",
                                      "Text     no error"}));
}

TEST_F(LogOnScreen, OnlyALargeOneIsRotated) {
  const std::vector<std::string> argv = {KELVANE_CONSOLE, "log", "--rotate", "--shared", "shared"};
  EXPECT_THAT(test::runProgram(argv, folder.path()).out,
              HasSubstr("it is rotated from 104857600 bytes on"));
  fs::resize_file(folder / kLog, 104'857'600);
  const test::Ended ended = test::runProgram(argv, folder.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("TarselVistrelUtility(1).txt"));
  EXPECT_EQ(fs::file_size(folder / kLog), 0U);
}

TEST_F(LogOnScreen, RotatingShowsNothing) {
  const test::Ended ended = test::runProgram(
      {KELVANE_CONSOLE, "log", "--rotate", "--follow", "--shared", "shared"}, folder.path());
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_THAT(ended.err, HasSubstr("--follow is not for it"));
}

// --- of real jobs

class LogOfRealJobs : public OnlineInstallation {
 protected:
  LogOfRealJobs() {
    environment.erase("KELVANE_TEST_VERSIONS");
    run("query", {"--bundle", bundle.path(), "--url", folder / "service", "fw3"});
    run("download", {"--bundle", bundle.path(), "--url", folder / "service", "fw3", "fw2"});
  }

  test::Ended run(const std::string& subCommand, const std::vector<std::string>& more) const {
    std::vector<std::string> argv = {KELVANE_CONSOLE, subCommand, "--shared", shared()};
    argv.insert(argv.end(), more.begin(), more.end());
    return test::runProgram(argv, folder.path(), environment);
  }
};

TEST_F(LogOfRealJobs, EachHasItsOwnEntries) {
  const std::string first = run("log", {"--job", "1"}).out;
  EXPECT_THAT(first, HasSubstr(" getOnlineUpdateData: getOnlineUpdateData end, retDict = "));
  EXPECT_THAT(first, Not(HasSubstr("logId = 2,")));
  const std::string second = run("log", {"--job", "2"}).out;
  EXPECT_THAT(second, HasSubstr(" run: logId = 2,"));
  EXPECT_EQ(first + second, run("log", {}).out);
  EXPECT_EQ(run("log", {"--job", "3"}).exitStatus, 5);
}

TEST_F(LogOfRealJobs, TheListTellsTheirTimes) {
  const test::Ended ended = run("list", {"--json", "--last", "1"});
  const Value told = platform::parseJson(ended.out).get("told_by_log");
  EXPECT_THAT(told.get("start").string(), MatchesRegex("[0-9][0-9]:[0-9][0-9]:[0-9][0-9]"));
  EXPECT_TRUE(told.get("seconds").isNumber());
}

TEST_F(LogOfRealJobs, TheFailedOneIsFound) {
  const std::string failed = run("list", {"--failed"}).out;
  EXPECT_THAT(failed, HasSubstr("     2  downloadOnlineUpdateFile  FREE "));
  EXPECT_THAT(failed, Not(HasSubstr("     1  ")));
}

}  // namespace
}  // namespace kelvane
