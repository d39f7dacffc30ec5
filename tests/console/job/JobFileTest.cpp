// Adding jobs to the job file and finding them there.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "console/job/ExitCode.h"
#include "console/job/JobFile.h"
#include "platform/Json.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;

constexpr char kPath[] = "utility/command/BGPLog.json";

class JobFileTest : public ::testing::Test {
 protected:
  NewJob firmwareJob(const std::string& logId = "") const {
    return {logId, "updateFW", parseJson(R"([{"wwn": "5000A1", "file_path": "/images/a b.img"}])")};
  }
  // The exit code that adding the job would end the console with; 0 where it was added.
  int codeOfAdding(const NewJob& job) const {
    try {
      file.add(job);
    } catch (const Failure& failure) {
      return failure.exitCode();
    }
    return 0;
  }

  test::TempFolder folder;
  JobFile file{folder / ""};
};

TEST_F(JobFileTest, FirstJobMakesFileAndFolders) {
  EXPECT_EQ(file.add(firmwareJob()).get("log_id"), Value("1"));
  EXPECT_EQ(folder.read(kPath), R"([
  {
    "log_id": "1",
    "job_id": "updateFW",
    "state_id": "WAIT",
    "input_parameters": [
      {
        "wwn": "5000A1",
        "file_path": "/images/a b.img"
      }
    ]
  }
])");
}

TEST_F(JobFileTest, OtherRecordsStayAsTheyAre) {
  folder.write(kPath, R"([
  {
    "log_id": "17",
    "note": "Gerät 💾 \u0001",
    "serial": 12345678901234567890123,
    "ratio": 0.10,
    "nested": {"z": [1e3, null, true], "a": {}},
    "state_id": "FREE"
  }
])");
  EXPECT_EQ(file.add(firmwareJob()).get("log_id"), Value("18"));
  const std::string expectedStart = R"([
  {
    "log_id": "17",
    "note": "Gerät 💾 \u0001",
    "serial": 12345678901234567890123,
    "ratio": 0.10,
    "nested": {
      "z": [
        1e3,
        null,
        true
      ],
      "a": {}
    },
    "state_id": "FREE"
  },
  {
    "log_id": "18",
)";
  EXPECT_EQ(folder.read(kPath).substr(0, expectedStart.size()), expectedStart);
}

TEST_F(JobFileTest, DamagedFileIsRefusedAndLeftAlone) {
  for (const std::string damaged : {"", "[", "{\"log_id\": \"1\"}", "[{}],", "null"}) {
    folder.write(kPath, damaged);
    EXPECT_EQ(codeOfAdding(firmwareJob()), kJobFileFailed) << damaged;
    EXPECT_EQ(folder.read(kPath), damaged);
  }
}

TEST_F(JobFileTest, FolderInThePlaceOfTheFileIsRefused) {
  folder.write(std::string(kPath) + "/inside", "");
  EXPECT_EQ(codeOfAdding(firmwareJob()), kJobFileFailed);
}

TEST_F(JobFileTest, FileInThePlaceOfItsFolderIsRefused) {
  folder.write("utility", "mine");
  EXPECT_EQ(codeOfAdding(firmwareJob()), kJobFileFailed);
  EXPECT_EQ(folder.read("utility"), "mine");
}

TEST_F(JobFileTest, FileThatCannotBeWrittenIsRefused) {
  std::filesystem::create_directories(folder / "utility/command");
  std::filesystem::create_symlink("BGPLog.json", folder / kPath);  // leads to itself
  EXPECT_EQ(codeOfAdding(firmwareJob()), kJobFileFailed);
}

TEST_F(JobFileTest, LogIdThatTheFileHoldsIsRefusedInEveryState) {
  for (const std::string state : {"\"WAIT\"", "\"RUN\"", "\"FREE\"", "5"}) {
    const std::string text = R"([{"log_id": "7", "state_id": )" + state + "}]";
    folder.write(kPath, text);
    EXPECT_EQ(codeOfAdding(firmwareJob("7")), kBadUsage) << state;
    EXPECT_EQ(folder.read(kPath), text);
  }
}

TEST_F(JobFileTest, RecordThatKeepsTheWorkerFromWritingIsRefused) {
  for (const std::string bad : {"{\"log_id\": 9}", "{\"log_id\": null}", "5", "\"text\""}) {
    const std::string text = "[{}, " + bad + "]";
    folder.write(kPath, text);
    EXPECT_EQ(codeOfAdding(firmwareJob()), kJobFileFailed) << bad;
    EXPECT_EQ(folder.read(kPath), text);
  }
}

TEST_F(JobFileTest, TheRefusalNamesTheRecordAndSaysWhatToDo) {
  folder.write(kPath, R"([{}, {"log_id": 9}])");
  try {
    file.add(firmwareJob());
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_STREQ(failure.what(),
                 ((folder / kPath) +
                  ": [1] has a log_id that is no string: 9. While it stands there, the worker can "
                  "write of no job how it goes and what became of it. Write it as a string, such "
                  "as \"17\", or remove the record")
                     .c_str());
  }
}

