// The sub-command devices: what it shows, and when it refuses.

#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/checks/BundleChecks.h"
#include "console/checks/Framework.h"
#include "console/commands/Devices.h"
#include "console/display/Wrapping.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/support/LogLine.h"

namespace kelvane::console {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr char kFleet[] = R"([
  {"device_id": 0, "listed_as": "adapter", "wwn": "50000000000000A1", "product_id": "0x4301",
   "update": "standard", "attached": "thunderbolt"},
  {"device_id": 1, "listed_as": "adapter", "wwn": "50000000000000C3", "product_id": "0x3201",
   "update": "none", "attached": "other"},
  {"device_id": 2, "listed_as": "subsystem", "wwn": "50000000000000B2", "product_id": "0x4801",
   "update": "qvxf", "attached": "bridge"}])";

constexpr char kSilent[] = R"({"device_id": 1, "listed_as": "subsystem",
  "failed": "zr_getSubsystemInfo", "status": "0x0401 unsupported management command"})";

class Devices : public ConsoleWorld {
 protected:
  int show(const std::string& json) {
    return showDevices(platform::parseJson(json), "/a/libZORAPI.so", screen);
  }
  int run() { return runHere(devices, options); }

  DevicesOptions options{job.bundle, ""};
};

TEST_F(Devices, AreATable) {
  EXPECT_EQ(show(kFleet), kSuccess);
  EXPECT_EQ(shown.str(),
            "WWN               Listed as  Product  Update    Attached\n"
            "50000000000000A1  adapter    0x4301   standard  Thunderbolt\n"
            "50000000000000C3  adapter    0x3201   none      no bridge\n"
            "50000000000000B2  subsystem  0x4801   QVXF      bridge\n");
}

TEST_F(Devices, FitEveryScreen) {
  for (const Charset charset : {Charset::ascii, Charset::utf8}) {
    for (screen.columns = 20; screen.columns <= 200; ++screen.columns) {
      screen.charset = charset;
      shown.str("");
      show(kFleet);
      show(std::string("[") + kSilent + "]");
      show("[]");
      for (const std::string& line : test::splitLines(shown.str())) {
        EXPECT_LE(columnsOf(line), screen.columns) << line;
      }
    }
  }
}

TEST_F(Devices, AreAListForMachines) {
  screen.json = true;
  EXPECT_EQ(show(kFleet), kSuccess);
  EXPECT_EQ(platform::parseJson(shown.str()), platform::parseJson(kFleet));
}

TEST_F(Devices, ThatAreNoneAreSaidToBeNone) {
  EXPECT_EQ(show("[]"), kSuccess);
  EXPECT_EQ(shown.str(),
            "no devices\n"
            "  asked  /a/libZORAPI.so\n"
            "  to do  Switch the enclosures on and look at their cables, then ask again.\n");
}

TEST_F(Devices, OneThatDoesNotAnswerIsAWarning) {
  EXPECT_EQ(show(std::string("[") + kSilent + ", {\"listed_as\": \"adapter\", \"wwn\": \"A1\"}]"),
            kFindings);
  EXPECT_EQ(shown.str(),
            "WWN  Listed as  Product  Update  Attached\n"
            "-    subsystem  -        -       -\n"
            "A1   adapter    -        -       -\n"
            "warning: device 1: zr_getSubsystemInfo gives 0x0401 unsupported management command\n"
            "  means  Its WWN is not known: firmware jobs leave it out, and a job for it ends with "
            "0x0402.\n"
            "  to do  Look at the enclosure's power and cable, then ask again.\n");
}

TEST_F(Devices, TheLastOneWithoutAnAnswerEndsEveryJob) {
  EXPECT_EQ(show(std::string("[{\"wwn\": \"A1\"}, ") + kSilent + "]"), kFindings);
  EXPECT_THAT(shown.str(), HasSubstr("every firmware job ends with this status"));
}

TEST_F(Devices, ThatRefuseLaterAreNamedByTheirWwn) {
  show(R"([{"wwn": "A1", "failed": "zr_getControllerInfo", "status": "0x0403 text"},
           {"wwn": "A2", "product_id": "0x4301", "failed": "zr_getCurrentDeviceInterface",
            "status": "0x0403 text"}])");
  EXPECT_THAT(shown.str(), HasSubstr("warning: controller A1: zr_getControllerInfo gives 0x0403 "
                                     "text\n  means  A firmware job for it fails"));
  EXPECT_THAT(shown.str(), HasSubstr("whether it is attached by a bridge is not known"));
}

TEST_F(Devices, WithoutAFrameworkThereIsNoAnswer) {
  EXPECT_EQ(run(), kNoAnswer);
  EXPECT_EQ(messages.str(), "kelvane-console: the framework " + frameworkPath(job.bundle) +
                                ": No such file or directory\n");
}

TEST_F(Devices, WhatIsNoLibraryIsNotLoaded) {
  folder.write("Manager.app/Contents/Frameworks/libZORAPI.so", "text");
  EXPECT_EQ(run(), kNoAnswer);
  EXPECT_THAT(messages.str(), HasSubstr("it cannot be loaded: "));
}

TEST_F(Devices, ASharedFolderThatIsGivenHasToBeThere) {
  options.sharedFolder = folder / "none";
  EXPECT_EQ(run(), kBadUsage);
}

TEST_F(Devices, ADamagedJobFileDoesNotKeepThemFromBeingAsked) {
  folder.write(test::kJobFile, "{");
  options.sharedFolder = job.sharedFolder;
  EXPECT_EQ(run(), kNoAnswer);
}

// --- while a worker runs

class DevicesWhileAWorkerRuns : public Devices {
 protected:
  DevicesWhileAWorkerRuns() {
    makeWorker("");
    folder.write(test::kJobFile, R"([{"log_id": "7", "state_id": "RUN"}])");
    EXPECT_EQ(::mkfifo((folder / "7").c_str(), 0600), 0);
  }
  ~DevicesWhileAWorkerRuns() override {
    line_.close();
    ::waitpid(process_, nullptr, 0);
  }

  // A process that is called so, with the log id 7 and the shared folder, and lives as long as this
  // world.
  void start(const std::string& name) {
    process_ = ::fork();
    if (process_ == 0) {
      if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
      ::execl("/bin/cat", name.c_str(), "7", "shared", nullptr);
      ::_exit(127);
    }
    line_.open(folder / "7");  // once it is there and reads
  }

 private:
  std::ofstream line_;
  pid_t process_ = 0;
};

constexpr char kNotMeanwhile[] =
    "; it may be flashing, and the controllers are not asked meanwhile. Wait for its end\n";

TEST_F(DevicesWhileAWorkerRuns, InTheSharedFolderTheyAreNotAsked) {
  start("/any/where/Kelvane");
  options.sharedFolder = job.sharedFolder;
  EXPECT_EQ(run(), kBusy);
  EXPECT_EQ(messages.str(), std::string("kelvane-console: job 7 is running") + kNotMeanwhile);
}

TEST_F(DevicesWhileAWorkerRuns, ElsewhereTheyAre) {
  start("/any/where/Kelvane");
  EXPECT_EQ(run(), kNoAnswer);
}

TEST_F(DevicesWhileAWorkerRuns, OneOfTheBundleCountsWhateverItsFolder) {
  start(workerIn(job.bundle));
  EXPECT_EQ(run(), kBusy);
  EXPECT_THAT(messages.str(),
              MatchesRegex(".*: the bundle's worker is running \\(process [0-9]+\\); it may .*\n"));
}

}  // namespace
}  // namespace kelvane::console
