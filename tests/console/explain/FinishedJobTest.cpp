// Finished jobs whose result does not tell what became of them, or whose record is at fault.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/JobExplanation.h"
#include "platform/Json.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

Value doneJob(const std::string& command, const std::string& rest) {
  return parseJson(R"({"log_id": "17", "job_id": ")" + command + R"(", "state_id": "FREE", )" +
                   rest + "}");
}

Value failedJob(int result, const std::string& inputs) {
  return doneJob("updateFW", R"("result": )" + std::to_string(result) +
                                 R"(, "resultStr": "x", "input_parameters": )" + inputs);
}

Explanation told(const Value& record, const std::string& lines) {
  return explainJob(record, {false, test::stretchWith(record, lines + test::endLine("17"))});
}

// --- installations

Value installation(const std::string& package) {
  return doneJob("updateSW",
                 R"("result": 0, "input_parameters": {"file_path": ")" + package + "\"}");
}

TEST(FinishedInstallation, HasFailedWhereTheToolsComplained) {
  JobCircumstances copied{.isCopy = true};
  copied.log.isFound = true;
  copied.standardError = {"a line", "cp: cannot create '/x': Permission denied", "cp: more"};
  const Explanation found = explainJob(installation("/a"), copied);
  EXPECT_THAT(found.meaning, HasSubstr("\"cp: cannot create '/x': Permission denied\". It failed"));
  EXPECT_THAT(found.advice,
              StartsWith("Mend what they complained of, such as a missing permission"));
  EXPECT_EQ(found.tryAgain, "yes, under another log_id");
  EXPECT_TRUE(found.fellShort);
}

TEST(FinishedInstallation, OtherWordsOnStandardErrorAreNoComplaint) {
  JobCircumstances copied{.isCopy = true};
  copied.standardError = {"the worker's library: a warning"};
  const Explanation found = explainJob(installation("/a"), copied);
  EXPECT_FALSE(found.fellShort);
  EXPECT_THAT(found.meaning, EndsWith("The result is 0 whatever became of that."));
}

TEST(FinishedInstallation, SaysThatThePackageIsNotThere) {
  const Explanation missing = explainJob(installation("/no/Manager.app"), {});
  EXPECT_THAT(missing.meaning, HasSubstr("its package, /no/Manager.app, does not exist. Unless"));
  EXPECT_EQ(missing.tryAgain, "not as it is");
  const Explanation empty = explainJob(installation(""), {.isCopy = true});
  EXPECT_THAT(empty.meaning, EndsWith("the path of its package is empty. The application was "
                                      "to be removed, and none put in its place."));
}

TEST(FinishedInstallation, OfWhatIsNoApplicationPutsThatInItsPlace) {
  const Explanation found = explainJob(installation("/etc"), {});
  EXPECT_THAT(found.meaning, EndsWith("it has no folder Contents. Unless another one stood there "
                                      "then, the application was removed, and this put in its "
                                      "place."));
  EXPECT_TRUE(found.fellShort);
}

TEST(FinishedInstallation, SaysThatNoApplicationStandsThere) {
  const Explanation found =
      explainJob(installation("/no/New.app"), {.missingApplication = "/no/Manager.app"});
  EXPECT_THAT(found.meaning, EndsWith("No application stands at /no/Manager.app: it was removed, "
                                      "and none put in its place."));
  EXPECT_TRUE(found.fellShort);
}

// --- faulty records

TEST(FinishedFirmwareJob, WithAFaultyEntryFailsTheSameWayAgain) {
  const Explanation found = told(failedJob(1026, R"([{"wwn": 5, "file_path": "/a"}])"), "");
  EXPECT_EQ(found.meaning,
            "It cannot be carried out as it is: input_parameters[0] has a \"wwn\" that is no "
            "string. No controller was flashed.");
  EXPECT_EQ(found.whoActs, "support");
  EXPECT_EQ(found.tryAgain, "not as it is");
}

TEST(FinishedFirmwareJob, WithAnEmptyWwnFailsTheSameWayAgain) {
  const Explanation found = told(failedJob(1026, R"([{"wwn": "", "file_path": "/a"}])"), "");
  EXPECT_EQ(found.meaning,
            "It cannot be carried out as it is: input_parameters[0] has an empty \"wwn\". No "
            "controller was flashed.");
  EXPECT_EQ(found.controller, "a controller without a WWN failed at 0%");
}

TEST(FinishedFirmwareJob, WithoutParametersFailsTheSameWayAgain) {
  const Explanation found =
      explainJob(doneJob("updateFW", R"("result": 1026, "resultStr": "x")"), {});
  EXPECT_EQ(found.meaning, "It cannot be carried out as it is: there is no input_parameters.");
  EXPECT_EQ(found.tryAgain, "not as it is");
}

