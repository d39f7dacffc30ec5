// The laws bite: what breaks one ends the process, and says which.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fuzz/FirmwareLaws.h"
#include "tests/fuzz/JobFileLaws.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/WorkerInMemory.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

TEST(Harmless, IsPlainTextAlone) {
  requireHarmless("two\nlines, \xC3\xA4 and \xE2\x82\xAC", false, "harmless");
  requireHarmless("plain ~", true, "harmless");
  for (const char* text :
       {"\x1B[2J", "\t", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\xEF\xBB\xBF", "\xFF"}) {
    EXPECT_DEATH(requireHarmless(text, false, "harmless"), "law broken: harmless") << text;
  }
  EXPECT_DEATH(requireHarmless("\xC3\xA4", true, "harmless"), "law broken: harmless");
}

TEST(Same, IsEveryByte) {
  requireSame("a", "a", "same");
  EXPECT_DEATH(requireSame("a", "a ", "same"), "law broken: same\nexpected: a\nfound:    a ");
}

TEST(PlainJson, KeepsDigitsAndOrderAndDecodesTexts) {
  const auto read =
      test::readPlainJson(R"({"b": [1.50, -0], "a": "\u00e4\ud83d\ude00\n", "b": 2E+1})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->keys, (std::vector<std::string>{"b", "a"}));
  EXPECT_EQ(read->elements[0].text, "2E+1");
  EXPECT_EQ(read->elements[1].text, "\xC3\xA4\xF0\x9F\x98\x80\n");
  EXPECT_EQ(test::printed(*test::readPlainJson(R"([1.50,{"k":"\u0001"},[]])")),
            "[\n  1.50,\n  {\n    \"k\": \"\\u0001\"\n  },\n  []\n]");
}

TEST(PlainJson, IsNothingElse) {
  for (const char* text : {"", "1", "[1,]", "[01]", "[1.]", "[-]", "[1e]", "[1e999]", "[tru]",
                           "{1:2}", "{\"a\"}", "[\"\\ud83d\"]", "[\"\\udc00\"]", "[\"\\x\"]",
                           "[\"\n\"]", "[\"\xFF\"]", "[1] 2", "[1", "{\"a\":1"}) {
    EXPECT_FALSE(test::readPlainJson(text)) << text;
  }
}

constexpr char kBefore[] = R"([{"log_id": "16", "n": 1.0}, {"log_id": "17", "k": 1}])";

std::string with(const std::string& other, const std::string& own) {
  return "[{" + other + "}, {" + own + "}]";
}

const std::string kOther = R"("log_id": "16", "n": 1.0)";
const std::string kOwn = R"("log_id": "17", "k": 1)";
const std::string kRun = R"(, "state_id": "RUN", "result": 0, "resultStr": "no error")";
const std::string kFree = R"(, "state_id": "FREE", "result": 0, "resultStr": "")";

void judge(const std::string& after) { JobFileLaws("17").judge(kBefore, after); }

TEST(JobFileLaws, TheWorkersOwnKeysMayChange) {
  JobFileLaws laws("17");
  laws.judge(kBefore, with(kOther, kOwn + kRun + R"(, "output": [])"));
  EXPECT_EQ(laws.state(), "RUN");
  laws.judge(kBefore, with(kOther, kOwn + kFree));
  EXPECT_EQ(laws.state(), "FREE");
}

TEST(JobFileLaws, ADamagedFileIsTold) {
  EXPECT_DEATH(judge("[{}"), "whole JSON");
  EXPECT_DEATH(judge("{}"), "keeps its records");
  EXPECT_DEATH(judge("[{" + kOwn + kFree + "}]"), "keeps its records");
}

TEST(JobFileLaws, AnotherJobsRecordIsKeptToTheDigit) {
  EXPECT_DEATH(judge(with(R"("log_id": "16", "n": 1)", kOwn + kFree)), "stays as it is");
  EXPECT_DEATH(judge(with(R"("n": 1.0, "log_id": "16")", kOwn + kFree)), "stays as it is");
}

TEST(JobFileLaws, AKeyOfTheApplicationIsKept) {
  EXPECT_DEATH(judge(with(kOther, R"("log_id": "17")" + kFree)), "keeps its keys");
  EXPECT_DEATH(judge(with(kOther, R"("log_id": "17", "k": 2)" + kFree)), "its own keys alone");
  EXPECT_DEATH(judge(with(kOther, kOwn + R"(, "m": 2)" + kFree)), "its own keys alone");
}

TEST(JobFileLaws, AStateIsOneOfTheWorkersAndFreeTheLast) {
  EXPECT_DEATH(judge(with(kOther, kOwn)), "has a state");
  EXPECT_DEATH(judge(with(kOther, kOwn + R"(, "state_id": "WAIT")")), "runs or is free");
  EXPECT_DEATH(judge(with(kOther, kOwn + R"(, "state_id": "FREE")")), "has a result");
  JobFileLaws laws("17");
  laws.judge(kBefore, with(kOther, kOwn + kFree));
  EXPECT_DEATH(laws.judge(kBefore, with(kOther, kOwn + kFree)), "behind FREE");
}

// A record of the command, FREE with these.
std::string finished(const std::string& command, const std::string& result) {
  return R"([{"log_id": "17", "job_id": ")" + command + R"(", "state_id": "FREE", )" + result +
         "}]";
}

TEST(JobFileLaws, AResultGoesWithItsTextAndCommand) {
  const auto judgeResult = [](const std::string& command, const std::string& result) {
    const std::string text = finished(command, result);
    JobFileLaws("17").judge(text, text);
  };
  const std::string good = R"("result": 0, "resultStr": "no error")";
  const std::string missing = R"("result": 259, "resultStr": "file is not found")";
  for (const char* command : {"getOnlineUpdateData", "downloadOnlineUpdateFile", "updateSW"}) {
    judgeResult(command, good);
    EXPECT_DEATH(judgeResult(command, R"("result": 0, "resultStr": "file is not found")"),
                 "one of its results");
    EXPECT_DEATH(judgeResult(command, R"("result": 259, "resultStr": "no error")"),
                 "one of its results");
  }
  judgeResult("downloadOnlineUpdateFile", missing);
  EXPECT_DEATH(judgeResult("updateSW", missing), "one of its results");
  judgeResult("updateFW", R"("result": 32852, "resultStr": "some text")");
}

TEST(JobFileLaws, AJobThatRunsHasHadNoError) {
  EXPECT_DEATH(judge(with(kOther, kOwn + R"(, "state_id": "RUN", "result": 1)")),
               "has had no error");
}

constexpr char kJob[] = R"([{"log_id": "17", "job_id": "updateFW", "state_id": "WAIT",
    "input_parameters": [{"wwn": "A1", "file_path": "/a.img"}]}])";

