// The console as a program: in terminals of several forms, and with the real worker and engine.

#include <csignal>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/File.h"
#include "platform/Json.h"
#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/support/JobFiles.h"
#include "tests/support/PseudoTerminal.h"

namespace kelvane {
namespace {

using platform::Value;
using test::PseudoTerminal;
using test::TerminalForm;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;

using Lines = std::vector<std::string>;

// --- in a terminal

class ConsoleScreen : public ::testing::Test {
 protected:
  ConsoleScreen() {
    folder.write(test::kJobFile, R"([
      {"log_id": "17", "job_id": "updateFW", "state_id": "RUN", "output": [
        {"wwn": "5000A1B2C3D4E5F6", "cpld_percentage": 100, "fw_percentage": 37,
         "total_percentage": 68},
        {"wwn": "5000A1B2C3D4E5F7", "cpld_percentage": 0, "fw_percentage": 0,
         "total_percentage": 0}]},
      {"log_id": "18", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0,
       "resultStr": "no error", "output": [
        {"ProductID": "manager", "Version": "2.0", "Size": 12000000, "MinimumOSVersion": "10.15.0",
         "Codebase": "https://updates.example/Manager.zip"}]}])");
  }

  // What the terminal shows at the end of the sub-command.
  Lines shown(const std::vector<std::string>& arguments, const TerminalForm& form) {
    std::vector<std::string> argv = {KELVANE_CONSOLE};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    PseudoTerminal terminal(argv, folder.path(), form, environment);
    exitStatus = terminal.end();
    output = terminal.output();
    return terminal.screen();
  }
  // A running job that nobody runs: the bars, and that the worker is gone.
  Lines watched(const TerminalForm& form) {
    return shown({"watch", "--shared", "shared", "17"}, form);
  }
  Lines queried(const TerminalForm& form) {
    return shown({"watch", "--shared", "shared", "18"}, form);
  }

