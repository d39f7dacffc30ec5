// What the console tells of a shared folder that was copied from another system, or of the two
// files as they were mailed; and options that stand before the sub-command.

#include <filesystem>

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"
#include "tests/support/PseudoTerminal.h"

namespace kelvane {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kNotLooked[] = "this is a copy: whether a worker runs was not looked at";

// A flash that failed at 90 percent. Then all of it is moved to another place, where nothing stands
// at the paths that its files name; a worker of that name and log id "runs" nowhere.
class Copy : public SupportInstallation {
 protected:
  Copy() {
    writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0",
                    "cpld": "1.0", "usb_bridge": "1.0", "firmware_seconds": 20,
                    "faults": [{"flash": "firmware", "do": "fail", "at": 90}]}])");
    updateFirmware({{"50000000000000A1", makeImage("new.img", {"standard", "--product", "0x4301",
                                                               "--firmware", "2.0"})}});
    fs::rename(folder / "shared", folder / "sent");
    fs::remove(folder / "new.img");
  }

  std::string sent() const { return folder / "sent"; }
  std::string sentJobFile() const { return sent() + "/utility/command/BGPLog.json"; }
  std::string sentLog() const { return sent() + "/utility/logs/TarselVistrelUtility.txt"; }
};

TEST_F(Copy, OfTheFolderTellsWhatBecameOfTheJob) {
  const test::Ended listed = console({"--shared", sent(), "list", "--offline"});
  EXPECT_THAT(listed.out, AllOf(HasSubstr("17  updateFW  FREE   "), HasSubstr("  32852 (0x8054)  "),
                                EndsWith(kNotLooked + std::string("\n"))));
  const test::Ended shown = console({"--shared", sent(), "show", "--offline", "17"});
  EXPECT_THAT(shown.out, AllOf(HasSubstr("50000000000000A1  failed"), HasSubstr(kNotLooked)));
  const test::Ended explained = console({"--shared", sent(), "explain", "--offline", "17"});
  EXPECT_THAT(explained.out, AllOf(HasSubstr("log tells  "), HasSubstr(" updateFW: Flash Error"),
                                   HasSubstr("50000000000000A1 failed at 90%")));
  EXPECT_THAT(explained.out, Not(HasSubstr("does not exist")));
  EXPECT_EQ(console({"--shared", sent(), "log", "--offline", "--level", "error"}).exitStatus, 0);
}

TEST_F(Copy, OfTheTwoFilesTellsTheSame) {
  const test::Ended ended =
      console({"explain", "--job-file", sentJobFile(), "--log-file", sentLog(), "17"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, console({"explain", "--shared", sent(), "--offline", "17"}).out);
  EXPECT_THAT(console({"explain", "--job-file", sentJobFile(), "17"}).out,
              AllOf(HasSubstr("The log is not at hand."), Not(HasSubstr("Flash Error"))));
  EXPECT_THAT(console({"log", "--log-file", sentLog()}).out, HasSubstr(" updateFW: Flash Error\n"));
}

TEST_F(Copy, OfTheLogAloneTellsWhatTheLogShows) {
  const test::Ended ended = console({"explain", "--log-file", sentLog(), "17"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.out, AllOf(HasSubstr("32852 (0x8054), kZorFlashFailed"),
                               HasSubstr("50000000000000A1 failed at 90%"),
                               HasSubstr("The record is as the log shows it last.\n")));
  EXPECT_THAT(console({"list", "--log-file", sentLog()}).out,
              AllOf(HasSubstr("17  updateFW  FREE   "), HasSubstr("  32852 (0x8054)  ")));
}

TEST_F(Copy, IsCheckedWithoutALookAtThisSystem) {
  const test::Ended ended =
      console({"check", "--offline", "--shared", sent(), "--bundle", bundle.path()});
  EXPECT_EQ(ended.exitStatus, 0) << ended.out;
  EXPECT_THAT(ended.out, StartsWith("no findings\n"));
  fs::resize_file(sentJobFile(), 10);
  EXPECT_THAT(console({"check", "--job-file", sentJobFile()}).out,
              AllOf(StartsWith("error: " + sentJobFile() + " is not JSON: line 3, column "),
                    HasSubstr("\n1 error, 0 warnings\nnot looked at, as this is a copy: ")));
}

TEST_F(Copy, OfAJobUnderWayTellsNothingOfWorkers) {
  folder.write("sent/utility/command/BGPLog.json", R"([{"log_id": "17", "job_id": "updateFW",
      "state_id": "RUN", "input_parameters": [{"wwn": "A", "file_path": "/no.img"}]}])");
  for (const char* command : {"list", "show", "explain", "check"}) {
    std::vector<std::string> arguments = {command, "--shared", sent(), "--offline"};
    if (command[0] == 's' || command[0] == 'e') arguments.emplace_back("17");
    const test::Ended ended = console(arguments);
    EXPECT_EQ(ended.exitStatus, 0) << ended.out;
    EXPECT_THAT(ended.out, AllOf(Not(HasSubstr(", no worker")), HasSubstr("a copy"))) << command;
  }
}

// --- options before the sub-command, and what is told of them

TEST_F(Copy, ASharedFolderThatIsGivenTwiceIsRefused) {
  const test::Ended ended = console({"--shared", sent(), "list", "--shared", "/elsewhere"});
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_EQ(ended.err, "kelvane-console: --shared is given twice: " + sent() + " and /elsewhere\n");
}

TEST_F(Copy, AMissingOptionNamesItsVariableInTheTerminalsWidth) {
  test::PseudoTerminal terminal({bundle / "bin/kelvane-console", "remove", "17"}, folder.path(),
                                {40, 24, true});
  EXPECT_EQ(terminal.end(), 2);
  EXPECT_EQ(terminal.screen(), (std::vector<std::string>{
                                   "kelvane-console: remove needs --shared",
                                   "FOLDER; the environment variable",
                                   "KELVANE_SHARED can name it",
                               }));
}

TEST_F(Copy, TheEnvironmentsSharedFolderDoesNotStandBesideAFile) {
  const test::Ended ended =
      test::runProgram({bundle / "bin/kelvane-console", "list", "--job-file", sentJobFile()},
                       folder.path(), {{"KELVANE_SHARED", "/nowhere"}});
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("32852 (0x8054)"));
}

}  // namespace
}  // namespace kelvane
