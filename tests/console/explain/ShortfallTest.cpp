// What a job with result 0 did not do.

#include <gtest/gtest.h>

#include "console/explain/Shortfall.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;

Value doneWith(const std::string& command, const std::string& more = "", int result = 0) {
  return parseJson(R"({"log_id": "17", "job_id": ")" + command +
                   R"(", "state_id": "FREE", "result": )" + std::to_string(result) + more + "}");
}

TEST(Shortfall, OfAnInstallationIsTheFirstComplaintOfTheTools) {
  const InstallationTraces traces{{"x", "rm: cannot remove '/a'", "cp: b"}};
  EXPECT_EQ(shortfallOf(doneWith("updateSW"), {.isFound = true}, traces),
            "the system's tools complained: rm: cannot remove '/a'");
  EXPECT_EQ(shortfallOf(doneWith("updateSW"), {}, traces),
            "the system's tools complained in this run or an earlier one: rm: cannot remove '/a'");
  EXPECT_EQ(shortfallOf(doneWith("updateSW"), {}, {}), "");
  EXPECT_EQ(shortfallOf(doneWith("updateSW", R"(, "input_parameters": {"file_path": ""})"), {}, {}),
            "the path of its package is empty");
}

TEST(Shortfall, OfAnInstallationIsWhatIsNoApplication) {
  const Value etc = doneWith("updateSW", R"(, "input_parameters": {"file_path": "/etc"})");
  EXPECT_EQ(shortfallOf(etc, {}, {}),
            "its package, /etc, is no application bundle: it has no folder Contents");
  EXPECT_EQ(shortfallOf(etc, {}, {.isCopy = true}), "");
}

// The package may have gone since.
TEST(Shortfall, OfAMissingPackageIsOneOnlyWhereTheApplicationIsMissingToo) {
  const Value gone = doneWith("updateSW", R"(, "input_parameters": {"file_path": "/no/New.app"})");
  EXPECT_EQ(shortfallOf(gone, {}, {}), "");
  EXPECT_EQ(shortfallOf(gone, {}, {.missingApplication = "/no/Manager.app"}),
            "its package, /no/New.app, does not exist, and no application stands at "
            "/no/Manager.app");
}

TEST(Shortfall, OfAQueryIsTheMissingCatalogue) {
  EXPECT_EQ(shortfallOf(doneWith("getOnlineUpdateData"), {}, {}),
            "the update engine left no catalogue");
  EXPECT_EQ(shortfallOf(doneWith("getOnlineUpdateData", R"(, "output": [])"), {}, {}), "");
}

TEST(Shortfall, OfAFirmwareJobIsACpldThatWasNotFlashed) {
  const Value record = doneWith("updateFW", R"(, "input_parameters": [
      {"wwn": "A1", "file_path": "/a"}], "output": [{"wwn": "A1", "cpld_percentage": 30,
      "fw_percentage": 100, "total_percentage": 100}])");
  const LogStretch log = test::stretchWith(record, test::controllerLines("/a") +
                                                       test::logLine("flashCPLD", "Flash Error") +
                                                       test::flashedLines() + test::endLine("17"));
  EXPECT_EQ(shortfallOf(record, log, {}), "the CPLD of A1 was not flashed");
  EXPECT_EQ(shortfallOf(record, {}, {}), "the CPLD of A1 was not flashed");
}

TEST(Shortfall, OfAJobThatFailedThereIsNone) {
  EXPECT_EQ(shortfallOf(doneWith("updateSW", "", 5), {}, {{"cp: a"}}), "");
}

}  // namespace
}  // namespace kelvane::console