  test::TempFolder folder;
  std::map<std::string, std::string> environment;
  int exitStatus = -1;
  std::string output;
};

// The message of a job whose worker is gone, which is wrapped at words.
std::string joined(const Lines& lines, std::size_t from) {
  std::string text;
  for (std::size_t i = from; i < lines.size(); ++i) text += lines[i] + " ";
  return text;
}

TEST_F(ConsoleScreen, BarsIn40Columns) {
  const Lines ascii = watched({40, 24, false});
  ASSERT_GE(ascii.size(), 9U);
  EXPECT_EQ(
      Lines(ascii.begin(), ascii.begin() + 9),
      (Lines{"job 17: running, no worker", "5000A1B2C3D4E5F6  stopped",
             "  cpld     ####################### 100%", "  firmware ########---------------  37%",
             "  total    ###############--------  68%", "5000A1B2C3D4E5F7  not started",
             "  cpld     -----------------------   0%", "  firmware -----------------------   0%",
             "  total    -----------------------   0%"}));
  EXPECT_THAT(joined(ascii, 9), HasSubstr("no worker is seen any more"));
  EXPECT_EQ(watched({40, 24, true}).at(3), "  firmware ████████░░░░░░░░░░░░░░░  37%");
}

TEST_F(ConsoleScreen, BarsIn80Columns) {
  const Lines ascii = watched({80, 24, false});
  ASSERT_GE(ascii.size(), 3U);
  EXPECT_EQ(
      Lines(ascii.begin(), ascii.begin() + 3),
      (Lines{"job 17: running, no worker",
             "5000A1B2C3D4E5F6  stopped      cpld ##### 100%  fw #----  37%  total ###--  68%",
             "5000A1B2C3D4E5F7  not started  cpld -----   0%  fw -----   0%  total -----   0%"}));
  EXPECT_EQ(watched({80, 24, true}).at(1),
            "5000A1B2C3D4E5F6  stopped      cpld █████ 100%  fw █░░░░  37%  total ███░░  68%");
}

TEST_F(ConsoleScreen, BarsIn200Columns) {
  const Lines ascii = watched({200, 24, false});
  ASSERT_GE(ascii.size(), 3U);
  EXPECT_EQ(ascii.at(2),
            "5000A1B2C3D4E5F7  not started  cpld ------------------------------   0%  fw "
            "------------------------------   0%  total ------------------------------   0%");
  EXPECT_THAT(watched({200, 24, true}).at(1), HasSubstr("fw ███████████░░░░░░░░░░░░░░░░░░░  37%"));
}

TEST_F(ConsoleScreen, WorkerThatIsGoneHasAnExitStatusOfItsOwn) {
  watched({80, 24, true});
  EXPECT_EQ(exitStatus, 3);
}

TEST_F(ConsoleScreen, PackagesIn40And80And200Columns) {
  const Lines wide = {"job 18: finished", "result 0: no error",
                      "Product  Version     Size  System   Package",
                      "manager  2.0      12.0 MB  10.15.0  Manager.zip"};
  EXPECT_EQ(queried({80, 24, true}), wide);
  EXPECT_EQ(queried({200, 24, false}), wide);
  EXPECT_EQ(queried({40, 24, false}),
            (Lines{"job 18: finished", "result 0: no error", "Product  manager", "Version  2.0",
                   "Size     12.0 MB", "System   10.15.0", "Package  Manager.zip"}));
  EXPECT_EQ(exitStatus, 0);
}

TEST_F(ConsoleScreen, ListIn40And80Columns) {
  EXPECT_EQ(shown({"list", "--shared", "shared"}, {80, 24, false}),
            (Lines{"Log id  Command              State           Result  Text",
                   "    17  updateFW             RUN, no worker          5000A1B2C3D4E5F6 stopped",
                   "                                                     at 68%, 1 not started",
                   "    18  getOnlineUpdateData  FREE                 0  no error"}));
  EXPECT_EQ(shown({"list", "--shared", "shared"}, {40, 24, true}).at(1), "Command  updateFW");
  EXPECT_EQ(
      shown({"list", "--shared", "shared"}, {120, 24, true}).at(1),
      "    17  updateFW             RUN, no worker          5000A1B2C3D4E5F6 stopped at 68%, 1 not "
      "started");
}

TEST_F(ConsoleScreen, HelpFitsTheTerminal) {
  constexpr unsigned short kWidths[] = {40, 80};
  for (const unsigned short columns : kWidths) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"query", "--help"}}) {
      for (const std::string& line : shown(arguments, {columns, 24, false})) {
        EXPECT_LT(line.size(), columns) << line;
      }
      EXPECT_EQ(exitStatus, 0);
    }
  }
}

TEST_F(ConsoleScreen, ColourOnlyWhereItIsWanted) {
  queried({80, 24, true});
  EXPECT_THAT(output, HasSubstr("\x1b[32mresult 0: no error\x1b[0m"));
  environment = {{"NO_COLOR", "1"}};
  queried({80, 24, true});
  EXPECT_THAT(output, ::testing::Not(HasSubstr("\x1b[32m")));
  environment = {{"NO_COLOR", ""}};  // empty is as good as not there
  queried({80, 24, true});
  EXPECT_THAT(output, HasSubstr("\x1b[32m"));
}

TEST_F(ConsoleScreen, DumbTerminalGetsPlainLines) {
  environment = {{"TERM", "dumb"}};
  EXPECT_EQ(queried({80, 24, true}).at(0), "result 0: no error");
  EXPECT_THAT(output, ::testing::Not(HasSubstr("\x1b")));
}

TEST_F(ConsoleScreen, JsonIsPlainInATerminalToo) {
  shown({"watch", "--json", "--shared", "shared", "18"}, {80, 24, true});
  EXPECT_EQ(platform::parseJson(output).get("log_id"), Value("18"));
}

TEST_F(ConsoleScreen, JsonTellsWhatTheResultDoesNot) {
  folder.write(test::kJobFile, R"([{"log_id": "18", "job_id": "getOnlineUpdateData",
      "state_id": "FREE", "result": 0, "resultStr": "no error"}])");
  queried({80, 24, true});
  EXPECT_EQ(exitStatus, 1);
  shown({"watch", "--json", "--shared", "shared", "18"}, {80, 24, true});
  EXPECT_EQ(exitStatus, 1);
  EXPECT_THAT(output, HasSubstr(R"("console_status":{"shortfall":"the update engine left no )"
                                R"(catalogue"})"));
}

