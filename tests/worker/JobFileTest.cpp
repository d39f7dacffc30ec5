#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/Exception.h"
#include "platform/Json.h"
#include "tests/support/FullFile.h"
#include "tests/support/JobFiles.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Exception;
using platform::Value;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr char kThree[] = R"([{"log_id":"1","n":1},{"log_id":"2","n":2},{"log_id":"3","n":3}])";

class JobFile : public test::WorkerWorld {
 protected:
  static Value query(const char* logId) { return Value::dictionary({{"log_id", logId}}); }
  void removeJobs() { std::filesystem::remove(folder / test::kJobFile); }
};

TEST_F(JobFile, ReadsTheTopLevel) {
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(kThree));
  EXPECT_TRUE(log().empty());
}

TEST_F(JobFile, ReadingAMissingFileRaises) {
  removeJobs();
  EXPECT_THROW(worker.readJSONFile(), Exception);
}

TEST_F(JobFile, ReadingWhatIsNotJsonGivesNothing) {
  writeJobs("[{");
  EXPECT_TRUE(worker.readJSONFile().isNothing());
  EXPECT_TRUE(log().empty());
}

// --- a file that someone else writes between two looks

TEST_F(JobFile, AnotherFileOfTheSameSizeAndTimeIsSeen) {
  namespace fs = std::filesystem;
  writeJobs(R"([{"log_id":"1"}])");
  const auto time = fs::last_write_time(folder / test::kJobFile);
  worker.readJSONFile();
  writeJobs(R"([{"log_id":"2"}])");
  fs::last_write_time(folder / test::kJobFile, time);
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(R"([{"log_id":"2"}])"));
}

TEST_F(JobFile, AFileThatIsCutShortIsSeen) {
  writeJobs(kThree);
  worker.readJSONFile();
  writeJobs(std::string(kThree).substr(0, 20));
  EXPECT_TRUE(worker.readJSONFile().isNothing());
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(kThree));
}

TEST_F(JobFile, AFileThatALinkHasTakenThePlaceOfIsSeen) {
  writeJobs(kThree);
  worker.readJSONFile();
  folder.write("elsewhere", R"([{"log_id":"9"}])");
  removeJobs();
  std::filesystem::create_symlink(folder / "elsewhere", folder / test::kJobFile);
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(R"([{"log_id":"9"}])"));
}

TEST_F(JobFile, TheSameBytesAreTheSameValueWhoeverWroteThem) {
  writeJobs(kThree);
  const Value first = worker.readJSONFile();
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFile(), first);
}

TEST_F(JobFile, WhatSomeoneElseAddsAfterAnUpdateIsKeptByTheNext) {
  writeJobs(kThree);
  worker.updateJSONFile(Value::dictionary({{"log_id", "2"}, {"n", "changed"}}));
  Value jobs = platform::parseJson(jobText());
  jobs.append(Value::dictionary({{"log_id", "4"}}));
  writeJobs(*platform::printJson(jobs));
  worker.updateJSONFile(Value::dictionary({{"log_id", "1"}, {"n", "too"}}));
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(R"([{"log_id":"1","n":"too"},
      {"log_id":"2","n":"changed"},{"log_id":"3","n":3},{"log_id":"4"}])"));
}

TEST_F(JobFile, AWriteThatFailedIsNotRemembered) {
  writeJobs(kThree);
  worker.readJSONFile();
  worker.setBGPPath(folder / "no folder/BGPLog.json");
  worker.writeJSONFile(Value::array());
  worker.setBGPPath(folder / test::kJobFile);
  EXPECT_EQ(worker.readJSONFile(), platform::parseJson(kThree));
}

// --- what the store does

TEST_F(JobFile, TheQueryFindsTheRecordWithItsLogId) {
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFileDict(query("2")).get("n").integerValue(), 2);
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = ("));
}

TEST_F(JobFile, AQueryWithoutAMatchGivesTheLastRecord) {
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFileDict(query("9")).get("n").integerValue(), 3);
}

TEST_F(JobFile, OfTwoRecordsWithTheLogIdTheFirstIsGiven) {
  writeJobs(R"([{"log_id":"1","n":1},{"log_id":"1","n":2}])");
  EXPECT_EQ(worker.readJSONFileDict(query("1")).get("n").integerValue(), 1);
}

TEST_F(JobFile, RecordsWithoutALogIdArePassedOverByTheQuery) {
  writeJobs(R"([{"n":1},{"log_id":"1","n":2},{"n":3}])");
  EXPECT_EQ(worker.readJSONFileDict(query("1")).get("n").integerValue(), 2);
}

TEST_F(JobFile, AnEmptyFileOrAQueryWithoutLogIdGivesAnEmptyDictionary) {
  EXPECT_EQ(worker.readJSONFileDict(query("1")), Value::dictionary());
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFileDict(Value::dictionary()), Value::dictionary());
  EXPECT_EQ(worker.readJSONFileDict(Value()), Value::dictionary());
}

