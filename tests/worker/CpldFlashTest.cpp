#include <algorithm>
#include <filesystem>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/Json.h"
#include "tests/support/FullFile.h"
#include "tests/support/JobFiles.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using test::Lines;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class CpldFlash : public test::WorkerWorld {
 protected:
  CpldFlash() {
    writeJobs(R"([{"log_id":"17","output":[{"wwn":"A","file_path":"/img","fw_percentage":0}]}])");
    watchJobFile([](const Value& jobs) {
      const Value& progress = jobs.at(0).get("output").at(0);
      return fmt::format("{}/{}", progress.get("cpld_percentage").digits(),
                         progress.get("total_percentage").digits());
    });
    flash.productId = 0x4301;
    usb.usb_u32checkUSB = 0xB;
    cpld.at0 = 0xC;
    image.at0 = 0xD;
  }

  std::uint32_t run(std::int64_t devId = 3) {
    return worker.flashCPLD(entry, &flash, &usb, &cpld, &image, devId, "17");
  }
  // The lines of the flash itself, without the store's.
  Lines lines() const {
    Lines own;
    for (const std::string& line : logWithoutStore()) {
      own.push_back(line.substr(std::string("flashCPLD: ").size()));
    }
    return own;
  }

  const Value entry = Value::dictionary({{"wwn", "A"}, {"file_path", "/img"}});
  FlashParm flash = {};
  UsbParm usb = {};
  CpldParm cpld = {};
  FwImgInfo image = {};
};

TEST_F(CpldFlash, ACompleteFlashInCallsLinesAndVersions) {
  framework.cpldProgress = {{0, 0, 37}, {0, 1, 37}};
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(
      framework.calls,
      ElementsAre("zr_initializeCPLDProcess(3/0, 0)",
                  "zr_flashCPLDBin(3/0, 0, flash[4301  0], 0, usb[b 0], cpld[c], image[d 0])",
                  "zr_getCPLDProgress(3/0, 0, progress[zeroed])",
                  "zr_getCPLDProgress(3/0, 0, progress[0 0 37 0])",
                  "zr_getCPLDProgress(3/0, 0, progress[0 1 37 0])",
                  "zr_finalizeCPLDProcess(3/0, 0)"));
  EXPECT_THAT(lines(), ElementsAre("flashCPLD start",                                 //
                                   "devId = 3, filePath = /img",                      //
                                   "Start transferring CPLD image, please wait ...",  //
                                   "Start flashing CPLD, please wait ...",            //
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                   "  ...  18 percent completed... ",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 1",
                                   "  ...  68 percent completed... ",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
                                   "  ... 100 percent completed... ", "flashCPLD end"));
  EXPECT_EQ(versions(), (Lines{"18/9", "68/34", "100/50"}));
  EXPECT_EQ(host.sleeps, (std::vector<unsigned>{2, 2}));
}

TEST_F(CpldFlash, EveryPercentageIsPublishedBeforeTheSleep) {
  framework.cpldProgress = {{0, 0, 40}, {0, 1, 40}};
  run();
  EXPECT_EQ(versionsAtSleeps, (Lines{"20/10", "70/35"}));
}

TEST_F(CpldFlash, TheEndIsLoggedAfterTheFinalisingCall) {
  std::string lastLineAtCall;
  framework.onCall = [&] { lastLineAtCall = log().back(); };
  run();
  EXPECT_EQ(framework.calls.back(), "zr_finalizeCPLDProcess(3/0, 0)");
  EXPECT_NE(lastLineAtCall, "flashCPLD: flashCPLD end");
  EXPECT_EQ(log().back(), "flashCPLD: flashCPLD end");
}

TEST_F(CpldFlash, AnUpToDateCpldIsLoggedBeforeItIsPublished) {
  framework.answer("zr_flashCPLDBin", 1, 0x77);
  framework.descriptions[0x77] = "the version of CPLD is up to date";
  run();
  const Lines all = log();
  const auto line =
      std::find(all.begin(), all.end(), "flashCPLD: the version of CPLD is up to date");
  const auto publish =
      std::find(all.begin(), all.end(), "updateFWUpdateStatus: currentJobArray = (");
  EXPECT_LT(line, publish);
  EXPECT_NE(publish, all.end());
}

TEST_F(CpldFlash, Status8058BehavesExactlyAsZero) {
  framework.answer("zr_flashCPLDBin", 1, 0x8058);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(lines(), Contains("Start transferring CPLD image, please wait ..."));
  EXPECT_THAT(lines(), Contains("Start flashing CPLD, please wait ..."));
  EXPECT_EQ(framework.count("zr_getCPLDProgress"), 1);
  EXPECT_EQ(framework.count("getErrorDescription"), 0);
}

