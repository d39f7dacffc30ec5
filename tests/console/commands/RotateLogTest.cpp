// log --rotate.

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

#include "console/commands/RotateLog.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/support/OrdinaryUser.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kThreshold = 104'857'600;
constexpr char kLogs[] = "shared/utility/logs";

class RotateLog : public ConsoleWorld {
 protected:
  RotateLog() { makeLog(kThreshold); }

  // A sparse file: it has its size without its blocks.
  void makeLog(std::uint64_t size) const {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "start");
    fs::resize_file(log(), size);
  }
  std::string log() const { return folder / "shared/utility/logs/TarselVistrelUtility.txt"; }
  std::string generation() const {
    return folder / "shared/utility/logs/TarselVistrelUtility(1).txt";
  }
  int run() { return runHere(rotateLog, RotateLogOptions{folder / "shared"}); }
};

TEST_F(RotateLog, MovesALargeLogToItsNextGeneration) {
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "the log was moved to " + generation() + "\n");
  EXPECT_EQ(fs::file_size(generation()), kThreshold);
  EXPECT_EQ(fs::file_size(log()), 0U);
}

TEST_F(RotateLog, ForMachinesNamesTheGeneration) {
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  const platform::Value told = platform::parseJson(shown.str());
  EXPECT_TRUE(told.get("rotated").truth());
  EXPECT_EQ(told.get("generation"), platform::Value(generation()));
}

TEST_F(RotateLog, LeavesASmallerLogAlone) {
  makeLog(kThreshold - 1);
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), log() + " has 104857599 bytes; it is rotated from 104857600 bytes on\n");
  screen.json = true;
  shown.str("");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "{\"rotated\":false,\"size\":104857599}\n");
  EXPECT_EQ(folder.names(kLogs).size(), 1U);
}

TEST_F(RotateLog, TheNewLogHasTheOldOnesPermissions) {
  ::chmod(log().c_str(), 0662);
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(static_cast<unsigned>(fs::status(log()).permissions()), 0662U);
}

TEST_F(RotateLog, ASharedFolderMayBeGivenFromTheCurrentOne) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  EXPECT_EQ(runHere(rotateLog, RotateLogOptions{"shared"}), kSuccess);
  fs::current_path(before);
  EXPECT_TRUE(fs::exists(generation()));
}

TEST_F(RotateLog, IsRefusedWhileAWorkerRuns) {
  folder.write(test::kJobFile, R"([{"log_id": "17", "state_id": "RUN"}])");
  ASSERT_EQ(::mkfifo((folder / "line").c_str(), 0600), 0);
  makeWorker("read word < " + (folder / "line"));
  const WorkerProcess running(
      {folder / "Manager.app/Contents/Resources/Kelvane", "17", folder / "shared/"});
  std::ofstream line(folder / "line");  // once it reads
  EXPECT_EQ(run(), kBusy);
  EXPECT_EQ(messages.str(), "kelvane-console: job 17 is running; the log was not rotated\n");
  EXPECT_EQ(fs::file_size(log()), kThreshold);
}

TEST_F(RotateLog, WithAllGenerationsTakenTheLogStays) {
  for (int n = 1; n <= 100; ++n) {
    std::string name = "shared/utility/logs/TarselVistrelUtility(";
    folder.write(name.append(std::to_string(n)).append(").txt"), "");
  }
  EXPECT_EQ(run(), kNotRotated);
  EXPECT_EQ(messages.str(),
            "kelvane-console: all 100 generations of " + log() + " are there; move some away\n");
  EXPECT_EQ(fs::file_size(log()), kThreshold);
}

TEST_F(RotateLog, AFolderThatCannotBeChangedIsToldBeforeTheLogIsEmptied) {
  const test::PermissionBits open(folder.path(), 0755);
  const test::PermissionBits command(folder / "shared/utility", 0777);
  const test::PermissionBits own(log(), 0666);
  const std::string told = test::asOrdinaryUser([this] {
    const int exitCode = run();
    return std::to_string(exitCode) + " " + messages.str();
  });
  EXPECT_EQ(told, std::to_string(kNotRotated) + " kelvane-console: the log cannot be moved: " +
                      (folder / kLogs) + ": Permission denied\n");
  EXPECT_EQ(fs::file_size(log()), kThreshold);
}

TEST_F(RotateLog, WithoutALogThereIsNothingToRotate) {
  fs::remove(log());
  EXPECT_EQ(run(), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: " + log() + " does not exist\n");
  messages.str("");
  fs::create_directory(log());
  EXPECT_EQ(run(), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: " + log() + " is no regular file\n");
}

}  // namespace
}  // namespace kelvane::console