TEST_F(ConsoleScreen, JsonTellsThatNoWorkerIsSeen) {
  shown({"watch", "--json", "--shared", "shared", "17"}, {80, 24, true});
  EXPECT_EQ(exitStatus, 3);
  EXPECT_THAT(output, HasSubstr(R"("console_status":{"no_worker":true,)"));
}

// --- an interrupt

TEST_F(ConsoleScreen, AnInterruptLeavesTheWorkerAlive) {
  // A worker that writes its number down and waits for a line.
  ASSERT_EQ(::mkfifo((folder / "line").c_str(), 0600), 0);
  std::fstream line(folder / "line");
  const std::string worker = folder.write("Worker", "#!/bin/sh\necho $$ > pid\nread word < line\n");
  ::chmod(worker.c_str(), 0755);
  PseudoTerminal terminal({KELVANE_CONSOLE, "update-fw", "--yes", "--shared", "shared", "--worker",
                           worker, "--log-id", "99", "5000A1=" + worker},
                          folder.path(), {80, 24, true});
  ASSERT_TRUE(terminal.waitFor("job 99: waiting"));
  terminal.type("\x03");
  EXPECT_EQ(terminal.end(), test::kInterrupted);
  EXPECT_THAT(terminal.output(), HasSubstr("the worker goes on with job 99"));
  while (folder.read("pid").empty()) continue;  // it may only just have been started
  EXPECT_EQ(::kill(std::stoi(folder.read("pid")), 0), 0);
  line << "end" << std::endl;
}

// Nothing goes on that could be followed again. Each shows more than the terminal takes in at once.
TEST_F(ConsoleScreen, AnInterruptEndsWhatFollowsNoJobAtOnce) {
  const std::string much(200'000, 'x');
  std::string jobs = R"([{"log_id": "1", "job_id": ")" + much + R"(", "state_id": "WAIT",
                          "input_parameters": []})";
  std::string log;
  for (int i = 2; i < 5000; ++i) {
    jobs += R"(, {"log_id": ")" + std::to_string(i) + R"(", "job_id": "updateFW",
                  "state_id": "FREE", "input_parameters": []})";
    log += "[14:03:07] [JobRunner.cpp][100][run][debug] logId = " + std::to_string(i) + "\n";
  }
  folder.write(test::kJobFile, jobs + "]");
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", log);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"list"}, {"show", "1"}, {"log"}, {"check"}, {"explain", "1"}}) {
    std::vector<std::string> argv = {KELVANE_CONSOLE};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    argv.insert(argv.end(), {"--shared", "shared"});
    PseudoTerminal terminal(argv, folder.path(), {80, 24, true});
    ASSERT_TRUE(terminal.waitFor("\n")) << arguments[0];
    terminal.type("\x03");
    EXPECT_EQ(terminal.end(), -1) << arguments[0];
  }
}

// --- with the real worker

class ConsoleJob : public OnlineInstallation {
 protected:
  // The versions are kept by number, and two programs write here.
  ConsoleJob() { environment.erase("KELVANE_TEST_VERSIONS"); }

  test::Ended console(const std::string& subCommand, const std::vector<std::string>& more,
                      bool needsBundle = true) const {
    std::vector<std::string> argv = {KELVANE_CONSOLE, subCommand, "--shared", shared()};
    if (needsBundle) argv.insert(argv.end(), {"--bundle", bundle.path()});
    argv.insert(argv.end(), more.begin(), more.end());
    return test::runProgram(argv, folder.path(), environment);
  }
};