TEST_F(CpldFlash, AFirstReportOfDonePublishesAtOnceWithoutASleep) {
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(versions(), Lines{"100/50"});
  EXPECT_EQ(framework.count("zr_getCPLDProgress"), 1);
  EXPECT_TRUE(host.sleeps.empty());
}

TEST_F(CpldFlash, PercentagesAreHalvedByIntegerDivision) {
  framework.cpldProgress = {{0, 0, 0}, {0, 0, 1}, {0, 0, 99}, {0, 0, 100},
                            {0, 1, 0}, {0, 1, 1}, {0, 1, 99}, {0, 1, 100}};
  run();
  EXPECT_EQ(versions(), (Lines{"0/0", "49/24", "50/25", "99/49", "100/50"}));
}

TEST_F(CpldFlash, PercentBytesAbove100GoThroughTheSameFormulas) {
  framework.cpldProgress = {{0, 0, 255}, {0, 1, 255}};
  run();
  EXPECT_EQ(versions(), (Lines{"127/63", "177/88", "100/50"}));
}

TEST_F(CpldFlash, ARetryPublishesTheEarlierPercentageAndTheNextReportGoesOn) {
  framework.cpldProgress = {{0, 0, 60, 0}, {0, 0, 10, 1}, {0, 0, 20, 1}};
  run();
  EXPECT_EQ(versions(), (Lines{"30/15", "10/5", "100/50"}));
  EXPECT_EQ(host.sleeps.size(), 3U);
  EXPECT_THAT(lines(), ElementsAre("flashCPLD start", "devId = 3, filePath = /img",
                                   "Start transferring CPLD image, please wait ...",
                                   "Start flashing CPLD, please wait ...",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                   "  ...  30 percent completed... ",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                   "Found error, try to flash CPLD again, retry 1 times...",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                   "  ...  10 percent completed... ",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
                                   "  ... 100 percent completed... ", "flashCPLD end"));
}

TEST_F(CpldFlash, ARetryIsStillPublished) {
  framework.cpldProgress = {{0, 0, 60, 0}, {0, 0, 10, 1}};
  run();
  // Two publishes write the same bytes: seen in the log.
  const Lines all = log();
  EXPECT_EQ(std::count(all.begin(), all.end(), "updateFWUpdateStatus: currentJobArray = ("), 3);
}

TEST_F(CpldFlash, ARetryInTheVeryFirstReportPublishesZero) {
  framework.cpldProgress = {{0, 1, 50, 2}};
  run();
  EXPECT_EQ(versions(), (Lines{"0/0", "100/50"}));
  EXPECT_THAT(lines(), Contains("Found error, try to flash CPLD again, retry 2 times..."));
}

TEST_F(CpldFlash, ADoneReportCountsEvenWithANewRetryCount) {
  framework.cpldProgress = {{0, 2, 0, 1}};
  run();
  EXPECT_EQ(versions(), Lines{"100/50"});
}

TEST_F(CpldFlash, AnUnknownStageKeepsThePercentageAndSaysNothing) {
  framework.cpldProgress = {{0, 7, 90}, {0, 0, 60}, {0, 3, 90}};
  run();
  EXPECT_EQ(versions(), (Lines{"0/0", "30/15", "100/50"}));
  const Lines all = lines();
  EXPECT_EQ(std::count(all.begin(), all.end(), "  ...  30 percent completed... "), 1);
}

TEST_F(CpldFlash, StatusBytesFromThreeOnArePolledOnWithoutAPublish) {
  framework.cpldProgress = {{3, 0, 10, 1}, {4, 2, 20, 2}, {255, 1, 30, 2}, {0, 2, 100, 2}};
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(lines(), ElementsAre("flashCPLD start", "devId = 3, filePath = /img",
                                   "Start transferring CPLD image, please wait ...",
                                   "Start flashing CPLD, please wait ...",
                                   "progress.rdcp_u8Status = 3, progress.rdcp_u8Stage = 0",
                                   "progress.rdcp_u8Status = 4, progress.rdcp_u8Stage = 2",
                                   "progress.rdcp_u8Status = 255, progress.rdcp_u8Stage = 1",
                                   "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
                                   "  ... 100 percent completed... ", "flashCPLD end"));
  EXPECT_EQ(versions(), Lines{"100/50"});
  EXPECT_EQ(host.sleeps, (std::vector<unsigned>{2, 2, 2}));
}

