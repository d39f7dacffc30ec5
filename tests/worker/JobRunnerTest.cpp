#include <csignal>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "log/iLog.h"
#include "platform/Json.h"
#include "tests/support/FullFile.h"
#include "tests/support/JobFiles.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// Jobs of the command "updateFW" whose one entry names no controller: they end "FREE" with "device
// not found".
class JobRunner : public test::WorkerWorld {
 protected:
  static std::string job(const std::string& logId, const std::string& state,
                         const std::string& more = R"("input_parameters":[{}])") {
    return R"({"log_id":")" + logId + R"(","state_id":")" + state + R"(","job_id":"updateFW",)" +
           more + "}";
  }
  static std::string finishedJob(const std::string& logId) {
    return job(logId, "FREE",
               R"("result":0,"resultStr":"no error","input_parameters":{"from":"one"})");
  }
  // Another worker, as it is set up in a process of its own: with no log path set before.
  Kelvane& initOther() {
    setLogPath("");
    return other.init(shared());
  }
  Kelvane other{host};
  std::string state(std::size_t index) const { return jobs().at(index).get("state_id").string(); }
};

TEST_F(JobRunner, InitialisesEveryPath) {
  EXPECT_EQ(worker.GroupContainerPath(), Value(shared()));
  EXPECT_EQ(worker.BGPPath(), Value(folder / test::kJobFile));
  EXPECT_EQ(_logPath, shared() + "utility/logs/TarselVistrelUtility.txt");
  EXPECT_TRUE(worker.EngineRunnerPath().isNothing());
  EXPECT_TRUE(worker.onlineUpdateDict().isNothing());
  EXPECT_EQ(worker.settingDict(), Value::dictionary({{"app_name", "Manager"}}));
}

TEST_F(JobRunner, InitialisingLogsNothingWhenAllIsWell) { EXPECT_EQ(logText(), ""); }

TEST_F(JobRunner, WithoutASharedFolderThePathsAreRelative) {
  for (const Value& none : {Value(), Value("")}) {
    worker.init(none);
    EXPECT_EQ(worker.GroupContainerPath(), Value(""));
    EXPECT_EQ(worker.BGPPath(), Value("utility/command/BGPLog.json"));
    EXPECT_STREQ(_logPath, "utility/logs/TarselVistrelUtility.txt");
  }
}

TEST_F(JobRunner, ASharedFolderWithoutATrailingSlashIsJoinedWithoutASeparator) {
  worker.init("/x/y");
  EXPECT_EQ(worker.BGPPath(), Value("/x/yutility/command/BGPLog.json"));
}

TEST_F(JobRunner, InitialisingReadsTheEnginePathBeforeTheLogIsSet) {
  folder.write("shared/utility/config/setting.json", R"({"AppPath": "/Applications/X.app"})");
  setLogPath("");
  worker.init(shared());
  EXPECT_EQ(worker.EngineRunnerPath(),
            Value("/Applications/X.app/Contents/Resources/EngineRunner"));
  EXPECT_EQ(logText(), "");
}

TEST_F(JobRunner, MissingProductSettingsAreLoggedAndLeaveTheRest) {
  std::filesystem::remove(folder / "Contents/Resources/Config/setting.json");
  EXPECT_EQ(&initOther(), &other);
  EXPECT_TRUE(other.settingDict().isNothing());
  EXPECT_EQ(other.BGPPath(), Value(folder / test::kJobFile));
  EXPECT_THAT(log(), ElementsAre("init error: open " + folder.path() +
                                 "/Contents/Resources/Config/setting.json: "
                                 "No such file or directory"));
}

TEST_F(JobRunner, ProductSettingsThatAreNotJsonAreNothing) {
  folder.write("Contents/Resources/Config/setting.json", "{");
  initOther();
  EXPECT_TRUE(other.settingDict().isNothing());
  EXPECT_TRUE(log().empty());
}

TEST_F(JobRunner, ProductSettingsThatAreAListAreKeptAsTheyAre) {
  folder.write("Contents/Resources/Config/setting.json", "[1]");
  initOther();
  EXPECT_TRUE(other.settingDict().isArray());
  EXPECT_TRUE(log().empty());
}

TEST_F(JobRunner, AnExecutableTooNearToTheRootIsLogged) {
  for (const char* place : {"/", "/usr", "/usr/bin"}) {
    host.folder = place;
    initOther();
  }
  host.folder = Value();
  initOther();
  EXPECT_THAT(log(), ElementsAre(StartsWith("init error: "), StartsWith("init error: "),
                                 StartsWith("init error: "), StartsWith("init error: ")));
}

