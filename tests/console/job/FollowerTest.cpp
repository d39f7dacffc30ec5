// Following a job over scripted versions of its file, one per look; no time passes.

#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/display/PlainView.h"
#include "console/job/Follower.h"
#include "platform/Json.h"
#include "tests/console/explain/LogOfFlashes.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

constexpr char kMissing[] = "missing";

class ScriptedWorker : public Worker {
 public:
  bool hasEnded() override { return ended; }
  std::string ending() const override { return ""; }
  bool ended = false;
};

// A job file that has its next version at each wait; the last version stays.
class Follower : public ::testing::Test, public Clock {
 protected:
  Followed followVersions(std::vector<std::string> versions) {
    versions_ = std::move(versions);
    putVersion();
    return follow(JobFile(folder / ""), "18", worker, *this, view, isMeant, past);
  }

  std::chrono::milliseconds now() override { return time; }
  bool wait(std::chrono::milliseconds step) override {
    waits.push_back(step);
    time += step;
    putVersion();
    if (waits.size() == workerEndsAtWait) worker.ended = true;
    if (waits.size() > 1000) throw std::runtime_error("follows for ever");
    return waits.size() != interruptedAtWait;
  }

  static std::string job(const std::string& rest) {
    return R"([{"log_id": "17", "state_id": "FREE"}, {"log_id": "18", )" + rest + "}]";
  }
  static std::string running(int cpld, int firmware, int total) {
    return job(R"("state_id": "RUN", "output": )" + output(cpld, firmware, total));
  }
  static std::string finished(const std::string& result, const std::string& text) {
    return job(R"("state_id": "FREE", "output": )" + output(100, 100, 100) + R"(, "result": )" +
               result + R"(, "resultStr": ")" + text + "\"");
  }
  static std::string waiting() {
    return job(R"("state_id": "WAIT", "input_parameters": [{"wwn": "5000A1"}])");
  }

  JobFile::IsMeant isMeant;
  Past past;
  std::size_t workerEndsAtWait = 0;
  std::size_t interruptedAtWait = 0;
  std::chrono::milliseconds time{1'000'000};
  std::vector<std::chrono::milliseconds> waits;
  test::TempFolder folder;
  ScriptedWorker worker;
  std::ostringstream shown;
  PlainView view{shown, Charset::utf8};

 private:
  static std::string output(int cpld, int firmware, int total) {
    return R"([{"wwn": "5000A1", "cpld_percentage": )" + std::to_string(cpld) +
           R"(, "fw_percentage": )" + std::to_string(firmware) + R"(, "total_percentage": )" +
           std::to_string(total) + "}]";
  }

  void putVersion() {
    if (next_ == versions_.size()) return;
    const std::string& version = versions_[next_++];
    if (version == kMissing) {
      std::filesystem::remove(folder / "utility/command/BGPLog.json");
    } else {
      folder.write("utility/command/BGPLog.json", version);
    }
  }

  std::vector<std::string> versions_;
  std::size_t next_ = 0;
};

TEST_F(Follower, ShowsEachChangeAndTheResult) {
  const Followed followed =
      followVersions({waiting(), waiting(), running(0, 0, 0), running(50, 0, 25),
                      running(50, 0, 25), running(100, 37, 68), finished("0", "no error")});
  EXPECT_EQ(followed.outcome, Outcome::finished);
  EXPECT_TRUE(followed.last.status.hasSucceeded());
  EXPECT_EQ(shown.str(),
            "job 18: waiting\n"
            "5000A1  cpld 0%  firmware 0%  total 0%\n"
            "job 18: running\n"
            "5000A1  cpld 50%  firmware 0%  total 25%\n"
            "5000A1  cpld 100%  firmware 37%  total 68%\n"
            "5000A1  cpld 100%  firmware 100%  total 100%\n"
            "result 0: no error\n");
  EXPECT_EQ(waits, std::vector<std::chrono::milliseconds>(6, std::chrono::milliseconds(200)));
}

TEST_F(Follower, FailedJobIsFinishedWithItsResult) {
  const Followed followed =
      followVersions({running(100, 10, 55), finished("32852", "flash error")});
  EXPECT_EQ(followed.outcome, Outcome::finished);
  EXPECT_FALSE(followed.last.status.hasSucceeded());
  EXPECT_EQ(followed.last.status.result, "32852");
}