TEST_F(CpldFlash, TheRetryCountOfAnUnpublishedReportIsRemembered) {
  framework.cpldProgress = {{3, 0, 10, 1}, {0, 0, 40, 1}};
  run();
  EXPECT_EQ(versions(), (Lines{"20/10", "100/50"}));
}

TEST_F(CpldFlash, AnErrorStatusByteEndsThePollingWithoutASleep) {
  for (const std::uint8_t byte : {std::uint8_t{1}, std::uint8_t{2}}) {
    framework.cpldProgress = {{byte, 2, 50}, {0, 2, 100}};
    framework.calls.clear();
    EXPECT_EQ(run(), 0U);
    EXPECT_EQ(framework.count("zr_getCPLDProgress"), 1);
    EXPECT_EQ(framework.count("zr_finalizeCPLDProcess"), 1);
    EXPECT_THAT(lines(), Contains("Flash Error"));
  }
  EXPECT_TRUE(versions().empty());
  EXPECT_TRUE(host.sleeps.empty());
}

TEST_F(CpldFlash, AFailingProgressCallHasItsStaleRecordEvaluatedAndSleptOnOnce) {
  framework.cpldProgress = {{0, 0, 60}};
  framework.answer("zr_getCPLDProgress", 2, 0x77);
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(framework.count("zr_getCPLDProgress"), 2);
  EXPECT_EQ(host.sleeps.size(), 2U);
  EXPECT_EQ(versions(), Lines{"30/15"});
  const Lines all = lines();
  const Lines tail(all.end() - 5, all.end());
  EXPECT_THAT(tail, ElementsAre("progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                "  ...  30 percent completed... ",
                                "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                                "  ...  30 percent completed... ", "flashCPLD end"));
}

TEST_F(CpldFlash, AProgressCallThatFailsWithADoneRecordIsStillDone) {
  framework.cpldProgress = {{0, 2, 100, 0, 0x77}};
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(versions(), Lines{"100/50"});
}

TEST_F(CpldFlash, TheResultIsTheFinalisingCallsStatus) {
  framework.answer("zr_finalizeCPLDProcess", 1, 0x99);
  EXPECT_EQ(run(), 0x99U);
  EXPECT_EQ(lines().back(), "flashCPLD end");
}

TEST_F(CpldFlash, AFailedInitialisationIsFinalisedAndNothingElse) {
  framework.answer("zr_initializeCPLDProcess", 1, 0x66);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls,
              ElementsAre("zr_initializeCPLDProcess(3/0, 0)", "zr_finalizeCPLDProcess(3/0, 0)"));
  EXPECT_THAT(lines(),
              ElementsAre("flashCPLD start", "devId = 3, filePath = /img", "flashCPLD end"));
}

TEST_F(CpldFlash, ABusyControllerIsToldAndFinalised) {
  framework.answer("zr_flashCPLDBin", 1, 0x8050);
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(framework.count("getErrorDescription"), 0);
  EXPECT_EQ(framework.count("zr_getCPLDProgress"), 0);
  EXPECT_EQ(framework.count("zr_finalizeCPLDProcess"), 1);
  EXPECT_THAT(lines(), ElementsAre("flashCPLD start", "devId = 3, filePath = /img",
                                   "There is another flash process running.", "flashCPLD end"));
}

TEST_F(CpldFlash, AnUpToDateCpldPublishesWithoutPollingAndReturnsTheFinalisingStatus) {
  framework.answer("zr_flashCPLDBin", 1, 0x77);
  framework.answer("zr_finalizeCPLDProcess", 1, 0x99);
  framework.descriptions[0x77] = "the version of CPLD is up to date";
  EXPECT_EQ(run(), 0x99U);
  EXPECT_EQ(versions(), Lines{"100/50"});
  EXPECT_EQ(framework.count("zr_getCPLDProgress"), 0);
  EXPECT_THAT(framework.calls, Contains("getErrorDescription(0x77)"));
  EXPECT_THAT(lines(), ElementsAre("flashCPLD start", "devId = 3, filePath = /img",
                                   "the version of CPLD is up to date", "flashCPLD end"));
}

TEST_F(CpldFlash, AnyOtherTextIsAFailureWithoutALine) {
  for (const char* text :
       {"The version of CPLD is up to date", "the version of CPLD is up to date ",
        "unsupported management command"}) {
    framework.calls.clear();
    framework.answer("zr_flashCPLDBin", 1, 0x77);
    framework.descriptions[0x77] = text;
    EXPECT_EQ(run(), 0U);
    EXPECT_EQ(lines().back(), "flashCPLD end");
    EXPECT_EQ(lines()[lines().size() - 2], "devId = 3, filePath = /img");
  }
  framework.calls.clear();
  framework.descriptions[0x77] = nullptr;
  EXPECT_EQ(run(), 0U);
  EXPECT_TRUE(versions().empty());
}

TEST_F(CpldFlash, TheAddressHoldsTheLow16BitsOfTheDeviceId) {
  run(0x12345);
  EXPECT_EQ(framework.calls.front(), "zr_initializeCPLDProcess(9029/0, 0)");
  EXPECT_THAT(lines(), Contains("devId = 74565, filePath = /img"));
}

TEST_F(CpldFlash, OfADeviceIdTheLow32BitsAreShownWithASign) {
  run(0x180000005);
  EXPECT_EQ(framework.calls.front(), "zr_initializeCPLDProcess(5/0, 0)");
  EXPECT_THAT(lines(), Contains("devId = -2147483643, filePath = /img"));
}

TEST_F(CpldFlash, AnEntryWithoutAFilePathShowsNull) {
  worker.flashCPLD(Value::dictionary({{"wwn", "A"}}), &flash, &usb, &cpld, &image, 3, "17");
  EXPECT_THAT(lines(), Contains("devId = 3, filePath = (null)"));
}

TEST_F(CpldFlash, AVanishedJobFileCostsAnErrorLinePerPublishAndTheFlashGoesOn) {
  framework.cpldProgress = {{0, 0, 37}};
  std::filesystem::remove(folder / test::kJobFile);
  framework.onCall = nullptr;
  host.onSleep = nullptr;
  EXPECT_EQ(run(), 0U);
  const Lines all = log();
  EXPECT_EQ(std::count_if(all.begin(), all.end(),
                          [](const std::string& line) {
                            return line.rfind("updateFWUpdateStatus error: open ", 0) == 0;
                          }),
            2);
  EXPECT_EQ(all.back(), "flashCPLD: flashCPLD end");
}

TEST_F(CpldFlash, AnExceptionLeavesTheProcessOpenAndGivesTheStatusHeld) {
  framework.answer("zr_flashCPLDBin", 1, 0x8050);
  const test::FullFile full;
  framework.onCall = [&] {
    if (framework.count("zr_initializeCPLDProcess") == 1) setLogPath(full.path().c_str());
  };
  EXPECT_EQ(run(), 0x8050U);
  EXPECT_EQ(framework.count("zr_finalizeCPLDProcess"), 0);
}

TEST_F(CpldFlash, AnExceptionAfterAFailedProgressCallGivesItsStatus) {
  framework.answer("zr_getCPLDProgress", 1, 0x77);
  const test::FullFile full;
  framework.onCall = [&] {
    if (framework.count("zr_flashCPLDBin") == 1) setLogPath(full.path().c_str());
  };
  EXPECT_EQ(run(), 0x77U);
  EXPECT_EQ(framework.calls.back(), "zr_getCPLDProgress(3/0, 0, progress[zeroed])");
}

TEST_F(CpldFlash, AnExceptionAfterStatus8058GivesZero) {
  framework.answer("zr_flashCPLDBin", 1, 0x8058);
  const test::FullFile full;
  framework.onCall = [&] {
    if (framework.count("zr_initializeCPLDProcess") == 1) setLogPath(full.path().c_str());
  };
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(framework.calls.size(), 2U);
}

TEST_F(CpldFlash, AnExceptionAfterTheFinalisingCallGivesItsStatus) {
  framework.answer("zr_finalizeCPLDProcess", 1, 0x99);
  const test::FullFile full;
  framework.onCall = [&] {
    if (framework.count("zr_getCPLDProgress") == 1) setLogPath(full.path().c_str());
  };
  EXPECT_EQ(run(), 0x99U);
  EXPECT_EQ(framework.calls.back(), "zr_finalizeCPLDProcess(3/0, 0)");
  EXPECT_NE(lines().back(), "flashCPLD end");
}

TEST_F(CpldFlash, AnExceptionBeforeAnyCallGivesZero) {
  const test::FullFile full;
  setLogPath(full.path().c_str());
  EXPECT_EQ(run(), 0U);
  EXPECT_TRUE(framework.calls.empty());
}

TEST_F(CpldFlash, AnEntryThatIsNoDictionaryIsLoggedOnce) {
  worker.flashCPLD("entry", &flash, &usb, &cpld, &image, 3, "17");
  EXPECT_THAT(log(), ElementsAre(StartsWith("flashCPLD error: ")));
}

}  // namespace
}  // namespace kelvane
