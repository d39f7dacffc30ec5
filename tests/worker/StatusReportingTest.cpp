#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class StatusReporting : public test::WorkerWorld {
 protected:
  // Starts the first job of the file as the job runner hands it over.
  void start() { worker.initUpgradeFWStatus(jobs().at(0)); }
  void update(const std::string& json, const Value& logId = "17") {
    worker.updateFWUpdateStatus(platform::parseJson(json), logId);
  }
};

TEST_F(StatusReporting, EveryControllerGetsAProgressEntryAndTheJobRuns) {
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","output":"old","input_parameters":[
      {"wwn":"A","file_path":"/a"},{"wwn":"B","file_path":"/b"}]}])");
  start();
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("RUN"));
  EXPECT_EQ(jobs().at(0).get("output"), platform::parseJson(R"([
      {"wwn":"A","file_path":"/a","fw_percentage":0,"cpld_percentage":0,"total_percentage":0},
      {"wwn":"B","file_path":"/b","fw_percentage":0,"cpld_percentage":0,"total_percentage":0}])"));
}

TEST_F(StatusReporting, EntriesThatLackAKeyGetNoProgressEntry) {
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[
      {"wwn":"A"},{"file_path":"/b"},{"wwn":null,"file_path":null}]}])");
  start();
  const Value output = jobs().at(0).get("output");
  ASSERT_EQ(output.count(), 1U);
  EXPECT_EQ(output.at(0).get("wwn"), Value::null());
}

TEST_F(StatusReporting, AJobWhoseEntriesAllLackTheFilePathIsNotMarkedRunning) {
  const std::string text =
      R"([{"log_id":"17","state_id":"WAIT","input_parameters":[{"wwn":"A"},{"wwn":"B"}]}])";
  writeJobs(text);
  start();
  EXPECT_EQ(jobText(), text);
}

TEST_F(StatusReporting, AbsentInputParametersCountAsEmpty) {
  const std::string text = R"([{"log_id":"17","state_id":"WAIT"}])";
  writeJobs(text);
  start();
  worker.initUpgradeFWStatus(Value());
  EXPECT_EQ(jobText(), text);
  EXPECT_TRUE(log().empty());
}

TEST_F(StatusReporting, ExtraKeysStayInTheProgressEntry) {
  writeJobs(R"([{"log_id":"17","input_parameters":[
      {"wwn":"A","file_path":"/a","slot":3,"fw_percentage":"old"}]}])");
  start();
  const Value entry = jobs().at(0).get("output").at(0);
  EXPECT_EQ(entry.get("slot").integerValue(), 3);
  EXPECT_EQ(entry.get("fw_percentage").integerValue(), 0);
}

TEST_F(StatusReporting, AJobWithoutALogIdIsNotWritten) {
  const std::string text = R"([{"input_parameters":[{"wwn":"A","file_path":"/a"}]}])";
  writeJobs(text);
  start();
  EXPECT_EQ(jobText(), text);
}

TEST_F(StatusReporting, InputParametersThatAreNoListAreLoggedOnce) {
  for (const char* inputs : {"{}", "null", "\"x\"", "[5]"}) {
    const std::string text = std::string(R"([{"log_id":"17","input_parameters":)") + inputs + "}]";
    writeJobs(text);
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    start();
    EXPECT_EQ(jobText(), text);
    EXPECT_THAT(log(), ElementsAre(StartsWith("initUpgradeFWStatus error: ")));
  }
}

TEST_F(StatusReporting, AVanishedJobFileIsLoggedOnceAtTheStart) {
  const Value record =
      platform::parseJson(R"({"log_id":"17","input_parameters":[{"wwn":"A","file_path":"/a"}]})");
  std::filesystem::remove(folder / test::kJobFile);
  worker.initUpgradeFWStatus(record);
  EXPECT_THAT(log(), ElementsAre(StartsWith("initUpgradeFWStatus error: open ")));
}

TEST_F(StatusReporting, AnUpdateIsMergedIntoItsEntryAlone) {
  writeJobs(R"([{"log_id":"17","output":[{"wwn":"A","n":0,"k":1},{"wwn":"B","n":0}]}])");
  update(R"({"wwn":"B","n":37})");
  EXPECT_EQ(jobs(),
            platform::parseJson(
                R"([{"log_id":"17","output":[{"wwn":"A","n":0,"k":1},{"wwn":"B","n":37}]}])"));
}

TEST_F(StatusReporting, AnUpdateLogsTheArrayThenTheStoreItsOwnLines) {
  writeJobs(R"([{"log_id":"17","output":[{"wwn":"A"}]}])");
  update(R"({"wwn":"A","n":1})");
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = (",
                                 "updateJSONFile: currentJobArray = (",
                                 "updateJSONFile: updateJSONFile, newJobArray = (",
                                 "writeJSONFile: writeJSONFile, newArray = (",
                                 StartsWith("writeJSONFile: writeJSONFile, _BGPPath = ")));
}

TEST_F(StatusReporting, TwoEntriesOfOneWwnAreBothOverwritten) {
  writeJobs(R"([{"log_id":"17","output":[{"wwn":"A","n":0},{"wwn":"A","n":1}]}])");
  update(R"({"wwn":"A","n":9})");
  EXPECT_EQ(jobs(), platform::parseJson(
                        R"([{"log_id":"17","output":[{"wwn":"A","n":9},{"wwn":"A","n":9}]}])"));
}