TEST_F(Follower, ARecordThatIsAnotherJobIsNeitherShownNorTaken) {
  isMeant = [](const platform::Value& record) { return !record.has("other"); };
  worker.ended = true;
  const Followed followed = followVersions({job(R"("other": 1, "state_id": "FREE", "result": 0)")});
  EXPECT_EQ(followed.outcome, Outcome::recordLost);
  EXPECT_EQ(shown.str(), "");
}

TEST_F(Follower, MissingOrDamagedFileIsPassedOver) {
  const Followed followed = followVersions({running(10, 0, 5), kMissing, "", "[{\"log_id\"", "[]",
                                            running(20, 0, 10), finished("0", "no error")});
  EXPECT_EQ(followed.outcome, Outcome::finished);
  EXPECT_EQ(shown.str(),
            "job 18: running\n"
            "5000A1  cpld 10%  firmware 0%  total 5%\n"
            "5000A1  cpld 20%  firmware 0%  total 10%\n"
            "5000A1  cpld 100%  firmware 100%  total 100%\n"
            "result 0: no error\n");
}

TEST_F(Follower, RunningWorkerIsFollowedHoweverLongTheFileIsMissing) {
  std::vector<std::string> versions(100, kMissing);
  versions.push_back(finished("0", "no error"));
  EXPECT_EQ(followVersions(versions).outcome, Outcome::finished);
  EXPECT_EQ(waits.size(), 100U);
}

TEST_F(Follower, WorkerThatEndsInWaitLeavesTheJobUnfinished) {
  workerEndsAtWait = 1;
  const Followed followed = followVersions({waiting()});
  EXPECT_EQ(followed.outcome, Outcome::workerEnded);
  EXPECT_EQ(followed.last.status.state, "WAIT");
}

TEST_F(Follower, WorkerThatEndsInRunLeavesTheJobUnfinished) {
  workerEndsAtWait = 2;
  const Followed followed = followVersions({waiting(), running(0, 0, 0), running(50, 0, 25)});
  EXPECT_EQ(followed.outcome, Outcome::workerEnded);
  EXPECT_EQ(followed.last.status.state, "RUN");
  EXPECT_EQ(followed.last.status.controllers,
            (std::vector<ControllerStatus>{{"5000A1", 50, 0, 25, Standing::stopped}}));
}

TEST_F(Follower, WhatTheWorkerWroteLastIsSeenAfterItsEnd) {
  workerEndsAtWait = 1;
  EXPECT_EQ(followVersions({running(0, 0, 0), finished("0", "no error")}).outcome,
            Outcome::finished);
}

// The job is finished while the follower asks whether the worker has ended.
TEST_F(Follower, FileIsReadAfterTheEndIsSeen) {
  class EndsWhileAsked : public Worker {
   public:
    explicit EndsWhileAsked(std::function<void()> finish) : finish_(std::move(finish)) {}
    bool hasEnded() override {
      finish_();
      return true;
    }
    std::string ending() const override { return ""; }

   private:
    std::function<void()> finish_;
  };
  folder.write("utility/command/BGPLog.json", running(100, 99, 99));
  EndsWhileAsked ending(
      [this] { folder.write("utility/command/BGPLog.json", finished("0", "no error")); });
  EXPECT_EQ(follow(JobFile(folder / ""), "18", ending, *this, view).outcome, Outcome::finished);
}

TEST_F(Follower, FileMissingForAMomentAfterTheEndIsPassedOver) {
  worker.ended = true;
  EXPECT_EQ(followVersions({kMissing, "[", finished("0", "no error")}).outcome, Outcome::finished);
}

TEST_F(Follower, RecordMissingAfterTheEndIsLost) {
  worker.ended = true;
  EXPECT_EQ(followVersions({"[]"}).outcome, Outcome::recordLost);
  EXPECT_EQ(waits.size(), 4U);
  EXPECT_EQ(shown.str(), "");
}

TEST_F(Follower, InterruptLeavesTheWorkerAlone) {
  interruptedAtWait = 2;
  const Followed followed = followVersions({waiting(), running(0, 0, 0), running(50, 0, 25)});
  EXPECT_EQ(followed.outcome, Outcome::interrupted);
  EXPECT_EQ(followed.last.status.state, "RUN");
}