TEST_F(ConsoleJob, QueryShowsThePackages) {
  const test::Ended ended = console("query", {"--url", folder / "service", "fw3", "1.0"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.err, "");
  EXPECT_THAT(ended.out, HasSubstr("result 0: no error\n"));
  EXPECT_THAT(ended.out, HasSubstr("\nfw3      3.4.0    12 B  -       fw3.zip\n"));
}

TEST_F(ConsoleJob, QueryWithoutACatalogueFails) {
  writeFaults(R"({"catalogue": "none"})");
  const test::Ended ended = console("query", {"--url", folder / "service", "fw3"});
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_EQ(ended.err, "kelvane-console: the update engine left no catalogue\n");
}

TEST_F(ConsoleJob, DownloadShowsWhatIsThereAndWhatIsNot) {
  const test::Ended ended = console("download", {"--url", folder / "service", "fw3", "fw2"});
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_THAT(ended.out, HasSubstr("result 259 (0x0103): file is not found\n"));
  EXPECT_THAT(ended.out,
              HasSubstr("\nfw3      3.4.0    12 B  yes      " + area("FW") + "/FW_T3.img\n"));
  EXPECT_THAT(ended.out, HasSubstr("\nfw2      2.4.0    12 B  no\n"));
}

TEST_F(ConsoleJob, UpdateSwReplacesTheApplication) {
  folder.write("Installed.app/old", "");
  const test::Ended ended = console("update-sw", {folder / "Manager.app"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.out, HasSubstr("installed at " + (folder / "Installed.app") + "\n"));
  EXPECT_EQ(folder.read("Installed.app/Contents/version"), "2.0");
}

TEST_F(ConsoleJob, UpdateFwFlashes) {
  writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4801", "firmware": "1.0",
                  "cpld": "1.0", "usb_bridge": "1.0"}])");
  const std::string image =
      makeImage("new.img", {"qvxf", "--product", "0x48", "--firmware", "2.0"});
  const test::Ended ended = console("update-fw", {"50000000000000A1=" + image});
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2.0"));
}

TEST_F(ConsoleJob, AfterwardsTheJobCanBeListedShownAndReadInTheLog) {
  console("query", {"--url", folder / "service", "fw3"});
  EXPECT_THAT(console("list", {}, false).out,
              ContainsRegex("     1  getOnlineUpdateData  FREE   [0-9:]+    [0-9:]+       0  no "
                            "error\n"));
  EXPECT_THAT(console("show", {"1"}, false).out, HasSubstr("command getOnlineUpdateData\n"));
  EXPECT_THAT(console("log", {"--function", "getOnlineUpdateData"}, false).out,
              HasSubstr(" getOnlineUpdateData: execute EngineRunner result = "));
  EXPECT_EQ(console("show", {"2"}, false).exitStatus, 5);
}

TEST_F(ConsoleJob, JsonIsOneLineForEachVersionAndNothingElse) {
  const test::Ended ended = console("query", {"--json", "--url", folder / "service", "fw3"});
  EXPECT_EQ(ended.exitStatus, 0);
  std::istringstream lines(ended.out);
  Value last;
  for (std::string line; std::getline(lines, line);) {
    last = platform::parseJson(line);
    EXPECT_EQ(last.get("log_id"), Value("1"));
  }
  EXPECT_EQ(last.get("output").count(), 3U);
}

TEST_F(ConsoleJob, BadUsageIsItsOwnExitStatusAndHelpIsNone) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{}, {"chek"}, {"query"}, {"log", "--level", "loud"}}) {
    std::vector<std::string> argv = {KELVANE_CONSOLE};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(test::runProgram(argv, folder.path()).exitStatus, 2);
  }
  const test::Ended help = test::runProgram({KELVANE_CONSOLE, "--help"}, folder.path());
  EXPECT_EQ(help.exitStatus, 0);
  EXPECT_THAT(help.out, HasSubstr("update-fw"));
}

TEST_F(ConsoleJob, AnUnknownSubCommandIsNamed) {
  EXPECT_THAT(test::runProgram({KELVANE_CONSOLE, "chek"}, folder.path()).err,
              HasSubstr("there is no sub-command chek\n"));
}

TEST_F(ConsoleJob, OutputThatCannotBeWrittenIsNoSuccess) {
  const test::Ended ended = test::runProgram(
      {"/bin/sh", "-c", std::string(KELVANE_CONSOLE) + " explain 0 > /dev/full"}, folder.path());
  EXPECT_EQ(ended.exitStatus, 70);
  EXPECT_EQ(ended.err, "kelvane-console: standard output cannot be written\n");
}

}  // namespace
}  // namespace kelvane