TEST_F(StatusReporting, NewKeysAreAdded) {
  writeJobs(R"([{"log_id":"17","output":[{"wwn":"A"}]}])");
  update(R"({"wwn":"A","new":"key"})");
  EXPECT_EQ(jobs().at(0).get("output").at(0).get("new"), Value("key"));
}

TEST_F(StatusReporting, AnUpdateWithoutAWwnChangesNothing) {
  const std::string text = R"([{"log_id":"17","output":[{"wwn":"A"},{"n":1}]}])";
  writeJobs(text);
  update(R"({"n":1})");
  worker.updateFWUpdateStatus(Value(), "17");
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = (",
                                 "updateFWUpdateStatus: currentJobArray = ("));
}

TEST_F(StatusReporting, AWwnThatMatchesNoEntryLeavesTheFileUntouched) {
  const std::string text = R"([{"log_id":"17","output":[{"wwn":"A"},{"n":1}]}])";
  writeJobs(text);
  update(R"({"wwn":"a","n":1})");
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = ("));
}

TEST_F(StatusReporting, OtherJobsEntriesOfTheSameWwnAreLeftAlone) {
  writeJobs(R"([{"log_id":"1","output":[{"wwn":"A"}]},{"log_id":"17","output":[{"wwn":"A"}]},
                {"log_id":"2","output":[{"wwn":"A"}]}])");
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobs(), platform::parseJson(R"([{"log_id":"1","output":[{"wwn":"A"}]},
      {"log_id":"17","output":[{"wwn":"A","n":1}]},{"log_id":"2","output":[{"wwn":"A"}]}])"));
}

TEST_F(StatusReporting, ARecordWithoutALogIdAfterTheRunningJobLosesTheUpdate) {
  const std::string text = R"([{"log_id":"17","output":[{"wwn":"A"}]},{"other":"record"}])";
  writeJobs(text);
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = (",
                                 "updateJSONFile: currentJobArray = ("));
}

TEST_F(StatusReporting, ARecordWithoutALogIdBeforeTheRunningJobDoesNoHarm) {
  writeJobs(R"([{"other":"record"},{"log_id":"17","output":[{"wwn":"A"}]}])");
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobs().at(1).get("output").at(0).get("n").integerValue(), 1);
}

TEST_F(StatusReporting, AMatchInARecordWithoutALogIdCountsForTheJobAfterIt) {
  writeJobs(R"([{"output":[{"wwn":"A"}]},{"log_id":"17","x":1,"output":[{"wwn":"B"}]}])");
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobs(),
            platform::parseJson(
                R"([{"output":[{"wwn":"A"}]},{"log_id":"17","x":1,"output":[{"wwn":"B"}]}])"));
  EXPECT_EQ(log().size(), 5U);  // written back all the same
}

TEST_F(StatusReporting, AJobWithoutOutputStaysWithoutOneAlsoBehindAMatch) {
  const std::string text = R"([{"output":[{"wwn":"A"}]},{"log_id":"17","x":1}])";
  writeJobs(text);
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobs(), platform::parseJson(text));
  EXPECT_EQ(log().size(), 5U);  // written back all the same
}

TEST_F(StatusReporting, AJobWithoutOutputIsLeftUntouched) {
  const std::string text = R"([{"log_id":"17"}])";
  writeJobs(text);
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobText(), text);
}

TEST_F(StatusReporting, WithoutALogIdGivenOnlyRecordsWithoutOneAreMeant) {
  const std::string text = R"([{"log_id":"17","output":[{"wwn":"A"}]}])";
  writeJobs(text);
  update(R"({"wwn":"A","n":1})", Value());
  EXPECT_EQ(jobText(), text);
}

TEST_F(StatusReporting, WrongKindsAreLoggedOnceAndChangeNothing) {
  for (const char* text :
       {R"([{"log_id":5,"output":[{"wwn":"A"}]}])", R"([{"log_id":null}])",
        R"([{"log_id":"17","output":null}])", R"([{"log_id":"17","output":["A"]}])",
        R"([{"log_id":"17","output":[{"wwn":5}]}])", R"(["record"])", R"({"log_id":"17"})"}) {
    writeJobs(text);
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    update(R"({"wwn":"A","n":1})");
    EXPECT_EQ(jobText(), text);
    EXPECT_THAT(log(), ElementsAre(StartsWith("updateFWUpdateStatus: currentJobArray = "),
                                   StartsWith("updateFWUpdateStatus error: ")))
        << text;
  }
}

TEST_F(StatusReporting, WithoutALogIdEveryRecordThatHasOneIsAnothers) {
  writeJobs(R"([{"log_id":5,"output":[{"wwn":"A"}]},{"log_id":"5","output":[{"wwn":"A"}]}])");
  const std::string text = jobText();
  update(R"({"wwn":"A"})", Value());
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = ("));
}

TEST_F(StatusReporting, ADamagedJobFileHasNoRecordsAndIsNotWritten) {
  writeJobs("[{");
  update(R"({"wwn":"A","n":1})");
  EXPECT_EQ(jobText(), "[{");
  EXPECT_THAT(log(), ElementsAre("updateFWUpdateStatus: currentJobArray = (null)"));
}

TEST_F(StatusReporting, AVanishedJobFileIsLoggedOncePerUpdate) {
  std::filesystem::remove(folder / test::kJobFile);
  update(R"({"wwn":"A","n":1})");
  EXPECT_THAT(log(), ElementsAre(StartsWith("updateFWUpdateStatus error: open ")));
}

}  // namespace
}  // namespace kelvane
