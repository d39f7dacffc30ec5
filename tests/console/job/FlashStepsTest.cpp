// What the log tells of each controller of a firmware job.

#include <gtest/gtest.h>

#include "console/job/FlashSteps.h"
#include "tests/console/explain/LogOfFlashes.h"

namespace kelvane::console {
namespace {

using test::controllerLines;
using test::flashedLines;
using test::logLine;
using test::writtenLine;

std::vector<FlashSteps> steps(const std::string& log) { return flashStepsIn(parseLog(log)); }

TEST(FlashSteps, HaveImageAndProductOfEachController) {
  const auto found = steps(controllerLines("/a b.img") + flashedLines() +
                           controllerLines("/c.img", "4801") + flashedLines());
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].image, "/a b.img");
  EXPECT_EQ(found[0].product, "4301");
  EXPECT_FALSE(found[0].isQvxf);
  EXPECT_TRUE(found[0].isFlashed);
  EXPECT_TRUE(found[0].fault.empty());
  EXPECT_TRUE(found[1].isQvxf);
}

TEST(FlashSteps, AFlashErrorOfTheCpldIsNotOneOfTheFirmware) {
  const auto found =
      steps(controllerLines("/a") + logLine("flashCPLD", "Start transferring CPLD image, please") +
            logLine("flashCPLD", "Found error, try to flash CPLD again, retry 1 times...") +
            logLine("flashCPLD", "Found error, try to flash CPLD again, retry 2 times...") +
            logLine("flashCPLD", "Flash Error") + flashedLines());
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].cpldRetries, 2);
  EXPECT_EQ(found[0].cpldFault, "14:03:07 flashCPLD: Flash Error");
  EXPECT_EQ(found[0].fault, "");
}

TEST(FlashSteps, WhatFollowsAFailureIsOfEntriesThatWereNotStarted) {
  const auto found =
      steps(controllerLines("/a") + logLine("updateFW", "Flash Error") +
            logLine("updateFW", "pPage0->ci_ProductID = 4301") +
            logLine("updateFW", "u32Ret is not 0, u32Ret = 0x8054") + test::endLine("17"));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].fault, "14:03:07 updateFW: Flash Error");
  EXPECT_EQ(found[0].lastStep, found[0].fault);
  EXPECT_FALSE(found[0].isFlashed);
}

TEST(FlashSteps, EveryLineThatTellsAFaultIsOne) {
  for (const char* message :
       {"Flash Error", "There is another flash process running.", "Image format is invalid.",
        "[WRONG] zr_checkQVXFFlashImage = 0x8057"}) {
    EXPECT_EQ(steps(controllerLines("/a") + logLine("updateFW", message))[0].fault,
              "14:03:07 updateFW: " + std::string(message));
  }
  EXPECT_EQ(steps(controllerLines("/a") + logLine("updateFW", "[WRONG] zr_flashQVXFImage = 0x0"))[0]
                .fault,
            "");
}

TEST(FlashSteps, AnImageThatWasTransferredMayBeFlashed) {
  EXPECT_FALSE(steps(controllerLines("/a"))[0].hasBegun);
  for (const char* message :
       {"Start transferring image, please wait ...", "[WRONG] zr_transferQVXFFlashImage = 0x0"}) {
    EXPECT_TRUE(steps(controllerLines("/a") + logLine("updateFW", message))[0].hasBegun);
  }
}

TEST(FlashSteps, ThePercentageBeforeTheEndIsTheLastOneBelow100) {
  const auto log = parseLog(writtenLine("17", "A1", 40) + writtenLine("17", "A1", 90) +
                            writtenLine("17", "A1", 100) + writtenLine("18", "A1", 50));
  EXPECT_EQ(firmwareBeforeTheEnd(log, "18", "A1"), 50);
  EXPECT_EQ(firmwareBeforeTheEnd(log, "17", "B2"), std::nullopt);
  const std::span<const LogEntry> all(log);
  EXPECT_EQ(firmwareBeforeTheEnd(all.first(3), "17", "A1"), 90);
}

}  // namespace
}  // namespace kelvane::console