TEST_F(JobFile, AQueryWithoutALogIdReadsTheFileAllTheSame) {
  writeJobs(kThree);
  worker.readJSONFileDict(Value::dictionary());
  worker.readJSONFileDict(Value());
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = (",
                                 "readJSONFileDict: currentJobArray = ("));
}

TEST_F(JobFile, AQueryWithoutALogIdOnAMissingFileLogsTheReasonOnce) {
  removeJobs();
  EXPECT_EQ(worker.readJSONFileDict(Value::dictionary()), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict error: open " + shared() +
                                 "utility/command/BGPLog.json: No such file or directory"));
}

TEST_F(JobFile, AQueryOnAMissingFileLogsTheReasonOnceAndGivesAnEmptyDictionary) {
  removeJobs();
  EXPECT_EQ(worker.readJSONFileDict(query("1")), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict error: open " + shared() +
                                 "utility/command/BGPLog.json: No such file or directory"));
}

TEST_F(JobFile, AQueryOnWhatIsNotJsonGivesAnEmptyDictionary) {
  writeJobs("no json");
  EXPECT_EQ(worker.readJSONFileDict(query("1")), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = (null)"));
}

TEST_F(JobFile, AQueryMeetingALogIdThatIsNoStringGivesThatRecordAndLogsTheReason) {
  writeJobs(R"([{"log_id":"1","n":1},{"log_id":5,"n":2},{"log_id":"3","n":3}])");
  EXPECT_EQ(worker.readJSONFileDict(query("3")).get("n").integerValue(), 2);
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = (",
                                 StartsWith("readJSONFileDict error: ")));
}

TEST_F(JobFile, AQueryMeetingARecordThatIsNoneGivesItAndLogsTheReason) {
  writeJobs(R"([{"log_id":"1"},"record",{"log_id":"3"}])");
  EXPECT_EQ(worker.readJSONFileDict(query("3")), Value("record"));
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = (",
                                 "readJSONFileDict error: asked a string for the key \"log_id\""));
}