TEST_F(JobRunner, TheBundleIsTakenToStandTwoLevelsBelowTheRoot) {
  host.folder = folder / "Contents/Resources/deeper/still";
  initOther();
  EXPECT_EQ(other.settingDict(), Value::dictionary({{"app_name", "Manager"}}));
}

TEST_F(JobRunner, PropertiesCanBeSet) {
  worker.setGroupContainerPath("a");
  worker.setBGPPath("b");
  worker.setEngineRunnerPath("c");
  worker.setOnlineUpdateDict(Value::dictionary());
  worker.setSettingDict(Value::dictionary({{"d", "e"}}));
  EXPECT_EQ(worker.GroupContainerPath(), Value("a"));
  EXPECT_EQ(worker.BGPPath(), Value("b"));
  EXPECT_EQ(worker.EngineRunnerPath(), Value("c"));
  EXPECT_EQ(worker.onlineUpdateDict(), Value::dictionary());
  EXPECT_EQ(worker.settingDict(), Value::dictionary({{"d", "e"}}));
}

TEST_F(JobRunner, TheEnginePathComesFromTheSharedSettings) {
  folder.write("shared/utility/config/setting.json",
               R"({"other": 1, "AppPath": "/Applications/X.app"})");
  EXPECT_EQ(worker.getEngineRunnerPath(shared()),
            Value("/Applications/X.app/Contents/Resources/EngineRunner"));
  EXPECT_THAT(
      log(),
      ElementsAre("getEngineRunnerPath: getFormatToolPath start, groupContainerPath = " + shared(),
                  "getEngineRunnerPath: getFormatToolPath start, toolPath = "
                  "/Applications/X.app/Contents/Resources/EngineRunner"));
}

TEST_F(JobRunner, AnAppPathThatIsNoTextStandsInTheEnginePathAsItsText) {
  folder.write("shared/utility/config/setting.json", R"({"AppPath": null})");
  EXPECT_EQ(worker.getEngineRunnerPath(shared()), Value("<null>/Contents/Resources/EngineRunner"));
}

TEST_F(JobRunner, WithoutASharedFolderTheSettingsAreRelativeToo) {
  folder.write("utility/config/setting.json", R"({"AppPath": "/X"})");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  for (const Value& none : {Value(), Value("")}) {
    Kelvane relative(host);
    relative.init(none);
    EXPECT_EQ(relative.EngineRunnerPath(), Value("/X/Contents/Resources/EngineRunner"));
  }
  std::filesystem::current_path(before);
}