TEST(JobFileLaws, AJobIsLeftRunningAsFarAsThatIsKnown) {
  JobFileLaws laws("17");
  EXPECT_FALSE(laws.isLeftRunning());
  laws.judge(kBefore, with(kOther, kOwn + kRun));
  EXPECT_TRUE(laws.isLeftRunning());
  laws.disturb();
  EXPECT_FALSE(laws.isLeftRunning());
}

TEST(WorkerInMemory, RunsAJobToItsEnd) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kJob);
  world.run();
  EXPECT_EQ(world.jobFile.state(), "FREE");
  EXPECT_FALSE(world.hasToldAnError());
  EXPECT_GT(world.framework.count("zr_getFlashProgress"), 0);
}

TEST(WorkerInMemory, SeesAJobThatIsNotBegunOrNotFinished) {
  WorkerInMemory world;
  EXPECT_DEATH(world.requireBegun(), "a job begins, or an error is told");
  EXPECT_DEATH(world.requireFinished(), "a job is finished without an error");
  world.run();  // without a job file, which is told
  world.requireBegun();
  EXPECT_DEATH(world.requireFinished(), "a job is finished without an error");
}

void runBehind(const std::string& call) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kJob);
  world.framework.calls.push_back(call);
  world.run();
}

TEST(WorkerInMemory, SeesWhatBreaksALawOfTheFramework) {
  EXPECT_DEATH(runBehind("zr_initializeCPLDProcess(7/0, 0)"), "a CPLD process is not closed");
  EXPECT_DEATH(runBehind("zr_flashImageEx(0/0, 0)"), "was not checked, transferred and verified");
  EXPECT_DEATH(runBehind("zr_mac_flashNVRAM(0/0, 0)"), "NVRAM is written without its firmware");
}

TEST(WorkerInMemory, SeesASleepThatIsNone) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kJob);
  world.host.sleep(2);
  EXPECT_DEATH(world.run(), "progress is not read every two seconds\nsleep 2\n");
}

