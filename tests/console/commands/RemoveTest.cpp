// The sub-command remove.

#include <filesystem>
#include <fstream>

#include <sys/stat.h>

#include "console/commands/Remove.h"
#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

constexpr char kJobs[] = R"([
  {
    "log_id": "1",
    "state_id": "FREE"
  },
  {
    "log_id": "2",
    "state_id": "FREE",
    "n": 12345678901234567890123,
    "r": 0.10
  },
  {
    "log_id": "3",
    "state_id": "WAIT"
  },
  {
    "log_id": "4",
    "state_id": "FREE"
  },
  {
    "log_id": 5
  }
])";

class Remove : public ConsoleWorld {
 protected:
  Remove() { folder.write(test::kJobFile, kJobs); }

  int run(const std::vector<std::string>& logIds) {
    return runHere(removeJobs, RemoveOptions{folder / "shared", logIds, false, ""});
  }
  int runFinished(const std::string& keep = "") {
    return runHere(removeJobs, RemoveOptions{folder / "shared", {}, true, keep});
  }
  std::string jobs() const { return folder.read(test::kJobFile); }
  // The log ids that are left, as they stand in the file.
  std::string left() const {
    std::string found;
    const platform::Value records = platform::parseJson(jobs());
    for (const platform::Value& record : records.elements()) {
      found += " " + platform::printJsonLine(record.get("log_id")).value_or("none");
    }
    return found;
  }
};

TEST_F(Remove, TheOtherRecordsStayToTheDigit) {
  EXPECT_EQ(run({"1", "3", "4", "5"}), kSuccess);
  EXPECT_EQ(jobs(), R"([
  {
    "log_id": "2",
    "state_id": "FREE",
    "n": 12345678901234567890123,
    "r": 0.10
  }
])");
  EXPECT_EQ(shown.str(), "removed job 1\nremoved job 3\nremoved job 4\nremoved job 5\n");
}

TEST_F(Remove, AllRecordsOfALogIdGo) {
  folder.write(test::kJobFile, R"([{"log_id": "1"}, {"log_id": "2"}, {"log_id": "1", "n": 1}])");
  EXPECT_EQ(run({"1"}), kSuccess);
  EXPECT_EQ(left(), R"( "2")");
  EXPECT_EQ(shown.str(), "removed job 1 (2 records)\n");
}

TEST_F(Remove, AnEmptyLogIdRemovesNothing) {
  folder.write(test::kJobFile, R"([{"log_id": ""}, {"n": 1}, {"log_id": "2"}])");
  const std::string before = folder.read(test::kJobFile);
  EXPECT_EQ(run({"2", ""}), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: the log id is missing\n");
  EXPECT_EQ(folder.read(test::kJobFile), before);
}

TEST_F(Remove, WhatWasKeptOfStandardErrorGoesToo) {
  for (const char* id : {"1", "2"}) {
    folder.write("shared/utility/logs/standard-error-" + std::string(id) + ".txt", "rm: no\n");
  }
  run({"1"});
  EXPECT_EQ(folder.names("shared/utility/logs"), std::vector<std::string>{"standard-error-2.txt"});
}

TEST_F(Remove, FinishedOnesGoTogether) {
  EXPECT_EQ(runFinished(), kSuccess);
  EXPECT_EQ(left(), R"( "3" 5)");
}

TEST_F(Remove, TheLastFinishedOnesCanStay) {
  EXPECT_EQ(runFinished("2"), kSuccess);
  EXPECT_EQ(left(), R"( "2" "3" "4" 5)");
  EXPECT_EQ(runFinished("1"), kSuccess);
  EXPECT_EQ(left(), R"( "3" "4" 5)");
}

TEST_F(Remove, WhereNothingIsToGoTheFileIsNotWritten) {
  const std::string same = R"([ {"log_id":"3","state_id":"RUN"} ])";
  folder.write(test::kJobFile, same);
  EXPECT_EQ(runFinished(), kSuccess);
  EXPECT_EQ(shown.str(), "nothing to remove\n");
  EXPECT_EQ(jobs(), same);
}

TEST_F(Remove, ForMachinesTellsTheLogIds) {
  screen.json = true;
  EXPECT_EQ(run({"1", "2"}), kSuccess);
  EXPECT_EQ(runFinished("9"), kSuccess);
  EXPECT_EQ(shown.str(), "{\"removed\":[\"1\",\"2\"]}\n{\"removed\":[]}\n");
}

TEST_F(Remove, WhereOneIsNotThereNoneGoes) {
  EXPECT_EQ(run({"1", "9"}), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 9 in " + (folder / test::kJobFile) +
                                "; nothing was removed\n");
  EXPECT_EQ(jobs(), kJobs);
}

TEST_F(Remove, WithoutAJobFileNothingIsMade) {
  std::filesystem::remove_all(folder / "shared/utility");
  EXPECT_EQ(runFinished(), kNotFound);
  EXPECT_FALSE(platform::exists(folder / "shared/utility"));
}

TEST_F(Remove, ADamagedFileIsLeftAlone) {
  folder.write(test::kJobFile, "[{");
  EXPECT_EQ(runFinished(), kJobFileFailed);
  EXPECT_EQ(jobs(), "[{");
}

TEST_F(Remove, WhatIsToGoHasToBeClear) {
  EXPECT_EQ(run({}), kBadUsage);
  EXPECT_EQ(runHere(removeJobs, RemoveOptions{folder / "shared", {"1"}, true, ""}), kBadUsage);
  EXPECT_EQ(runHere(removeJobs, RemoveOptions{folder / "shared", {"1"}, false, "1"}), kBadUsage);
  for (const char* keep : {"-1", "1x", "many", "99999999999999999999"}) {
    EXPECT_EQ(runFinished(keep), kBadUsage) << keep;
  }
  EXPECT_EQ(jobs(), kJobs);
}

TEST_F(Remove, WhileAJobRunsNothingGoes) {
  ASSERT_EQ(::mkfifo((folder / "line").c_str(), 0600), 0);
  makeWorker("read word < " + (folder / "line"));
  const WorkerProcess running(
      {folder / "Manager.app/Contents/Resources/Kelvane", "3", folder / "shared/"});
  std::ofstream line(folder / "line");  // once it reads
  EXPECT_EQ(run({"1"}), kBusy);
  EXPECT_EQ(messages.str(), "kelvane-console: job 3 is running; nothing was removed\n");
  EXPECT_EQ(jobs(), kJobs);
}

TEST_F(Remove, OfRecordsWithoutALogIdTheNumberIsTold) {
  folder.write(test::kJobFile,
               R"([{"state_id": "FREE"}, {"log_id": "2", "state_id": "FREE"},
                   {"state_id": "FREE", "log_id": ""}])");
  EXPECT_EQ(runFinished(""), kSuccess);
  EXPECT_EQ(shown.str(), "removed 2 records without a log id\nremoved job 2\n");
}

}  // namespace
}  // namespace kelvane::console
