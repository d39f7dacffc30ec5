// What explain tells of jobs of the real worker, in every state and with every result.

#include <csignal>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/explain/ResultCodes.h"
#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"

namespace kelvane {
namespace {

using console::ResultCode;
using platform::Value;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Explain : public SupportInstallation {
 protected:
  // A firmware job over one standard controller, with these faults of the framework's functions.
  void flash(const std::string& faults, const std::string& ofController = "") const {
    writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0",
                    "cpld": "1.0", "usb_bridge": "1.0", "firmware_seconds": 4)" +
                   ofController + "}]",
               faults);
    const std::string image = makeImage("new.img", {"standard", "--product", "0x4301", "--firmware",
                                                    "2.0", "--cpld", "1.5", "--usb", "3.0"});
    updateFirmware({{"50000000000000A1", image}});
  }
  std::string told(const std::string& key) const { return explained().get(key).string(); }
  std::vector<std::string> errors() const {
    std::vector<std::string> found;
    const Value explanation = explained();
    for (const Value& error : explanation.get("log_errors").elements()) {
      found.push_back(error.string());
    }
    return found;
  }
};

// --- results

TEST_F(Explain, EveryResultOfAFirmwareJob) {
  for (const ResultCode& code : console::resultCodes()) {
    if (code.code == 0 || code.code == 259) continue;
    flash(R"([{"function": "zr_verifyFlashImage", "status": )" + std::to_string(code.code) + "}]");
    ASSERT_EQ(result(), code.code);
    const Value explanation = explained();
    EXPECT_THAT(explanation.get("subject").string(),
                EndsWith(std::string(", ") + code.name + ": " + code.text));
    EXPECT_EQ(explanation.get("meaning"), Value(code.meaning));
    EXPECT_EQ(explanation.get("who_acts"), Value(code.whoActs));
    EXPECT_EQ(explanation.get("advice"), Value(code.advice));
    EXPECT_EQ(explanation.get("try_again"), Value(code.tryAgain ? "yes" : "no"));
    EXPECT_THAT(explanation.get("last_step").string(),
                EndsWith("updateFW: Image format is invalid."));
  }
}

TEST_F(Explain, AFlashThatFailedNamesItsLastStep) {
  flash("[]", R"(, "faults": [{"flash": "firmware", "do": "fail", "at": 50}])");
  EXPECT_THAT(told("subject"), HasSubstr("32852 (0x8054), kZorFlashFailed"));
  EXPECT_THAT(told("last_step"), EndsWith(" updateFW: Flash Error"));
}

// Three controllers of which the second one's CPLD is tried again, and its flash fails at 90 %.
TEST_F(Explain, AFlashErrorNamesTheControllerAndTheLineOfTheLog) {
  const std::string rest = R"(", "product_id": "0x4301", "firmware": "1.0", "cpld": "1.0",
      "usb_bridge": "1.0", "cpld_transfer_seconds": 4, "firmware_seconds": 20)";
  writeFleet(R"([{"wwn": "50000000000000A1)" + rest + R"(}, {"wwn": "50000000000000B2)" + rest +
             R"(, "faults": [{"flash": "cpld", "do": "retry", "at": 50},
                             {"flash": "firmware", "do": "fail", "at": 90}]},
                {"wwn": "50000000000000C3)" +
             rest + "}]");
  const std::string image = makeImage("new.img", {"standard", "--product", "0x4301", "--firmware",
                                                  "2.0", "--cpld", "1.5", "--usb", "3.0"});
  updateFirmware(
      {{"50000000000000A1", image}, {"50000000000000B2", image}, {"50000000000000C3", image}});
  ASSERT_EQ(result(), 0x8054);
  EXPECT_EQ(told("controllers"), "1 done, 50000000000000B2 failed at 90%, 1 not started");
  EXPECT_THAT(told("told_by"), EndsWith(" updateFW: Flash Error"));
  EXPECT_EQ(explained().get("details").at(0),
            Value("50000000000000B2: its CPLD's flash was tried again once"));
  const std::string shown = console({"show", "--shared", shared(), "17"}).out;
  EXPECT_THAT(shown, HasSubstr("\n50000000000000A1  done         100%      100%   100%\n"
                               "50000000000000B2  failed       100%       80%    90%\n"
                               "50000000000000C3  not started    0%        0%     0%\n"));
  const std::string watched = console({"watch", "--shared", shared(), "17"}).out;
  EXPECT_THAT(watched, HasSubstr("50000000000000B2: its CPLD's flash was tried again once\n"));
  EXPECT_THAT(watched, HasSubstr("50000000000000B2 failed: "));
}

