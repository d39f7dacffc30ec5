// The lock among consoles. Two locks of one process keep each other away as those of two do.

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "console/job/JobFileLock.h"
#include "console/job/Worker.h"
#include "platform/Json.h"
#include "tests/support/SystemCallKiller.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

constexpr char kLocked[] = "utility/command/BGPLog.json";

class JobFileLockTest : public ::testing::Test, public Clock {
 protected:
  std::chrono::milliseconds now() override { return time; }
  bool wait(std::chrono::milliseconds step) override {
    time += step;
    if (time >= releasedAt) held.reset();
    return !interrupt;
  }

  std::unique_ptr<JobFileLock> lock(const std::string& path) {
    return std::make_unique<JobFileLock>(path, *this);
  }
  // The exit code that locking ends the console with; 0 where the lock was had.
  int codeOfLocking() {
    try {
      lock(folder / kLocked);
    } catch (const Failure& failure) {
      message = failure.what();
      return failure.exitCode();
    }
    return 0;
  }

  test::TempFolder folder;
  std::unique_ptr<JobFileLock> held;  // another console's
  std::chrono::milliseconds time{0};
  std::chrono::milliseconds releasedAt{std::chrono::hours(1)};
  bool interrupt = false;
  std::string message;
};

TEST_F(JobFileLockTest, IsHadAtOnceAndStaysAsAnEmptyFile) {
  EXPECT_EQ(codeOfLocking(), 0);
  EXPECT_EQ(codeOfLocking(), 0);
  EXPECT_EQ(time.count(), 0);
  EXPECT_EQ(folder.names("utility/command"), std::vector<std::string>{"BGPLog.json.lock"});
  EXPECT_EQ(folder.read("utility/command/BGPLog.json.lock"), "");
}

TEST_F(JobFileLockTest, WaitsForTheOtherConsole) {
  held = lock(folder / kLocked);
  releasedAt = std::chrono::milliseconds(500);
  EXPECT_EQ(codeOfLocking(), 0);
  EXPECT_EQ(time, releasedAt);
}

TEST_F(JobFileLockTest, AConsoleThatWasStoppedIsNotWaitedForForEver) {
  held = lock(folder / kLocked);
  EXPECT_EQ(codeOfLocking(), kBusy);
  EXPECT_EQ(message, "another program keeps the job file locked (" + (folder / kLocked) +
                         ".lock); nothing was changed");
}

TEST_F(JobFileLockTest, AnInterruptEndsTheWaiting) {
  held = lock(folder / kLocked);
  interrupt = true;
  EXPECT_EQ(codeOfLocking(), kInterrupted);
}

TEST_F(JobFileLockTest, OfALinkIsBesideTheFileItLeadsTo) {
  folder.write("real/jobs.json", "[]");
  std::filesystem::create_directories(folder / "utility/command");
  std::filesystem::create_symlink(folder / "real/jobs.json", folder / kLocked);
  held = lock(folder / kLocked);
  EXPECT_EQ(folder.names("real"), (std::vector<std::string>{"jobs.json", "jobs.json.lock"}));
  EXPECT_THROW(lock(folder / "real/jobs.json"), Failure);
}

TEST_F(JobFileLockTest, WhereNoFileCanBeMadeTellsPathAndCause) {
  folder.write("utility", "a file");
  EXPECT_EQ(codeOfLocking(), kJobFileFailed);
  EXPECT_EQ(message,
            "the job file cannot be locked: " + (folder / kLocked) + ".lock: Not a directory");
}

TEST_F(JobFileLockTest, TheWorkerDoesNotKeepIt) {
  ASSERT_EQ(::mkfifo((folder / "line").c_str(), 0600), 0);
  held = lock(folder / kLocked);
  const WorkerProcess worker({"/bin/cat", folder / "line", "/dev/null"});
  std::ofstream line(folder / "line");  // once it reads
  held.reset();
  EXPECT_EQ(codeOfLocking(), 0);
  line.close();
  ::wait(nullptr);
}

// An addition, killed before each of its system calls.
TEST_F(JobFileLockTest, AKilledConsoleLeavesTheFileWholeAndNoLock) {
  const NewJob job{"", "updateFW", platform::parseJson("[]")};
  std::set<std::string> seen;
  for (int n = 1;; ++n) {
    folder.write(kLocked, "[]");
    const bool killed = test::killedBeforeSystemCall(n, [&] {
      const JobFileLock lock(folder / kLocked, *this);
      JobFile(folder / "").add(job);
    });
    EXPECT_EQ(codeOfLocking(), 0) << "killed before system call " << n;
    seen.insert(folder.read(kLocked));
    if (!killed) break;
  }
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(*seen.begin(), folder.read(kLocked));  // the whole of it, with the record
  EXPECT_EQ(*seen.rbegin(), "[]");
}

TEST_F(JobFileLockTest, ALongWaitingIsToldOnce) {
  int told = 0;
  for (const int releaseTime : {900, 4000}) {
    held = lock(folder / kLocked);
    time = std::chrono::milliseconds(0);
    releasedAt = std::chrono::milliseconds(releaseTime);
    const JobFileLock had(folder / kLocked, *this, [&told] { ++told; });
    EXPECT_EQ(told, releaseTime < 1000 ? 0 : 1);
  }
}

}  // namespace
}  // namespace kelvane::console
