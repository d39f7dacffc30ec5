// The sub-command update-sw, with small scripts as workers.

#include <filesystem>

#include "console/commands/UpdateSw.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

class UpdateSw : public ConsoleWorld {
 protected:
  UpdateSw() {
    folder.write("New.app/new", "");
    folder.write("Installed.app/old", "");
    folder.write("Manager.app/Contents/Resources/Config/setting.json",
                 R"({"AppPath": ")" + (folder / "Installed.app") + "\"}");
    options.package = folder / "New.app";
  }

  int run() {
    options.job = job;
    return runHere(updateSw, options);
  }
  void expectRefused(const std::string& message) {
    EXPECT_EQ(run(), kBadUsage);
    EXPECT_EQ(messages.str(), "kelvane-console: " + message + "\n");
    EXPECT_FALSE(platform::exists(folder / test::kJobFile));
  }

  UpdateSwOptions options;
};

TEST_F(UpdateSw, TheWorkerFindsThePackage) {
  makeWorkerThatLooks();
  options.package = std::filesystem::relative(folder / "New.app").string();
  run();
  EXPECT_EQ(seenRecord().get("job_id").string(), "updateSW");
  const std::string path = seenRecord().get("input_parameters").get("file_path").string();
  EXPECT_EQ(path.front(), '/');
  EXPECT_TRUE(std::filesystem::equivalent(path, folder / "New.app"));
}

TEST_F(UpdateSw, TellsWhereTheApplicationStands) {
  makeWorkerThatLeaves("FREE", "0");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shownAtTheEnd(),
            "result 0: the text\ninstalled at " + (folder / "Installed.app") + "\n");
}

TEST_F(UpdateSw, AnApplicationThatIsGoneIsNoSuccess) {
  makeWorkerThatLeaves("FREE", "0");
  std::filesystem::remove_all(folder / "Installed.app");
  EXPECT_EQ(run(), kJobFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: no application stands at " +
                                (folder / "Installed.app") +
                                ": it was removed, and the new one was not copied\n");
}

TEST_F(UpdateSw, WithoutSettingsTheResultCounts) {
  makeWorkerThatLeaves("FREE", "0");
  for (const char* settings : {"", "[]", "{}", R"({"AppPath": 5})"}) {
    folder.write("Manager.app/Contents/Resources/Config/setting.json", settings);
    EXPECT_EQ(run(), kSuccess) << settings;
    std::filesystem::remove_all(folder / "shared/utility");
  }
  std::filesystem::remove_all(folder / "Manager.app/Contents/Resources/Config");
  EXPECT_EQ(run(), kSuccess);
}

TEST_F(UpdateSw, MissingPackageIsRefused) {
  options.package = "/nowhere/New.app";
  expectRefused("package /nowhere/New.app does not exist");
}

TEST_F(UpdateSw, FileIsNoApplicationBundle) {
  options.package = folder.write("New.dmg", "");
  expectRefused("package " + options.package + " is no application bundle: it is a file");
}

TEST_F(UpdateSw, PackageInsideTheReplacedApplicationIsRefused) {
  for (const char* inside : {"Installed.app", "Installed.app/Contents/New.app"}) {
    options.package = folder / inside;
    std::filesystem::create_directories(options.package);
    messages.str("");
    expectRefused("package " + options.package + " lies in the application at " +
                  (folder / "Installed.app") + " and would be removed with it");
  }
}

TEST_F(UpdateSw, PackageWhoseNameOnlyBeginsAlikeIsNot) {
  makeWorkerThatLeaves("FREE", "0");
  options.package = folder / "Installed.app.new";
  std::filesystem::create_directories(options.package);
  EXPECT_EQ(run(), kSuccess);
}

}  // namespace
}  // namespace kelvane::console