TEST_F(JobRunner, AnEnginePathThatWasFoundIsGivenEvenWhenItsLogLineFails) {
  folder.write("shared/utility/config/setting.json", R"({"AppPath": "/X"})");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const std::size_t firstLine = std::string(
                                    "[14:03:07] [JobRunner.cpp][100][getEngineRunnerPath][debug] "
                                    "getFormatToolPath start, groupContainerPath = \n")
                                    .size() +
                                shared().size();
  const rlimit limit = {firstLine + 10, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const Value path = worker.getEngineRunnerPath(shared());
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(path, Value("/X/Contents/Resources/EngineRunner"));
  EXPECT_EQ(logText().size(), firstLine + 10);
}

TEST_F(JobRunner, WithoutSharedSettingsThereIsNoEnginePath) {
  EXPECT_TRUE(worker.getEngineRunnerPath(shared()).isNothing());
  folder.write("shared/utility/config/setting.json", "not json");
  EXPECT_TRUE(worker.getEngineRunnerPath(shared()).isNothing());
  folder.write("shared/utility/config/setting.json", R"({"apppath": "/A"})");
  EXPECT_TRUE(worker.getEngineRunnerPath(shared()).isNothing());
  EXPECT_THAT(log().back(), "getEngineRunnerPath: getFormatToolPath start, toolPath = (null)");
  EXPECT_EQ(log().size(), 6U);
}

TEST_F(JobRunner, SharedSettingsThatAreAListOrAFolderAreLogged) {
  folder.write("shared/utility/config/setting.json", "[1]");
  EXPECT_TRUE(worker.getEngineRunnerPath(shared()).isNothing());
  std::filesystem::remove(shared() + "utility/config/setting.json");
  folder.write("shared/utility/config/setting.json/inside", "");
  EXPECT_TRUE(worker.getEngineRunnerPath(shared()).isNothing());
  EXPECT_THAT(
      log(),
      ElementsAre(StartsWith("getEngineRunnerPath: "), StartsWith("getEngineRunnerPath error: "),
                  StartsWith("getEngineRunnerPath: "), StartsWith("getEngineRunnerPath error: ")));
}

TEST_F(JobRunner, WithoutALogIdNothingIsRead) {
  worker.run(Value());
  EXPECT_THAT(log(), ElementsAre("run: Fail, logid = nil"));
}

TEST_F(JobRunner, AMissingJobFileIsLoggedAndNothingRuns) {
  std::filesystem::remove(folder / test::kJobFile);
  worker.run("17");
  EXPECT_THAT(log(), ElementsAre("run error: open " + shared() +
                                 "utility/command/BGPLog.json: No such file or directory"));
}

TEST_F(JobRunner, AJobFileThatIsNotJsonRunsNothingAndStaysAsItIs) {
  writeJobs("[{]");
  worker.run("17");
  EXPECT_THAT(log(), ElementsAre("run: currentJobArray = (null)"));
  EXPECT_EQ(jobText(), "[{]");
}

TEST_F(JobRunner, RunsTheWaitingJobAndLogsWhatItFound) {
  writeJobs("[" + job("17", "WAIT", R"("input_parameters":[{"wwn":"A"}])") + "]");
  worker.run("17");
  EXPECT_EQ(state(0), "FREE");
  EXPECT_THAT(log()[0], "run: currentJobArray = (");
  EXPECT_THAT(log()[1], "run: logId = 17, inputParmsDict = {");
  EXPECT_THAT(logText(), HasSubstr("logId = 17, inputParmsDict = {\n    wwn = A;\n}, "
                                   "stateId = WAIT. jobId = updateFW\n"));
}

TEST_F(JobRunner, HandsOverTheRecordWithAResultOfNoError) {
  writeJobs("[" + job("17", "WAIT", R"("result":9,"resultStr":"old","input_parameters":[{}])") +
            "]");
  worker.run("17");
  EXPECT_THAT(logText(), HasSubstr("updateFW start, inputDict = {\n"));
  EXPECT_THAT(logText(), HasSubstr("    result = 0;\n    resultStr = \"no error\";\n"));
}

TEST_F(JobRunner, ARunningOrFinishedRecordIsSkippedAndALaterWaitingOneRuns) {
  writeJobs("[" + job("17", "RUN") + "," + job("17", "FREE") + "," + job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_THAT(log(), ::testing::Contains(StartsWith("updateFW: updateFW start")).Times(1));
}

TEST_F(JobRunner, RunningAndFinishedRecordsAloneRunNothing) {
  const std::string text = "[" + job("17", "RUN") + "," + job("17", "FREE") + "]";
  writeJobs(text);
  worker.run("17");
  EXPECT_EQ(jobText(), text);
  EXPECT_TRUE(framework.calls.empty());
}

TEST_F(JobRunner, OfTwoWaitingRecordsOnlyTheFirstIsRun) {
  writeJobs("[" + job("17", "WAIT") + "," + job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_EQ(framework.count("zr_initialize"), 1);
}

TEST_F(JobRunner, AnotherJobsRecordIsNotRun) {
  const std::string text = "[" + job("18", "WAIT") + "]";
  writeJobs(text);
  worker.run("17");
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre("run: currentJobArray = (", StartsWith("run: logId = 18")));
}

TEST_F(JobRunner, AnEmptyLogIdIsAnOrdinaryValue) {
  writeJobs("[" + job("", "WAIT") + "]");
  worker.run("");
  EXPECT_EQ(state(0), "FREE");
}

TEST_F(JobRunner, KeysStatesAndCommandsAreCaseSensitive) {
  const std::string text =
      R"([{"log_id":"a","state_id":"WAIT","job_id":"UPDATEFW","input_parameters":{}},
          {"log_id":"a","state_id":"wait","job_id":"updateFW","input_parameters":{}},
          {"LOG_ID":"a","state_id":"WAIT","job_id":"updateFW","input_parameters":{}}])";
  writeJobs(text);
  worker.run("a");
  worker.run("A");
  EXPECT_EQ(jobText(), text);
}

