// Workers that someone else started, as processes of the system.

#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "console/job/Processes.h"
#include "console/job/Worker.h"
#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

class Processes : public ::testing::Test {
 protected:
  Processes() {
    ::mkfifo((folder / "18").c_str(), 0600);
    setState("RUN");
  }
  ~Processes() override { end(); }

  // A process that is called by this name with the log id 18 and this shared folder, and lives
  // until end(): it reads the pipe "18" in its current folder.
  void start(const std::string& name, const std::string& shared) {
    process_ = ::fork();
    if (process_ == 0) {
      if (::chdir(folder.path().c_str()) != 0) ::_exit(126);
      const char* last = shared.empty() ? nullptr : shared.c_str();
      ::execl("/bin/cat", name.c_str(), "18", last, nullptr);
      ::_exit(127);
    }
    line_.open(folder / "18");  // once it is there and reads
  }
  void end() {
    line_.close();
    if (process_ > 0) ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }
  void setState(const std::string& state) const {
    folder.write(test::kJobFile, R"([{"log_id": "18", "state_id": ")" + state + "\"}]");
  }
  bool runs(const std::string& logId = "18") const { return workerRuns(logId, folder / "shared/"); }
  platform::Value records() const { return platform::parseJson(folder.read(test::kJobFile)); }
  std::string running() const {
    return runningJob(folder / "shared/", records(), platform::runningProcesses());
  }
  bool hasEnded() const { return ForeignWorker("18", folder / "shared/").hasEnded(); }

  test::TempFolder folder;
  pid_t process_ = 0;

 private:
  std::ofstream line_;
};

TEST_F(Processes, AWorkerIsFoundByItsNameJobAndFolder) {
  EXPECT_FALSE(runs());
  start("/any/where/Kelvane", folder / "shared/");
  EXPECT_TRUE(runs());
  EXPECT_FALSE(runs("17"));
  EXPECT_FALSE(workerRuns("18", folder / ""));
  end();
  EXPECT_FALSE(runs());
}

TEST_F(Processes, TheSharedFolderMayBeWrittenInAnyWay) {
  for (const char* spelling : {"shared", "./shared/", "shared//."}) {
    start("Kelvane", spelling);
    EXPECT_TRUE(runs()) << spelling;
    end();
  }
}

TEST_F(Processes, UnderAnotherNameItIsTheSameWorker) {
  start("/any/where/Worker-2", folder / "shared/");
  EXPECT_TRUE(runs());
}

TEST_F(Processes, WithoutAFolderItWorksInItsCurrentOneAndIsKnownByItsName) {
  start("Kelvane", "");
  EXPECT_TRUE(workerRuns("18", folder / ""));
  EXPECT_FALSE(runs());
  end();
  start("cat", "");
  EXPECT_FALSE(workerRuns("18", folder / ""));
}

TEST_F(Processes, TheRunningJobIsTheOneWhoseWorkerIsSeen) {
  EXPECT_EQ(running(), "");
  start("/any/where/Worker-2", "shared");
  EXPECT_EQ(running(), "18");
  EXPECT_EQ(runningJob(folder / "", records(), platform::runningProcesses()), "");
}

TEST_F(Processes, AWaitingJobWithAWorkerRuns) {
  setState("WAIT");
  start("/any/where/Worker-2", "shared");
  EXPECT_EQ(running(), "18");
}

TEST_F(Processes, AFinishedJobDoesNotRunThoughItsWorkerIsThere) {
  setState("FREE");
  start("Kelvane", "shared");
  EXPECT_EQ(running(), "");
}

TEST_F(Processes, OfAJobThatTheFileHasNotTheWorkerIsKnownByItsName) {
  folder.write(test::kJobFile, "[5]");
  start("/any/where/Kelvane", "shared");
  EXPECT_EQ(running(), "18");
  end();
  start("/any/where/Worker-2", "shared");
  EXPECT_EQ(running(), "");
}

TEST_F(Processes, ForeignWorkerHasEndedWhenNoneRunsAndTheJobIsInRun) {
  EXPECT_TRUE(hasEnded());
  start("Kelvane", folder / "shared/");
  EXPECT_FALSE(hasEnded());
}

TEST_F(Processes, BeforeRunAWorkerMayStillBeStarted) {
  setState("WAIT");
  EXPECT_FALSE(hasEnded());
}

TEST_F(Processes, WithoutItsRecordAJobThatNobodyRunsIsOver) {
  folder.write(test::kJobFile, "[");
  EXPECT_TRUE(hasEnded());
  setState("DONE");
  EXPECT_TRUE(hasEnded());
}

}  // namespace
}  // namespace kelvane::console