// A record that keeps every other from being updated: the flash is done, and its record says WAIT.
TEST_F(Explain, AFlashWhoseRecordCouldNotBeWrittenIsNotSaidNotToBeBegun) {
  writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4801", "firmware": "1.0",
                  "cpld": "1.0", "usb_bridge": "1.0", "firmware_seconds": 4}])");
  const std::string image = makeImage("new.img", {"qvxf", "--product", "0x48", "--firmware", "2"});
  writeJobs(R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT", "input_parameters":
                 [{"wwn": "50000000000000A1", "file_path": ")" +
            image + R"("}]}, {"log_id": 5}])");
  runWorker({"17", shared()});
  ASSERT_EQ(state(), "WAIT");
  ASSERT_EQ(fleet().get("controllers").at(0).get("firmware"), Value("2"));
  EXPECT_EQ(told("subject"), "job 17 (updateFW): waiting, though a worker took it");
  EXPECT_THAT(told("meaning"), HasSubstr("the flash may have been done, by the log of 1 cont"));
  EXPECT_THAT(findings(), ::testing::Contains("error: " + jobFile() +
                                              ": job 17 is in state WAIT, and the log tells that a "
                                              "worker took it"));
}

TEST_F(Explain, AControllerThatIsNotThere) {
  writeFleet("[]");
  updateFirmware({{"50000000000000A1", "/no.img"}});
  EXPECT_THAT(told("subject"), HasSubstr("1026 (0x0402), kZorDeviceNotFound"));
}

TEST_F(Explain, AStatusOfTheFrameworksOwnTellsWhatItSays) {
  writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1.0",
                  "cpld": "1.0", "usb_bridge": "1.0"}])");
  updateFirmware({{"50000000000000A1", "/no.img"}});
  EXPECT_EQ(told("subject"),
            "job 17 (updateFW): finished with result 32850 (0x8052): a status of the controller "
            "framework's own, which says \"the firmware image cannot be read\"");
  EXPECT_EQ(told("meaning"),
            "The framework looked at the image and did not take it: as it is now, /no.img does not "
            "exist. No controller was flashed.");
  EXPECT_EQ(told("who_acts"), "user");
}

TEST_F(Explain, The259OfADownloadAndOfAFirmwareJob) {
  download({"fw3", "fw2"});  // the engine brings the first one's package alone
  EXPECT_THAT(told("subject"), EndsWith("259 (0x0103), kFileNotFound: file is not found"));
  flash(R"([{"function": "zr_discover", "status": "0x0103"}])");
  EXPECT_THAT(told("subject"), HasSubstr("259 (0x0103): a status of the controller framework's"));
}

TEST_F(Explain, ADownloadWithoutItsPackageNamesTheProduct) {
  download({"fw3", "fw2"});
  EXPECT_EQ(explained().get("details").at(0),
            Value("fw2: the catalogue offers version 2.4.0, and its package was not brought; the "
                  "engine was asked for fw3 alone"));
}

TEST_F(Explain, AnImageThatIsNotThereIsNamed) {
  writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4801", "firmware": "1.0",
                  "cpld": "1.0", "usb_bridge": "1.0"}])");
  updateFirmware({{"50000000000000A1", "/no.img"}});
  EXPECT_EQ(explained().get("details").at(0),
            Value("50000000000000A1: its image: /no.img does not exist; product 0x4801 takes QVXF "
                  "images"));
  EXPECT_THAT(told("told_by"), EndsWith(" updateFW: [WRONG] zr_checkQVXFFlashImage = 0x8052"));
}

TEST_F(Explain, AFirmwareJobWhoseCpldWasLeft) {
  flash(R"([{"function": "zr_flashCPLDBin", "status": "0x8050"}])");
  ASSERT_EQ(result(), 0);
  EXPECT_THAT(told("meaning"), EndsWith("not every CPLD was flashed: 50000000000000A1 (0%)."));
}