TEST_F(Follower, TellsTheTimeSinceTheStartAndSinceTheLastChange) {
  interruptedAtWait = 5;
  past = pastOfNewJob(*this);
  const Followed followed =
      followVersions({waiting(), running(0, 0, 0), running(0, 0, 0), kMissing, running(0, 0, 0)});
  EXPECT_EQ(followed.last.elapsed, std::chrono::milliseconds(800));
  EXPECT_EQ(followed.last.silence, std::chrono::milliseconds(600));
}

TEST_F(Follower, AJobThatWaitedBeginsWhenItRuns) {
  interruptedAtWait = 5;
  const Followed followed = followVersions({waiting(), running(0, 0, 0)});
  EXPECT_EQ(followed.last.elapsed, std::chrono::milliseconds(600));
  EXPECT_EQ(followed.last.followed, std::chrono::milliseconds(800));
}

TEST_F(Follower, OfAJobThatRanAlreadyTheBeginningIsNotKnown) {
  interruptedAtWait = 2;
  EXPECT_FALSE(followVersions({running(0, 0, 0)}).last.elapsed);
}

// A job that has been running for a minute, with a percent a second up to ten seconds ago.
class FollowedLate : public Follower {
 protected:
  FollowedLate() {
    interruptedAtWait = 5;
    past.start = time - std::chrono::minutes(1);
    for (int second = 40; second <= 50; ++second) {
      const auto file = platform::parseJson(running(0, second, 50 + second / 2));
      past.moments.push_back({*past.start + std::chrono::seconds(second), file.at(1)});
    }
  }
};

TEST_F(FollowedLate, TakesTimeAndSilenceOver) {
  const Followed followed = followVersions({running(0, 50, 75)});
  EXPECT_EQ(followed.last.elapsed, std::chrono::milliseconds(60'800));
  EXPECT_EQ(followed.last.silence, std::chrono::milliseconds(10'800));
  EXPECT_EQ(followed.last.left, std::nullopt);
}

TEST_F(FollowedLate, TakesThePaceOver) {
  const Followed followed = followVersions({running(0, 51, 75)});
  EXPECT_EQ(followed.last.silence, std::chrono::milliseconds(800));
  ASSERT_TRUE(followed.last.left);
  EXPECT_EQ(followed.last.left->ofPhase, std::chrono::milliseconds(48'200));
}

TEST_F(Follower, AFinishedJobHasItsPhases) {
  std::vector<std::string> versions = {waiting()};
  for (int percent = 10; percent < 100; percent += 10) versions.push_back(running(percent, 0, 5));
  versions.push_back(running(100, 0, 50));
  for (int percent = 10; percent < 100; percent += 10) {
    versions.push_back(running(100, percent, 75));
  }
  versions.push_back(finished("0", "no error"));
  EXPECT_EQ(followVersions(versions).last.times,
            (std::vector<ControllerTimes>{{"5000A1",
                                           {{"CPLD", std::chrono::milliseconds(2000)},
                                            {"firmware", std::chrono::milliseconds(2000)}}}}));
}

TEST_F(Follower, LastLookHoldsTheRecord) {
  const Followed followed = followVersions({finished("0", "no error")});
  EXPECT_EQ(followed.last.record.get("resultStr").string(), "no error");
}

TEST_F(Follower, WhatTheRecordDoesNotTellOfTheEndTheLogDoes) {
  const std::string record = R"({"log_id": "18", "job_id": "updateFW", "state_id": "FREE",
      "result": 32852, "resultStr": "x", "input_parameters": [{"wwn": "A1", "file_path": "/a"}],
      "output": [{"wwn": "A1", "cpld_percentage": 100, "fw_percentage": 100,
                  "total_percentage": 100}]})";
  past.log = [](const platform::Value& found) {
    return test::stretchWith(found,
                             test::controllerLines("/a") + test::writtenLine("18", "A1", 80) +
                                 test::logLine("updateFW", "Flash Error") + test::endLine("18"));
  };
  const Followed followed = followVersions({"[" + record + "]"});
  ASSERT_EQ(followed.last.status.controllers.size(), 1U);
  EXPECT_EQ(followed.last.status.controllers[0].firmware, 80);
  EXPECT_EQ(followed.last.status.controllers[0].total, 90);
}

}  // namespace
}  // namespace kelvane::console