TEST_F(JobRunner, AnUnknownCommandEndsTheSearchAndLeavesTheFileAsItIs) {
  const std::string text =
      R"([{"log_id":"17","state_id":"WAIT","job_id":"unknown","input_parameters":{}},)" +
      job("17", "WAIT") + "]";
  writeJobs(text);
  worker.run("17");
  EXPECT_EQ(jobText(), text);
  EXPECT_TRUE(framework.calls.empty());
  EXPECT_THAT(log(), ElementsAre("run: currentJobArray = (", StartsWith("run: logId = 17")));
}

TEST_F(JobRunner, ARecordWithoutInputParametersIsSkippedWhenNoEarlierOneHadAny) {
  for (const char* more :
       {R"("x":1)", R"("input_parameters":[])", R"("input_parameters":"text")",
        R"("input_parameters":5)", R"("input_parameters":true)", R"("input_parameters":null)"}) {
    const std::string text = "[" + job("17", "WAIT", more) + "]";
    writeJobs(text);
    worker.run("17");
    EXPECT_EQ(jobText(), text) << more;
  }
}

TEST_F(JobRunner, InputParametersAreCarriedOverFromAnEarlierRecord) {
  for (const char* more : {R"("x":1)", R"("input_parameters":[])"}) {
    writeJobs("[" + finishedJob("1") + "," + job("17", "WAIT", more) + "]");
    worker.run("17");
    EXPECT_EQ(state(1), "FREE") << more;
    EXPECT_THAT(logText(), HasSubstr("logId = 17, inputParmsDict = {\n    from = one;\n}"));
  }
}

TEST_F(JobRunner, LaterInputParametersReplaceEarlierOnes) {
  for (const char* own : {R"("input_parameters":{"from":"two"})",
                          R"("input_parameters":[{"from":"two"},{"from":"three"}])"}) {
    writeJobs("[" + job("1", "FREE", R"("input_parameters":{"from":"one"})") + "," +
              job("18", "WAIT", own) + "]");
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    worker.run("17");
    EXPECT_THAT(logText(), HasSubstr("logId = 18, inputParmsDict = {\n    from = two;\n}")) << own;
  }
}

TEST_F(JobRunner, AnIncompleteRecordSuppliesInputParametersToo) {
  writeJobs(R"([{"input_parameters":{"from":"one"}},)" + job("17", "WAIT", R"("x":1)") + "]");
  worker.run("17");
  EXPECT_EQ(state(1), "FREE");
  EXPECT_THAT(logText(), HasSubstr("logId = 17, inputParmsDict = {\n    from = one;\n}"));
}

TEST_F(JobRunner, TheFirstElementOfAListCountsWhateverItIs) {
  writeJobs("[" + job("18", "WAIT", R"("input_parameters":[null])") + "]");
  worker.run("17");
  EXPECT_THAT(logText(), HasSubstr("logId = 18, inputParmsDict = <null>, stateId = WAIT"));
}

TEST_F(JobRunner, ParametersOfAWrongKindDoNotReplaceTheCarriedOnes) {
  for (const char* more : {R"("input_parameters":"text")", R"("input_parameters":null)"}) {
    writeJobs("[" + job("1", "FREE", R"("input_parameters":[{"from":"list"},{}])") + "," +
              job("18", "WAIT", more) + "]");
    worker.run("17");
    EXPECT_THAT(logText(), HasSubstr("logId = 18, inputParmsDict = {\n    from = list;\n}"));
  }
}

TEST_F(JobRunner, TheOperationReceivesTheRecordItselfNotTheCarriedParameters) {
  writeJobs("[" + finishedJob("1") + "," + job("17", "WAIT", R"("x":1)") + "]");
  worker.run("17");
  EXPECT_EQ(jobs().at(1).get("result").integerValue(), 0x0402);
  EXPECT_FALSE(jobs().at(1).has("input_parameters"));
}

TEST_F(JobRunner, ARecordThatLacksAKeyIsPassedOverWithoutALine) {
  writeJobs(R"([{"state_id":"WAIT","job_id":"updateFW","input_parameters":{}},
                {"log_id":"17","job_id":"updateFW","input_parameters":{}},
                {"log_id":"17","state_id":"WAIT","input_parameters":{}}])");
  worker.run("17");
  EXPECT_THAT(log(), ElementsAre("run: currentJobArray = ("));
}