TEST(FinishedFirmwareJob, AFaultBehindTheControllerThatIsNotThereIsNotBlamed) {
  const Explanation found =
      told(failedJob(1026, R"([{"wwn": "A1", "file_path": "/a"}, {"file_path": "/b"}])"), "");
  EXPECT_THAT(found.meaning, StartsWith("No controller has the WWN of an entry"));
}

// --- results that nobody makes

TEST(FinishedJob, WithANegativeResultWasWrittenByAnother) {
  for (const char* command : {"downloadOnlineUpdateFile", "updateFW"}) {
    const Explanation found = explainJob(doneJob(command, R"("result": -1, "resultStr": "x")"), {});
    EXPECT_EQ(found.subject, "job 17 (" + std::string(command) +
                                 "): finished with the result -1, which is no status of 32 bits");
    EXPECT_THAT(found.meaning, StartsWith("The worker ends no job so: another program wrote"));
  }
}

TEST(FinishedJob, WithAStatusOfTheFrameworkButWithoutItWasWrittenByAnother) {
  const Explanation found =
      explainJob(doneJob("updateSW", R"("result": 32850, "resultStr": "x")"), {});
  EXPECT_EQ(found.subject,
            "job 17 (updateSW): finished with the result 32850, which is no result of updateSW");
}

// --- images

constexpr char kMissing[] = R"([{"wwn": "A1", "file_path": "/no.img"}])";

TEST(FinishedFirmwareJob, SaysThatItsImageIsNotThere) {
  const Explanation found = told(failedJob(32850, kMissing), test::controllerLines("/no.img"));
  EXPECT_EQ(found.meaning,
            "The framework looked at the image and did not take it: as it is now, /no.img does not "
            "exist. No controller was flashed.");
  EXPECT_EQ(found.whoActs, "user");
  EXPECT_EQ(found.tryAgain, "yes, once the image is there");
}

TEST(FinishedFirmwareJob, SaysThatItsImageIsRelativeOrAFolder) {
  const Explanation relative = told(failedJob(32850, R"([{"wwn": "A1", "file_path": "a.img"}])"),
                                    test::controllerLines("a.img"));
  EXPECT_THAT(relative.meaning, HasSubstr("a.img is relative"));
  EXPECT_EQ(relative.tryAgain, "not as it is");
  const Explanation folder = told(failedJob(32850, R"([{"wwn": "A1", "file_path": "/tmp"}])"),
                                  test::controllerLines("/tmp"));
  EXPECT_THAT(folder.meaning, HasSubstr("/tmp is a folder"));
}

TEST(FinishedFirmwareJob, SaysThatTheImageWasRefused) {
  const Value record = failedJob(32855, R"([{"wwn": "A1", "file_path": "/dev/null"}])");
  const Explanation qvxf = explainJob(
      record,
      {.log = test::stretchWith(
           record, test::controllerLines("/dev/null", "4801") +
                       test::logLine("updateFW", "[WRONG] zr_checkQVXFFlashImage = 0x8057") +
                       test::logLine("updateFW", "u32Ret is not 0, u32Ret = 0x8057") +
                       test::endLine("17")),
       .isCopy = true});
  EXPECT_EQ(qvxf.meaning,
            "The framework looked at the image and did not take it; it says \"x\". No controller "
            "was flashed.");
  EXPECT_THAT(qvxf.details, ElementsAre(EndsWith("; product 0x4801 takes QVXF images")));
  EXPECT_EQ(qvxf.whoActs, "user");
  EXPECT_EQ(qvxf.tryAgain, "not with this image");
}

TEST(FinishedFirmwareJob, AStatusOfALaterStepIsTheFrameworksOwn) {
  const Explanation found = told(failedJob(32858, kMissing),
                                 test::controllerLines("/no.img") +
                                     test::logLine("updateFW", "Start transferring image, please"));
  EXPECT_EQ(found.whoActs, "support");
  EXPECT_EQ(found.tryAgain, "when the cause is known");
}

// --- CPLDs

TEST(FinishedFirmwareJob, WhereTheLogTellsTheProductACpldIsNotHedged) {
  const Value record = doneJob("updateFW", R"("result": 0,
      "input_parameters": [{"wwn": "A1", "file_path": "/a"}],
      "output": [{"wwn": "A1", "cpld_percentage": 40, "fw_percentage": 100,
                  "total_percentage": 100}])");
  const Explanation found =
      told(record, test::controllerLines("/a") + test::logLine("flashCPLD", "Flash Error") +
                       test::flashedLines());
  EXPECT_EQ(found.meaning,
            "Every controller has its firmware, but not every CPLD was flashed: A1 (40%).");
  EXPECT_EQ(found.tryAgain, "yes, for such a controller");
  EXPECT_TRUE(found.fellShort);
}

// --- results

TEST(FinishedJob, AResultThatIsNoNumberIsTold) {
  const Explanation found = explainJob(doneJob("updateFW", R"("result": "7")"), {});
  EXPECT_EQ(found.subject, "job 17 (updateFW): finished with the result \"7\", which is no number");
}

}  // namespace
}  // namespace kelvane::console