TEST(WorkerInMemory, SeesWhatIsNotReaped) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kJob);
  world.programs.started = 1;
  EXPECT_DEATH(world.run(), "reaped");
}

// A firmware job that has run to its end, in one course of calls.
class FirmwareLawsOfAJob : public ::testing::Test {
 protected:
  FirmwareLawsOfAJob() {
    world.disk.put(kJobFilePath, kJob);
    world.run();
    after = world.disk.bytesOf(kJobFilePath).value_or("");
  }

  void judge(bool isDisturbed = false) {
    FirmwareLaws(kJob, "17").judge(world.framework.calls, world.framework, after, isDisturbed);
  }
  // In the first call with that name.
  void changeCall(const std::string& name, const std::string& from, const std::string& to) {
    for (std::string& call : world.framework.calls) {
      if (call.starts_with(name + "(")) return change(call, from, to);
    }
    FAIL() << name;
  }
  static void change(std::string& text, const std::string& from, const std::string& to) {
    ASSERT_NE(text.find(from), std::string::npos) << text;
    text.replace(text.find(from), from.size(), to);
  }

  WorkerInMemory world;
  std::string after;
};

TEST_F(FirmwareLawsOfAJob, AreKept) {
  judge();
  EXPECT_EQ(world.framework.count("zr_mac_flashNVRAM"), 1);
}

TEST_F(FirmwareLawsOfAJob, SeeADirtyRecord) {
  changeCall("zr_getFDLImageInfo", "image[zeroed]", "image[1 0]");
  EXPECT_DEATH(judge(), "calls with their records follow");
}

TEST_F(FirmwareLawsOfAJob, SeeARecordThatIsNotCarriedOver) {
  changeCall("zr_mac_flashNVRAM", "nvram[a2]", "nvram[zeroed]");
  EXPECT_DEATH(judge(), "calls with their records follow");
}

TEST_F(FirmwareLawsOfAJob, SeeACallThatIsLeftOut) {
  world.framework.calls.erase(world.framework.calls.begin());
  EXPECT_DEATH(judge(), "calls with their records follow");
}

TEST_F(FirmwareLawsOfAJob, SeeAnotherResultOrText) {
  const std::string kept = after;
  change(after, R"("result": 0)", R"("result": 1)");
  EXPECT_DEATH(judge(), "result, text and percentages follow");
  judge(true);  // of whose record nothing is known
  after = kept;
  change(after, "text of 0x0", "text of 0x1");
  EXPECT_DEATH(judge(), "result, text and percentages follow");
}

TEST_F(FirmwareLawsOfAJob, SeeAnotherPercentage) {
  change(after, R"("fw_percentage": 100)", R"("fw_percentage": 99)");
  EXPECT_DEATH(judge(), "result, text and percentages follow");
}

constexpr char kInstallation[] = R"([{"log_id": "17", "job_id": "updateSW", "state_id": "WAIT",
    "input_parameters": {"file_path": "/dl/New.app"}}])";

// What was started, and before it how many programs had been ended and reaped.
std::vector<std::string> startedByAnInstallation(bool outliveTheirOutput) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kInstallation);
  world.programs.outlivesItsOutput = outliveTheirOutput;
  std::vector<std::string> started;
  world.programs.run = [&](const std::vector<std::string>& argv) {
    started.push_back(std::to_string(world.programs.reaped) + " " + argv[0]);
    return "";
  };
  world.run();
  EXPECT_EQ(world.jobFile.state(), "FREE");
  EXPECT_EQ(world.programs.reaped, 2);
  return started;
}

TEST(WorkerInMemory, EndsTheRemovalBeforeItStartsTheCopy) {
  for (const bool outliveTheirOutput : {false, true}) {
    EXPECT_THAT(startedByAnInstallation(outliveTheirOutput),
                ::testing::ElementsAre("0 /bin/rm", "1 /bin/cp"));
  }
}

TEST(WorkerInMemory, SeesAProgramThatIsStartedWhileAnotherRuns) {
  WorkerInMemory world;
  world.disk.put(kJobFilePath, kInstallation);
  world.programs.started = 1;
  EXPECT_DEATH(world.run(), "ended before another is started\n/bin/rm");
}

}  // namespace
}  // namespace kelvane::fuzz