TEST_F(JobRunner, ALogIdThatIsNoStringEndsTheRunWithOneErrorLine) {
  for (const char* logId : {"17", "null", "[]", "true"}) {
    const std::string text = std::string(R"([{"log_id":)") + logId +
                             R"(,"state_id":"WAIT","job_id":"updateFW","input_parameters":{}},)" +
                             job("17", "WAIT") + "]";
    writeJobs(text);
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    worker.run("17");
    EXPECT_EQ(jobText(), text);
    EXPECT_THAT(log(), ElementsAre("run: currentJobArray = (", StartsWith("run: logId = "),
                                   StartsWith("run error: ")));
  }
}

TEST_F(JobRunner, AStateThatIsNoStringOnlyMattersOnceTheLogIdHasMatched) {
  writeJobs(R"([{"log_id":"1","state_id":5,"job_id":"updateFW","input_parameters":{}},)" +
            job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_EQ(state(1), "FREE");
  writeJobs(R"([{"log_id":"17","state_id":5,"job_id":"updateFW","input_parameters":{}},)" +
            job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_EQ(state(1), "WAIT");
  EXPECT_THAT(log().back(), StartsWith("run error: "));
}

TEST_F(JobRunner, ACommandThatIsNoStringEndsTheRunWithOneErrorLine) {
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","job_id":null,"input_parameters":{}}])");
  worker.run("17");
  EXPECT_THAT(log().back(), StartsWith("run error: "));
}

TEST_F(JobRunner, ATopLevelObjectOrARecordThatIsNoneIsAnErrorAfterTheArrayLine) {
  writeJobs(R"({"log_id":"17"})");
  worker.run("17");
  writeJobs(R"(["text",)" + job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_THAT(log(), ElementsAre("run: currentJobArray = {", StartsWith("run error: "),
                                 "run: currentJobArray = (", StartsWith("run error: ")));
}

TEST_F(JobRunner, TheReasonOfARecordThatIsNoneIsLoggedToTheCharacter) {
  writeJobs("[5]");
  worker.run("17");
  EXPECT_THAT(log(),
              ElementsAre("run: currentJobArray = (", "run error: asked a number for its entries"));
}

TEST_F(JobRunner, ALogThatCannotBeWrittenEndsTheRunQuietly) {
  const std::string text = "[" + job("17", "WAIT") + "]";
  writeJobs(text);
  const test::FullFile full;
  setLogPath(full.path().c_str());
  worker.run("17");
  EXPECT_EQ(jobText(), text);
}

TEST_F(JobRunner, ALogFileThatIsAbsentDoesNotKeepTheJobFromRunning) {
  std::filesystem::remove(shared() + "utility/logs/TarselVistrelUtility.txt");
  writeJobs("[" + job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_EQ(state(0), "FREE");
  EXPECT_FALSE(std::filesystem::exists(shared() + "utility/logs/TarselVistrelUtility.txt"));
}

// --- what is no regular file: at once as if it could not be read, or as if there were no log

TEST_F(JobRunner, AJobFileThatIsAPipeCannotBeRead) {
  const std::string path = folder / test::kJobFile;
  std::filesystem::remove(path);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  worker.run("17");
  EXPECT_THAT(log(), ElementsAre("run error: open " + path + ": not a regular file"));
  EXPECT_TRUE(std::filesystem::is_fifo(path));
}

TEST_F(JobRunner, SettingsThatArePipesCannotBeRead) {
  const std::string engineSettings = shared() + "utility/config/setting.json";
  const std::string productSettings = folder / "Contents/Resources/Config/setting.json";
  std::filesystem::remove(productSettings);
  std::filesystem::create_directories(shared() + "utility/config");
  ASSERT_EQ(::mkfifo(engineSettings.c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(productSettings.c_str(), 0600), 0);
  worker.init(shared());
  EXPECT_TRUE(worker.EngineRunnerPath().isNothing());
  EXPECT_THAT(log(),
              ::testing::Contains("init error: open " + productSettings + ": not a regular file"));
}

TEST_F(JobRunner, ALogThatIsAPipeIsNoLogAndTheJobRuns) {
  const std::string path = shared() + "utility/logs/TarselVistrelUtility.txt";
  std::filesystem::remove(path);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
  writeJobs("[" + job("17", "WAIT") + "]");
  worker.run("17");
  EXPECT_EQ(state(0), "FREE");
  char byte = 0;
  EXPECT_LE(::read(reader, &byte, 1), 0);
  ::close(reader);
}

}  // namespace
}  // namespace kelvane
