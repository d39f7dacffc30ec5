// watch: what became of a job that someone else submitted, and the exit code.

#include <chrono>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "console/commands/Jobs.h"
#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/StandardError.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class WatchOfOthers : public ConsoleWorld {
 protected:
  void writeJob(const std::string& command, const std::string& rest) const {
    folder.write(test::kJobFile,
                 R"([{"log_id": "7", "job_id": ")" + command + "\", " + rest + "}]");
  }
  void writeDone(const std::string& command, const std::string& rest) const {
    writeJob(command, R"("state_id": "FREE", "result": 0, "resultStr": "fine", )" + rest);
  }
  // What the worker of the job said, as the console keeps it that has submitted the job.
  void writeSaid(const std::string& lines) const {
    const std::string shared = folder / "shared/";
    const platform::Value record = JobFile(shared).read().at(0);
    const std::string path = makeStandardError(shared, record, std::chrono::hours(12));
    std::ofstream(path, std::ios::app) << lines;
  }
  int run() { return runHere(watch, options); }

  OneJobOptions options{folder / "shared", "7"};
};

TEST_F(WatchOfOthers, AQueryWithoutACatalogueIsNoSuccess) {
  writeDone("getOnlineUpdateData", R"("input_parameters": {})");
  writeSaid("engine: no such product\n");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_THAT(messages.str(), StartsWith("kelvane-console: the update engine left no catalogue\n"
                                         "  engine: no such product\n"));
}

TEST_F(WatchOfOthers, ADownloadThatFailedTellsWhatWasComplainedOf) {
  writeJob("downloadOnlineUpdateFile", R"("state_id": "FREE", "result": 259, "output": [])");
  writeSaid("engine: no such product\n");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_THAT(shown.str(), HasSubstr("  engine: no such product\n"));
}

TEST_F(WatchOfOthers, ACpldThatWasNotFlashedIsToldAndTheJobIsASuccess) {
  writeDone("updateFW", R"("input_parameters": [{"wwn": "A1", "file_path": "/a"}], "output": [
      {"wwn": "A1", "cpld_percentage": 30, "fw_percentage": 100, "total_percentage": 100}])");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), HasSubstr("cpld 30%"));
}

// --- installations

class WatchOfAnInstallation : public WatchOfOthers {
 protected:
  WatchOfAnInstallation() {
    makeApplication("New.app", "2.0");
    makeApplication("Installed.app", "2.0");
    folder.write("Manager.app/Contents/Resources/Config/setting.json",
                 R"({"AppPath": ")" + (folder / "Installed.app") + "\"}");
    options.bundle = folder / "Manager.app";
    writeInstallation(folder / "New.app");
  }
  void makeApplication(const std::string& name, const std::string& version) const {
    std::filesystem::permissions(folder.write(name + "/Contents/MacOS/Manager", version),
                                 std::filesystem::perms::owner_all);
  }
  void writeInstallation(const std::string& package) const {
    writeDone("updateSW", R"("input_parameters": {"file_path": ")" + package + "\"}");
  }
  void expectFault(const std::string& fault) {
    EXPECT_EQ(run(), kJobFailed);
    EXPECT_THAT(messages.str(), StartsWith("kelvane-console: " + fault));
  }
};

TEST_F(WatchOfAnInstallation, IsOfOneThatStandsThere) {
  EXPECT_EQ(run(), kSuccess) << messages.str();
  EXPECT_EQ(shown.str(), "result 0: fine\ninstalled at " + (folder / "Installed.app") + "\n");
}

TEST_F(WatchOfAnInstallation, IsNoSuccessWhereSomethingElseStandsThere) {
  makeApplication("Installed.app", "1.0");
  writeSaid("rm: cannot remove it\n");
  expectFault("what stands at " + (folder / "Installed.app") +
              " is not the package: Contents/MacOS/Manager differs\n  rm: cannot remove it\n");
}

TEST_F(WatchOfAnInstallation, IsNoSuccessWhereNothingStandsThere) {
  std::filesystem::remove_all(folder / "Installed.app");
  expectFault("no application stands at " + (folder / "Installed.app") + ": ");
}

TEST_F(WatchOfAnInstallation, WithoutABundleSaysThatItWasNotCompared) {
  options.bundle = "";
  expectFault(
      "whether the application was replaced is not known: the worker's result tells nothing of it, "
      "and no bundle is given. Look at the application; ");
}

TEST_F(WatchOfAnInstallation, WithoutABundleTheSharedSettingsTellThatNothingStandsThere) {
  options.bundle = "";
  folder.write("shared/utility/config/setting.json", R"({"AppPath": "/no/Manager.app"})");
  expectFault("no application stands at /no/Manager.app: ");
}

TEST_F(WatchOfAnInstallation, OfNoPackageIsNoSuccess) {
  const std::string notCompared =
      ". What stands at " + (folder / "Installed.app") + " was not compared with it\n";
  writeInstallation("");
  expectFault("the path of its package is empty" + notCompared);
  messages.str("");
  writeInstallation("/etc");
  expectFault("its package, /etc, is no application bundle: it has no folder Contents" +
              notCompared);
  messages.str("");
  writeInstallation("/no/New.app");
  expectFault("its package, /no/New.app, does not exist" + notCompared);
}

TEST_F(WatchOfAnInstallation, TellsMachinesWhatStandsThere) {
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_THAT(shown.str(), EndsWith("{\"log_id\":\"7\",\"console_installation\":{\"path\":\"" +
                                    (folder / "Installed.app") + "\",\"is_package\":true}}\n"));
}

// --- jobs that wait

TEST_F(WatchOfOthers, AJobThatCheckFindsFaultWithIsNotToBeStarted) {
  interrupt = true;
  writeJob("updateFW",
           R"("state_id": "WAIT", "input_parameters": [{"wwn": "A1", "file_path": "/no.img"}])");
  EXPECT_EQ(run(), kInterrupted);
  EXPECT_THAT(shown.str(),
              StartsWith("job 7: waiting, no worker\n"
                         "no worker is seen, and none should be started for the job: the image of "
                         "input_parameters[0], /no.img, does not exist\n"));
}

}  // namespace
}  // namespace kelvane::console
