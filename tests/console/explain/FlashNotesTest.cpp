// What is told of controllers besides the result.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/explain/FlashNotes.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using platform::Value;
using test::controllerLines;
using test::endLine;
using test::flashedLines;
using test::logLine;
using test::stretchWith;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A finished job of three controllers; the second one's flash has ended, well or not.
Value job(const std::string& result) {
  return platform::parseJson(R"({"log_id": "17", "job_id": "updateFW", "state_id": "FREE",
    "result": )" + result + R"(, "input_parameters": [
      {"wwn": "A1", "file_path": "/a"}, {"wwn": "B2", "file_path": "/b"},
      {"wwn": "C3", "file_path": "/c"}],
    "output": [
      {"wwn": "A1", "cpld_percentage": 100, "fw_percentage": 100, "total_percentage": 100},
      {"wwn": "B2", "cpld_percentage": 30, "fw_percentage": 100, "total_percentage": 100},
      {"wwn": "C3", "cpld_percentage": 0, "fw_percentage": 0, "total_percentage": 0}]})");
}

std::string firstDone() { return controllerLines("/a") + flashedLines(); }

TEST(FlashNotes, NameTheControllerThatFailedAndTheLineThatTellsIt) {
  const Value record = job("32852");
  const LogStretch log = stretchWith(
      record, firstDone() + controllerLines("/b") + test::writtenLine("17", "B2", 80) +
                  logLine("updateFW", "Flash Error") + test::writtenLine("17", "B2", 100) +
                  logLine("updateFW", "pPage0->ci_ProductID = 4301") + endLine("17"));
  const auto failed = failedController(record, log);
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->wwn, "B2");
  EXPECT_EQ(failed->progress, "1 done, B2 failed at 90%, 1 not started");
  EXPECT_EQ(failed->fault, "14:03:07 updateFW: Flash Error");
  EXPECT_THAT(flashNotes(record, log), ElementsAre("B2 failed: 14:03:07 updateFW: Flash Error"));
}

TEST(FlashNotes, WithoutALogTheRecordTellsWhichOneFailed) {
  const auto failed = failedController(job("32852"), {});
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->progress, "1 done, B2 failed, 1 not started");
  EXPECT_THAT(flashNotes(job("32852"), {}), ElementsAre("B2 failed"));
}

TEST(FlashNotes, AControllerThatIsNotThereIsTheOneBehindThoseThatWereFound) {
  const Value record = job("1026");
  const LogStretch log =
      stretchWith(record, firstDone() + controllerLines("/b") + flashedLines() +
                              logLine("updateFW", "pPage0->ci_ProductID = 4301") + endLine("17"));
  EXPECT_EQ(failedController(record, log)->progress, "2 done, C3 failed at 0%");
  const LogStretch none = stretchWith(record, endLine("17"));
  EXPECT_EQ(failedController(record, none)->wwn, "A1");
}

TEST(FlashNotes, WhereNoControllerWasReachedNoneHasFailed) {
  const Value record = job("257");
  EXPECT_FALSE(failedController(record, stretchWith(record, endLine("17"))));
}

TEST(FlashNotes, ABridgeThatFailedIsThatOfTheLastController) {
  const Value record = job("32850");
  const LogStretch log = stretchWith(
      record, firstDone() + controllerLines("/b") + flashedLines() +
                  logLine("updateFW", "qvxflash start zr_mac_flashUSBFWbin") + endLine("17"));
  EXPECT_THAT(flashNotes(record, log),
              ElementsAre("B2 failed; the log's last step of it: 14:03:07 updateFW: qvxflash start "
                          "zr_mac_flashUSBFWbin"));
}

TEST(FlashNotes, CpldsThatWereTriedAgainOrNotFlashedAreTold) {
  const Value record = job("0");
  const std::string retry = "Found error, try to flash CPLD again, retry ";
  const LogStretch log = stretchWith(
      record, controllerLines("/a") + logLine("flashCPLD", retry + "1 times...") + flashedLines() +
                  controllerLines("/b") + logLine("flashCPLD", retry + "3 times...") +
                  logLine("flashCPLD", "Flash Error") + flashedLines() + controllerLines("/c") +
                  flashedLines() + endLine("17"));
  EXPECT_THAT(flashNotes(record, log),
              ElementsAre("A1: its CPLD's flash was tried again once",
                          "B2: its CPLD's flash was tried again 3 times",
                          "B2: its CPLD was not flashed: 14:03:07 flashCPLD: Flash Error"));
  EXPECT_THAT(flashNotes(record, {}), ElementsAre("B2: its CPLD was left at 30%"));
}

TEST(FlashNotes, OfOtherJobsThereAreNone) {
  EXPECT_THAT(flashNotes(platform::parseJson(R"({"log_id": "17", "job_id": "updateSW",
                                                 "state_id": "FREE", "result": 0})"),
                         {}),
              IsEmpty());
}

}  // namespace
}  // namespace kelvane::console