// --- another program that knows no lock

TEST_F(JobFileTest, WhatIsWrittenBetweenReadingAndWritingIsNotLost) {
  folder.write(kPath, "[]");
  int asked = 0;
  const auto add = [&](const Value& records) {
    if (++asked == 1) folder.write(kPath, R"([{"log_id": "1", "from": "the application"}])");
    Value all = records;
    all.append(Value::dictionary({{"log_id", nextLogId(records)}}));
    return all;
  };
  file.change(add, [](const Value& /*records*/) { return true; });
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(parseJson(folder.read(kPath)),
            parseJson(R"([{"log_id": "1", "from": "the application"}, {"log_id": "2"}])"));
}

TEST_F(JobFileTest, AChangeThatIsNotFoundAfterwardsIsMadeAgain) {
  int verified = 0;
  file.change([](const Value& records) { return records; },
              [&](const Value& /*records*/) { return ++verified == 3; });
  EXPECT_EQ(verified, 3);
}

TEST_F(JobFileTest, AProgramThatWritesWithoutEndIsTold) {
  int written = 0;
  std::string other = "[]";
  const auto disturbed = [&](const Value& records) {
    ++written;
    folder.write(kPath, other += ' ');
    return records;
  };
  try {
    file.change(disturbed, [](const Value& /*records*/) { return true; });
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.exitCode(), kJobFileFailed);
    EXPECT_EQ(written, kMostWrites);
  }
}

TEST_F(JobFileTest, NothingToChangeWritesNothing) {
  file.change([](const Value& /*records*/) { return Value(); },
              [](const Value& /*records*/) { return false; });
  EXPECT_FALSE(std::filesystem::exists(folder / kPath));
}

TEST_F(JobFileTest, AJobIsTheSameWhateverTheWorkerHasWrittenIntoIt) {
  const Value added = file.add(firmwareJob());
  Value finished = added;
  finished.setAll(parseJson(R"({"state_id": "FREE", "result": 0, "output": []})"));
  EXPECT_TRUE(isSameJob(finished, added));
  Value other = added;
  other.set("input_parameters",
            parseJson(R"([{"wwn": "5000A2", "file_path": "/images/a b.img"}])"));
  EXPECT_FALSE(isSameJob(other, added));
  other = added;
  other.set("job_id", "updateSW");
  EXPECT_FALSE(isSameJob(other, added));
}

// --- finding

TEST_F(JobFileTest, FindsTheRecordOfALogId) {
  folder.write(kPath, R"([4, {"log_id": 7}, {"log_id": "7", "n": 1}, {"log_id": "8", "n": 2}])");
  EXPECT_EQ(file.find("7"), parseJson(R"({"log_id": "7", "n": 1})"));
  EXPECT_TRUE(file.find("9").isNothing());
}

TEST_F(JobFileTest, OfSeveralRecordsFindsTheOneThatIsMeant) {
  folder.write(kPath, R"([{"log_id": "7", "n": 1}, {"log_id": "7", "n": 2}])");
  EXPECT_EQ(file.find("7").get("n"), Value::integer(2));
  const auto isFirst = [](const Value& record) { return record.get("n") == Value::integer(1); };
  EXPECT_EQ(file.find("7", isFirst).get("n"), Value::integer(1));
}

TEST_F(JobFileTest, FindsNothingInAMissingOrDamagedFile) {
  EXPECT_TRUE(file.find("7").isNothing());
  for (const std::string damaged : {"", "[{\"log_id\": \"7\"}", "{\"log_id\": \"7\"}"}) {
    folder.write(kPath, damaged);
    EXPECT_TRUE(file.find("7").isNothing()) << damaged;
  }
}

struct Choice {
  const char* records;
  const char* logId;
};

class NextLogId : public ::testing::TestWithParam<Choice> {};

TEST_P(NextLogId, IsAboveAllNumbers) {
  EXPECT_EQ(nextLogId(parseJson(GetParam().records)), GetParam().logId) << GetParam().records;
}

INSTANTIATE_TEST_SUITE_P(
    All, NextLogId,
    ::testing::Values(Choice{"[]", "1"}, Choice{R"([{"log_id": "17"}, {"log_id": "3"}])", "18"},
                      Choice{R"([{"log_id": "9"}, {"log_id": "10"}])", "11"},
                      Choice{R"([{"log_id": "99"}])", "100"}, Choice{R"([{"log_id": "0"}])", "1"},
                      Choice{R"([{"log_id": "007"}])", "8"}, Choice{R"([{"log_id": 41}])", "42"},
                      Choice{R"([{"log_id": "abc"}, {"log_id": "-5"}, {"log_id": "2.5"}])", "1"},
                      Choice{R"([{"log_id": ""}, {"log_id": null}, {}, 12, "13", ["14"]])", "1"},
                      Choice{R"([{"log_id": "99999999999999999999999"}])",
                             "100000000000000000000000"}));

}  // namespace
}  // namespace kelvane::console
