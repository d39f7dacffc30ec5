// The laws of a job's outcome tell of what they forbid, and take what is documented.

#include <cstdint>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/proofs/OutcomeLaws.h"

namespace kelvane::proofs {
namespace {

using platform::Value;
using ::testing::HasSubstr;

Value recordOf(const std::string& command, const Value& output) {
  return Value::dictionary({{"log_id", "17"},
                            {"job_id", command},
                            {"state_id", "FREE"},
                            {"input_parameters", Value::array()},
                            {"output", output},
                            {"result", Value::integer(0)},
                            {"resultStr", "no error"}});
}

std::string jobFileOf(const Value& record) { return *platform::printJson(Value::array({record})); }

// --- versions of the job file

Value installation() {
  const Value package = Value::dictionary({{"file_path", "/Manager.app"}});
  Value record = recordOf("updateSW", package);
  record.set("input_parameters", package);
  return record;
}

std::string faultWith(const std::string& key, const Value& value) {
  Value record = installation();
  record.set(key, value);
  return faultOfVersion(jobFileOf(record));
}

std::string faultWithout(const std::string& key) {
  const Value whole = installation();
  Value record = Value::dictionary();
  for (const auto& [each, value] : whole.entries()) {
    if (each != key) record.set(each, value);
  }
  return faultOfVersion(jobFileOf(record));
}

TEST(VersionLaw, TakesAFinishedJob) { EXPECT_EQ(faultOfVersion(jobFileOf(installation())), ""); }

TEST(VersionLaw, TakesAFinishedJobWhoseFirstWriteFailed) {
  EXPECT_EQ(faultWithout("result"), "");
  EXPECT_EQ(faultWithout("resultStr"), "");
  EXPECT_EQ(faultWithout("output"), "");
}

TEST(VersionLaw, TellsOfWhatIsMissing) {
  EXPECT_EQ(faultWithout("log_id"), "a version of the job file lacks log_id");
  EXPECT_EQ(faultWithout("job_id"), "a version of the job file lacks job_id");
  EXPECT_EQ(faultWithout("state_id"), "a version of the job file lacks state_id");
  EXPECT_EQ(faultWithout("input_parameters"), "a version of the job file lacks input_parameters");
}

TEST(VersionLaw, TellsOfAJobThatIsGoneOrHasAnotherBesideIt) {
  const std::string record = *platform::printJson(installation());
  constexpr char kNoJob[] = "a version of the job file has no job";
  EXPECT_EQ(faultOfVersion("[]"), kNoJob);
  EXPECT_EQ(faultOfVersion(record), kNoJob);
  EXPECT_EQ(faultOfVersion("[" + record + "," + record + "]"), kNoJob);
}

TEST(VersionLaw, TellsOfAnotherState) {
  EXPECT_EQ(faultWith("state_id", "WAIT"), "a version has a state of its own");
  EXPECT_EQ(faultWith("state_id", Value::integer(1)), "a version has a state of its own");
}

TEST(VersionLaw, TellsOfWhatIsNotValid) {
  EXPECT_THAT(faultWith("result", "0"), HasSubstr("Failed to validate"));
  EXPECT_THAT(faultWith("output", Value::array()), HasSubstr("Failed to validate"));
}

// --- successes

// A job that is told to have been one, where nothing was done.
class SuccessLaw : public ::testing::Test {
 protected:
  std::string faultOf(const std::string& scenario, const Value& output, const Value& undisturbed,
                      const std::string& said = "") {
    const World world(scenarioNamed(scenario));
    const std::string command = world.scenario().command;
    Value record = recordOf(command, output);
    record.set("result", Value::integer(result));
    world.folder.write(kJobFilePath, jobFileOf(record));
    world.folder.write(kLogPath, log);
    Baseline baseline;
    baseline.jobFiles = {jobFileOf(recordOf(command, undisturbed))};
    return faultOfSuccess(world, baseline, said);
  }

  std::int64_t result = 0;
  std::string log;
};

const Value kPackage = Value::array({Value::dictionary({{"file_path", "/no/package"}})});

TEST_F(SuccessLaw, TellsOfAnotherOutputOfAQuery) {
  EXPECT_EQ(faultOf("query", Value::array(), kPackage), "the query has another output");
  EXPECT_EQ(faultOf("query", kPackage, kPackage), "");
}

TEST_F(SuccessLaw, TellsOfADownloadThatIsNotThere) {
  constexpr char kNoDownload[] = "a success is told, and there is no download";
  EXPECT_EQ(faultOf("download", kPackage, kPackage), kNoDownload);
  const Value there = Value::array({Value::dictionary({{"file_path", "/"}})});
  EXPECT_EQ(faultOf("download", there, kPackage), "");
}

TEST_F(SuccessLaw, TakesADownloadThatIsNotThereBehindAnError) {
  log = "[00:00:00] [DownloadArea.cpp][1][syncFiles][error] no room\n";
  EXPECT_EQ(faultOf("download", kPackage, kPackage), "");
}

TEST_F(SuccessLaw, TellsOfTheOldFirmware) {
  constexpr char kOldFirmware[] = "a success is told, and the firmware is the old one";
  EXPECT_EQ(faultOf("qvxf", Value::array(), Value::array()), kOldFirmware);
  EXPECT_EQ(faultOf("standard", Value::array(), Value::array()), kOldFirmware);
}

TEST_F(SuccessLaw, TakesTheOldFirmwareWhereTheFrameworkCouldNotKeepTheNewOne) {
  EXPECT_EQ(faultOf("qvxf", Value::array(), Value::array(), "what was flashed is not kept"), "");
}

TEST_F(SuccessLaw, TakesAFailure) {
  result = 0x8054;
  EXPECT_EQ(faultOf("qvxf", Value::array(), Value::array()), "");
}

}  // namespace
}  // namespace kelvane::proofs