TEST_F(Explain, JobsThatAreDone) {
  flash("[]");
  EXPECT_EQ(told("meaning"), "Every controller has its firmware.");
  query();
  EXPECT_EQ(told("meaning"), "What the update service offers is the job's output.");
  download({"fw3"});
  EXPECT_EQ(told("meaning"), "Every package is there; the output has the paths.");
  runJob("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
  EXPECT_EQ(told("try_again"), "if the application is not there");
}

TEST_F(Explain, AQueryWithoutACatalogue) {
  writeFaults(R"({"catalogue": "none"})");
  query();
  EXPECT_THAT(told("meaning"), HasSubstr("there is no output"));
}

// --- jobs that are not finished

TEST_F(Explain, AJobThatNobodyStarted) {
  addFirmwareJob();
  EXPECT_EQ(told("subject"), "job 17 (updateFW): waiting");
  EXPECT_EQ(told("note"), "The log has no lines of this job.");
  EXPECT_EQ(told("try_again"), "yes");
}

TEST_F(Explain, AJobThatTheWorkerDoesNotStart) {
  runJob("updateHW", Value::dictionary());
  EXPECT_EQ(told("meaning"),
            "It cannot be carried out as it is: job_id is \"updateHW\", which is no command of the "
            "worker's.");
}

TEST_F(Explain, AJobWhoseWorkerGaveUpHasTheLogsError) {
  ::chmod(engine().c_str(), 0644);
  query();
  EXPECT_EQ(told("meaning"),
            "Its worker gave up, and the log tells why. Nothing takes the job up.");
  EXPECT_THAT(errors(), ElementsAre(EndsWith(" getOnlineUpdateData: start " + engine() +
                                             ": Permission denied")));
}

// A worker at a flash that never ends, until it is killed.
class StalledWorker {
 public:
  StalledWorker(const std::string& program, const std::string& sharedFolder,
                const std::string& fleet)
      : process_(::fork()) {
    if (process_ != 0) return;
    ::setenv("ZORAPI_FLEET", fleet.c_str(), 1);
    ::execl(program.c_str(), program.c_str(), "17", sharedFolder.c_str(), nullptr);
    ::_exit(127);
  }
  StalledWorker(const StalledWorker&) = delete;
  StalledWorker& operator=(const StalledWorker&) = delete;
  ~StalledWorker() { kill(); }

  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  pid_t process_;
};

TEST_F(Explain, AJobThatRunsAndThenTheSameWithItsWorkerKilled) {
  folder.write("fleet.json", R"({"clock": "wall", "controllers": [
      {"wwn": "50000000000000A1", "product_id": "0x4801", "firmware": "1.0", "cpld": "1.0",
       "usb_bridge": "1.0", "firmware_seconds": 1000000}]})");
  const std::string image = makeImage("new.img", {"qvxf", "--product", "0x48", "--firmware", "2"});
  writeJobs(R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT", "input_parameters":
                 [{"wwn": "50000000000000A1", "file_path": ")" +
            image + "\"}]}]");
  StalledWorker stalled(worker(), shared(), folder / "fleet.json");
  while (log().find("fshProg.") == std::string::npos) continue;
  EXPECT_EQ(told("subject"), "job 17 (updateFW): running");
  EXPECT_EQ(told("advice"), "Wait. A flash may show no news for minutes; do not unplug.");
  EXPECT_THAT(findings(), ::testing::IsEmpty());
  stalled.kill();
  EXPECT_EQ(told("subject"), "job 17 (updateFW): running, and no worker for it is seen");
  EXPECT_THAT(told("controllers"), StartsWith("50000000000000A1 stopped at "));
  EXPECT_THAT(console({"list", "--shared", shared()}).out,
              ContainsRegex("RUN, no worker +[0-9:]+ +[0-9:]+[+] +50000000000000A1 stopped at "));
  EXPECT_THAT(console({"show", "--shared", shared(), "17"}).out,
              StartsWith("job 17: running, no worker\n"));
  EXPECT_THAT(told("meaning"), StartsWith("Its worker was killed"));
  EXPECT_THAT(told("last_step"), EndsWith("fshProg.fp_u8Stage = 1"));
  EXPECT_THAT(findings(), ElementsAre(HasSubstr("job 17 is in state RUN, and no worker")));
}

// --- the command itself

TEST_F(Explain, ACodeNeedsNoSharedFolder) {
  const test::Ended ended = console({"explain", "0x8050"});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_THAT(ended.out, StartsWith("result 32848 (0x8050), kZorFlashProcessRunning: "));
  EXPECT_EQ(console({"explain", "0x8052"}).exitStatus, 5);
}

TEST_F(Explain, WhatIsNeitherJobNorCodeIsNotFound) {
  const test::Ended ended = console({"explain", "--shared", shared(), "x"});
  EXPECT_EQ(ended.exitStatus, 5);
  EXPECT_EQ(ended.err,
            "kelvane-console: no job x in " + jobFile() + ", and it is no result code\n");
}

}  // namespace
}  // namespace kelvane