TEST_F(JobFile, AQueryByALogIdThatIsNoStringOnlyMattersWhereARecordHasOne) {
  const Value number = Value::dictionary({{"log_id", Value::integer(5)}});
  writeJobs(R"([{"n":1},{"n":2}])");
  EXPECT_EQ(worker.readJSONFileDict(number).get("n").integerValue(), 2);
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = ("));
  writeJobs(kThree);
  EXPECT_EQ(worker.readJSONFileDict(number).get("n").integerValue(), 1);
  EXPECT_THAT(log().back(), StartsWith("readJSONFileDict error: "));
}

TEST_F(JobFile, AQueryOnATopLevelObjectLogsTheReasonAfterTheArrayLine) {
  writeJobs(R"({"log_id":"1"})");
  EXPECT_EQ(worker.readJSONFileDict(query("1")), Value::dictionary());
  EXPECT_THAT(log(), ElementsAre("readJSONFileDict: currentJobArray = {",
                                 StartsWith("readJSONFileDict error: ")));
}

TEST_F(JobFile, WritingReplacesTheFileByPrettyPrintedJson) {
  worker.writeJSONFile(Value::array({query("1")}));
  EXPECT_EQ(jobText(), "[\n  {\n    \"log_id\": \"1\"\n  }\n]");
  EXPECT_THAT(log(),
              ElementsAre("writeJSONFile: writeJSONFile, newArray = (",
                          "writeJSONFile: writeJSONFile, _BGPPath = " + folder / test::kJobFile));
}

TEST_F(JobFile, WhatJsonHasNoFormForWritesNothingButTheLogLines) {
  writeJobs(kThree);
  worker.writeJSONFile(Value::array({Value::data("x")}));
  EXPECT_EQ(jobText(), kThree);
  EXPECT_EQ(log().size(), 2U);
}

TEST_F(JobFile, WritingLogsBeforeItWrites) {
  writeJobs(kThree);
  const test::FullFile full;
  setLogPath(full.path().c_str());
  EXPECT_THROW(worker.writeJSONFile(Value::array()), Exception);
  EXPECT_EQ(jobText(), kThree);
}

TEST_F(JobFile, AFailedWriteIsSilent) {
  std::filesystem::remove_all(shared() + "utility/command");
  worker.writeJSONFile(Value::array());
  EXPECT_EQ(log().size(), 2U);
}

TEST_F(JobFile, AnUpdateChangesEveryRecordWithTheLogIdAndNoOther) {
  writeJobs(R"([{"log_id":"5","a":1},{"log_id":"6","state_id":"WAIT"},{"log_id":"5","b":2}])");
  worker.updateJSONFile(Value::dictionary({{"log_id", "5"}, {"state_id", "RUN"}}));
  EXPECT_EQ(jobs(), platform::parseJson(R"([{"log_id":"5","a":1,"state_id":"RUN"},
      {"log_id":"6","state_id":"WAIT"},{"log_id":"5","b":2,"state_id":"RUN"}])"));
}

TEST_F(JobFile, AnUpdateLogsWhatItReadAndWhatItWrites) {
  writeJobs(kThree);
  worker.updateJSONFile(query("2"));
  EXPECT_THAT(log(),
              ElementsAre("updateJSONFile: currentJobArray = (",
                          "updateJSONFile: updateJSONFile, newJobArray = (",
                          "writeJSONFile: writeJSONFile, newArray = (",
                          "writeJSONFile: writeJSONFile, _BGPPath = " + folder / test::kJobFile));
}

TEST_F(JobFile, AnUpdateWithAnUnknownLogIdRewritesTheSameRecordsPrettyPrinted) {
  writeJobs(kThree);
  worker.updateJSONFile(Value::dictionary({{"log_id", "9"}, {"n", "new"}}));
  EXPECT_EQ(jobs(), platform::parseJson(kThree));
  EXPECT_EQ(jobText(), *platform::printJson(platform::parseJson(kThree)));
}

TEST_F(JobFile, AnUpdateWithoutALogIdLeavesTheFileAlone) {
  writeJobs(kThree);
  worker.updateJSONFile(Value::dictionary({{"n", "new"}}));
  worker.updateJSONFile(Value());
  EXPECT_EQ(jobText(), kThree);
  EXPECT_THAT(log(), ElementsAre("updateJSONFile: currentJobArray = (",
                                 "updateJSONFile: currentJobArray = ("));
}

TEST_F(JobFile, AnUpdateReplacesAValueWhole) {
  writeJobs(R"([{"log_id":"1","output":{"a":1,"b":2}}])");
  worker.updateJSONFile(
      Value::dictionary({{"log_id", "1"}, {"output", Value::dictionary({{"c", "3"}})}}));
  EXPECT_EQ(jobs(), platform::parseJson(R"([{"log_id":"1","output":{"c":"3"}}])"));
}

TEST_F(JobFile, AnUpdateKeepsUnknownKeysNumbersAndOrderToTheLetter) {
  writeJobs(
      R"([{"z":12345678901234567890123,"log_id":"1","é":0.10,"deep":{"y":[1e3,null,true]},"a":-0}])");
  worker.updateJSONFile(Value::dictionary({{"log_id", "1"}, {"state_id", "RUN"}}));
  EXPECT_EQ(jobText(),
            "[\n  {\n    \"z\": 12345678901234567890123,\n    \"log_id\": \"1\",\n"
            "    \"é\": 0.10,\n    \"deep\": {\n      \"y\": [\n        1e3,\n        null,\n"
            "        true\n      ]\n    },\n    \"a\": -0,\n    \"state_id\": \"RUN\"\n  }\n]");
}

TEST_F(JobFile, AnUpdateOfADamagedFileReplacesItByAnEmptyArray) {
  writeJobs("[{\"log_id\":\"1\"");
  worker.updateJSONFile(query("1"));
  EXPECT_EQ(jobText(), "[]");
}

TEST_F(JobFile, AnUpdateOfAMissingFileRaises) {
  removeJobs();
  EXPECT_THROW(worker.updateJSONFile(query("1")), Exception);
  EXPECT_FALSE(std::filesystem::exists(folder / test::kJobFile));
}

TEST_F(JobFile, AnUpdateMeetingALogIdThatIsNoStringRaisesAndWritesNothing) {
  const std::string text = R"([{"log_id":"1"},{"log_id":null}])";
  writeJobs(text);
  EXPECT_THROW(worker.updateJSONFile(query("1")), Exception);
  EXPECT_EQ(jobText(), text);
}

TEST_F(JobFile, AnUpdateByALogIdThatIsNoStringRaises) {
  writeJobs(kThree);
  EXPECT_THROW(worker.updateJSONFile(Value::dictionary({{"log_id", Value::integer(1)}})),
               Exception);
  EXPECT_EQ(jobText(), kThree);
}

TEST_F(JobFile, AnUpdateMeetingARecordThatIsNoDictionaryRaises) {
  const std::string text = R"([{"log_id":"1"},"record"])";
  writeJobs(text);
  EXPECT_THROW(worker.updateJSONFile(query("1")), Exception);
  EXPECT_EQ(jobText(), text);
}

TEST_F(JobFile, AnUpdateOfATopLevelObjectRaisesAfterTheArrayLine) {
  writeJobs(R"({"log_id":"1"})");
  EXPECT_THROW(worker.updateJSONFile(query("1")), Exception);
  EXPECT_EQ(jobText(), R"({"log_id":"1"})");
  EXPECT_THAT(log(), ElementsAre("updateJSONFile: currentJobArray = {"));
}

TEST_F(JobFile, AnUpdateWhoseLogFailsRaisesAndWritesNothing) {
  writeJobs(kThree);
  const test::FullFile full;
  setLogPath(full.path().c_str());
  EXPECT_THROW(worker.updateJSONFile(query("1")), Exception);
  EXPECT_EQ(jobText(), kThree);
}

}  // namespace
}  // namespace kelvane
