// The examples of docs/job-file.md with one fault each: the schema refuses every one of them.

#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/docs/PageWorld.h"
#include "tests/support/JobFileSchema.h"

namespace kelvane::docs {
namespace {

using nlohmann::json;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kQuery[] = "getOnlineUpdateData";
constexpr char kDownload[] = "downloadOnlineUpdateFile";
constexpr char kInstallation[] = "updateSW";
constexpr char kFirmware[] = "updateFW";

// A change to an example's record: the value at the place is another one, or is gone.
struct Fault {
  const char* command;
  const char* place;
  const char* value = nullptr;
};

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
  return out << fault.command << " " << fault.place << " " << (fault.value ? fault.value : "gone");
}

json withFault(const std::string& example, const Fault& fault) {
  json record = json::parse(example).at(0);
  const json::json_pointer place(fault.place);
  if (fault.value != nullptr) {
    record.at(place) = json::parse(fault.value);
  } else if (json& parent = record.at(place.parent_pointer()); parent.erase(place.back()) == 0) {
    throw std::runtime_error(std::string("nothing is at ") + fault.place);
  }
  return record;
}

bool isRefused(const std::string& example, const Fault& fault) {
  const json file = json::array({withFault(example, fault)});
  return !test::validateJobFile(file.dump()).empty();
}

class WaitingFault : public ::testing::TestWithParam<Fault> {};

TEST_P(WaitingFault, IsRefused) {
  const json record = withFault(workedExample(GetParam().command).before, GetParam());
  EXPECT_THAT(test::validateWaitingJob(record.dump()), Not(IsEmpty()));
}

constexpr Fault kWaiting[] = {
    {kQuery, "/log_id"},
    {kQuery, "/log_id", "15"},
    {kQuery, "/job_id"},
    {kQuery, "/state_id"},
    {kQuery, "/input_parameters"},
    {kQuery, "/input_parameters", "[]"},
    {kQuery, "/input_parameters/productid"},
    {kQuery, "/input_parameters/productid", "5"},
    {kQuery, "/input_parameters/version"},
    {kQuery, "/input_parameters/version", "5"},
    {kQuery, "/input_parameters/url"},
    {kQuery, "/input_parameters/url", "5"},
    {kQuery, "/input_parameters/folder"},
    {kQuery, "/input_parameters/folder", "5"},
    {kDownload, "/input_parameters", "{}"},
    {kDownload, "/input_parameters", "[]"},
    {kDownload, "/input_parameters/0", "5"},
    {kDownload, "/input_parameters/0/url"},
    {kInstallation, "/input_parameters", "[]"},
    {kInstallation, "/input_parameters/file_path"},
    {kInstallation, "/input_parameters/file_path", "5"},
    {kFirmware, "/input_parameters", "{}"},
    {kFirmware, "/input_parameters", "[]"},
    {kFirmware, "/input_parameters/0", "5"},
    {kFirmware, "/input_parameters/0/wwn"},
    {kFirmware, "/input_parameters/0/wwn", "5"},
    {kFirmware, "/input_parameters/0/file_path"},
    {kFirmware, "/input_parameters/0/file_path", "5"},
    {kFirmware, "/input_parameters/0", R"({"wwn":"A","file_path":"/a","cpld_percentage":0})"},
    {kFirmware, "/input_parameters/0", R"({"wwn":"A","file_path":"/a","total_percentage":0})"},
};
INSTANTIATE_TEST_SUITE_P(All, WaitingFault, ::testing::ValuesIn(kWaiting));

// A fault that is one with RUN and with FREE.
class TakenFault : public ::testing::TestWithParam<Fault> {};

TEST_P(TakenFault, IsRefused) {
  const WorkedExample example = workedExample(GetParam().command);
  EXPECT_TRUE(isRefused(example.during, GetParam()));
  EXPECT_TRUE(isRefused(example.after, GetParam()));
}

constexpr Fault kTaken[] = {
    {kQuery, "/input_parameters"},
    {kQuery, "/input_parameters/folder"},
    {kQuery, "/resultStr", R"("done")"},
    {kDownload, "/input_parameters"},
    {kDownload, "/input_parameters", "{}"},
    {kDownload, "/input_parameters", "[]"},
    {kDownload, "/input_parameters/0", "5"},
    {kDownload, "/input_parameters/0/url"},
    {kDownload, "/output"},
    {kDownload, "/output", "{}"},
    {kInstallation, "/input_parameters"},
    {kInstallation, "/input_parameters/file_path"},
    {kInstallation, "/output"},
    {kInstallation, "/output/file_path"},
    {kFirmware, "/result"},
    {kFirmware, "/resultStr"},
    {kFirmware, "/resultStr", "5"},
    {kFirmware, "/output", "{}"},
    {kFirmware, "/output/0", "5"},
    {kFirmware, "/output/0/wwn"},
    {kFirmware, "/output/0/file_path"},
    {kFirmware, "/output/0/fw_percentage"},
    {kFirmware, "/output/0/fw_percentage", "256"},
    {kFirmware, "/output/0/cpld_percentage"},
    {kFirmware, "/output/0/cpld_percentage", "null"},
    {kFirmware, "/output/0/total_percentage"},
};
INSTANTIATE_TEST_SUITE_P(All, TakenFault, ::testing::ValuesIn(kTaken));

class RunningFault : public ::testing::TestWithParam<Fault> {};

TEST_P(RunningFault, IsRefused) {
  EXPECT_TRUE(isRefused(workedExample(GetParam().command).during, GetParam()));
}

constexpr Fault kRunning[] = {
    {kFirmware, "/input_parameters"},
    {kFirmware, "/output"},
    {kFirmware, "/result", "1"},
    {kFirmware, "/resultStr", R"("done")"},
};
INSTANTIATE_TEST_SUITE_P(All, RunningFault, ::testing::ValuesIn(kRunning));

class FinishedFault : public ::testing::TestWithParam<Fault> {};

TEST_P(FinishedFault, IsRefused) {
  EXPECT_TRUE(isRefused(workedExample(GetParam().command).after, GetParam()));
}

constexpr Fault kFinished[] = {
    {kDownload, "/result", "259"},           {kDownload, "/resultStr", R"("file is not found")"},
    {kDownload, "/output/0", "5"},           {kDownload, "/output/0/productid"},
    {kDownload, "/output/0/productid", "5"}, {kDownload, "/output/0/file_path", "5"},
};
INSTANTIATE_TEST_SUITE_P(All, FinishedFault, ::testing::ValuesIn(kFinished));

}  // namespace
}  // namespace kelvane::docs
