// The console's times in a terminal: how long a job still takes, and since when it runs.

#include <array>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/support/JobFiles.h"
#include "tests/support/Program.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

using platform::Value;
using test::PseudoTerminal;
using ::testing::HasSubstr;
using ::testing::Not;

// A worker that writes nothing itself, and ends when it is told to.
class WatchedTimes : public ::testing::Test {
 protected:
  WatchedTimes() {
    std::filesystem::create_directories(folder / "shared");
    worker = folder.write("Worker", "#!/bin/sh\nread word < line\n");
    std::filesystem::permissions(worker, std::filesystem::perms::owner_all);
    ::mkfifo((folder / "line").c_str(), 0600);
  }

  std::vector<std::string> submission() const {
    return {KELVANE_CONSOLE, "update-fw", "--shared", "shared", "--worker",
            worker,          "--log-id",  "17",       "--yes",  "5000A1=" + worker};
  }
  // A job that a worker has taken, and nobody watches yet.
  void submit() const {
    std::vector<std::string> argv = submission();
    argv.emplace_back("--no-wait");
    ASSERT_EQ(test::runProgram(argv, folder.path()).exitStatus, 0);
  }
  static std::vector<std::string> watching() {
    return {KELVANE_CONSOLE, "watch", "--shared", "shared", "17"};
  }

  // Gives the job this state and percentage, in one step as the worker does.
  Value put(const std::string& state, int firmware) const {
    Value record = platform::parseJson(folder.read(test::kJobFile)).at(0);
    Value entry = record.get("input_parameters").at(0);
    entry.set("cpld_percentage", Value::integer(0));
    entry.set("fw_percentage", Value::integer(firmware));
    entry.set("total_percentage", Value::integer(firmware == 0 ? 0 : 50 + firmware / 2));
    record.set("state_id", state);
    record.set("result", Value::integer(0));
    record.set("resultStr", "no error");
    record.set("output", Value::array({entry}));
    folder.write("shared/new", *platform::printJson(Value::array({record})));
    std::filesystem::rename(folder / "shared/new", folder / test::kJobFile);
    return record;
  }
  void endWorker() const { std::ofstream(folder / "line") << "end" << std::endl; }

  test::TempFolder folder;
  std::string worker;
};

TEST_F(WatchedTimes, WhatIsLeftIsShownFromTheSecondChangeOn) {
  PseudoTerminal terminal(submission(), folder.path(), {80, 24, false});
  ASSERT_TRUE(terminal.waitFor("job 17: waiting"));
  put("RUN", 10);
  ASSERT_TRUE(terminal.waitFor(" 10%"));
  EXPECT_THAT(terminal.output(), Not(HasSubstr(" left")));
  put("RUN", 20);
  ASSERT_TRUE(terminal.waitFor("about 0:"));
  ASSERT_TRUE(terminal.waitFor(" left"));
  put("FREE", 100);
  endWorker();
  EXPECT_EQ(terminal.end(), 0);
  for (const std::string& line : terminal.screen()) EXPECT_THAT(line, Not(HasSubstr(" left")));
}

// The log of a job that began 65 seconds ago and is at 30 percent since 10 seconds.
class LoggedTimes : public WatchedTimes {
 protected:
  void writeLog() const {
    std::string log =
        line(65, "run", "currentJobArray = (\n)") +
        line(65, "run", "logId = 17, inputParmsDict = {\n}, stateId = WAIT. jobId = updateFW");
    for (int percent = 0; percent <= 30; percent += 10) {
      const Value records = Value::array({put("RUN", percent)});
      log += line(40 - percent, "writeJSONFile",
                  "writeJSONFile, newArray = " + platform::describe(records));
    }
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", log);
  }

 private:
  static std::string line(int secondsAgo, const char* function, const std::string& message) {
    const std::time_t time = std::time(nullptr) - secondsAgo;
    std::tm local = {};
    ::localtime_r(&time, &local);
    std::array<char, sizeof "14:03:07"> text = {};
    std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
    std::string entry = "[";
    entry.append(text.data()).append("] [x.cpp][1][").append(function).append("][debug] ");
    return entry.append(message).append("\n");
  }
};

TEST_F(LoggedTimes, WatchCountsTheJobsTimeAndKnowsItsPaceAtOnce) {
  submit();
  writeLog();
  PseudoTerminal terminal(watching(), folder.path(), {80, 24, false});
  ASSERT_TRUE(terminal.waitFor("job 17: running, 1:0"));
  ASSERT_TRUE(terminal.waitFor("about 0:5"));  // a minute, less what the start has taken
  EXPECT_THAT(terminal.output(), Not(HasSubstr("no news")));
  put("FREE", 100);
  endWorker();
  EXPECT_EQ(terminal.end(), 0);
  EXPECT_THAT(terminal.output(), HasSubstr("\n5000A1: firmware 1:"));
}

TEST_F(WatchedTimes, WithoutALogTheJobsTimeIsNotKnown) {
  submit();
  put("RUN", 10);
  PseudoTerminal terminal(watching(), folder.path(), {80, 24, false});
  EXPECT_TRUE(terminal.waitFor("job 17: running\x1b[K"));
  put("FREE", 100);
  endWorker();
  EXPECT_EQ(terminal.end(), 0);
}

TEST(ControllersOfThirty, AreCountedWhereNotAllOfThemFit) {
  const test::TempFolder folder;
  std::string output;
  for (int i = 0; i < 30; ++i) {
    output += std::string(i == 0 ? "" : ",") + R"({"wwn": "5000A)" + std::to_string(10 + i) +
              R"(", "total_percentage": )" + (i < 12 ? "100" : "0") + "}";
  }
  folder.write(test::kJobFile, R"([{"log_id": "17", "job_id": "updateFW", "state_id": "RUN",
                                    "output": [)" +
                                   output + "]}]");
  const auto screenOf = [&](unsigned short columns, unsigned short rows) {
    PseudoTerminal terminal({KELVANE_CONSOLE, "watch", "--shared", "shared", "17"}, folder.path(),
                            {columns, rows, false});
    terminal.end();
    return terminal.output();
  };
  EXPECT_THAT(screenOf(80, 8), HasSubstr("job 17: running, no worker, 6 of 30 controllers\x1b[K"));
  EXPECT_THAT(screenOf(80, 8), HasSubstr("5000A22  stopped"));
  EXPECT_THAT(screenOf(40, 26), HasSubstr("job 17: running, no worker, 6 of 30\x1b[K"));
  EXPECT_THAT(screenOf(80, 40), Not(HasSubstr(" of 30")));
}

}  // namespace
}  // namespace kelvane
