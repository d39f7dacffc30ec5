#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/Exception.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/support/FullFile.h"
#include "tests/support/JobFiles.h"
#include "tests/worker/FirmwareWorld.h"

namespace kelvane {
namespace {

using platform::Value;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

using UpdateSequence = FirmwareWorld;

// --- complete jobs

TEST_F(UpdateSequence, ACompleteStandardJobInCalls) {
  controllers({0x4301});
  updateAll({"W0"});
  EXPECT_THAT(
      framework.calls,
      ElementsAre(
          "zr_initialize(fixed words)", "zr_discover(0)", "zr_getNumberOfHBA(0)",
          "zr_getNumberOfSubsystem(0)", "zr_getSubsystemInfo(0/0, 0, zeroed)",
          "decod_getStringWWN(zeroed, wwn)", "zr_getControllerInfo(0, 0, request, zeroed, 65535)",
          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 0)",
          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 1)",
          "zr_getFDLImageInfo(flash[4301 /W0.img 0], image[zeroed])",
          "zr_getCPLDImageInfo(flash[4301 /W0.img f1], cpld[zeroed], image[fd 0], page0, page1)",
          "zr_getUSBImageInfo(flash[4301 /W0.img f1], usb[zeroed])",
          "zr_initializeCPLDProcess(0/0, 0)",
          "zr_flashCPLDBin(0/0, 0, flash[4301 /W0.img f1], 0, usb[fffffff0 0], cpld[c1], "
          "image[fd cd])",
          "zr_getCPLDProgress(0/0, 0, progress[zeroed])", "zr_finalizeCPLDProcess(0/0, 0)",
          "zr_initializeFlashProcess(0/0, 0)",
          "zr_checkFlashImage(0/0, 0, buffer, flash[4301 /W0.img f1], usb[fffffff0 0], cpld[c1], "
          "image[fd cd])",
          "zr_transferFlashImage(0/0, 0, flash[4301 /W0.img f1], usb[fffffff0 0], cpld[c1], "
          "image[fd cd])",
          "zr_verifyFlashImage(0/0, 0, flash[4301 /W0.img f1])",
          "zr_flashImageEx(0/0, 0, 4, flash[4301 /W0.img f1])",
          "zr_getFlashProgress(0/0, 0, progress[zeroed])", "zr_finalizeFlashProcess(0/0, 0)",
          "zr_getCurrentDeviceInterface(0/0, 0, zeroed)",
          "zr_mac_checkUSBFWVersion(0/0, 0, usb[fffffff0 0], 0)",
          "zr_mac_getNVRAM(0/0, 0, nvram[zeroed])",
          "zr_mac_flashUSBFWbin(0/0, 0, flash[4301 /W0.img f1], usb[fffffff0 1])",
          "zr_mac_setNVRAM(0/0, 0, flash[4301 /W0.img f1], usb[fffffff0 1], nvram[a1])",
          "zr_mac_flashNVRAM(0/0, 0, nvram[a2])", "getErrorDescription(0x0)"));
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(resultText(), "text of 0x0");
  EXPECT_EQ(state(), "FREE");
}

TEST_F(UpdateSequence, ACompleteStandardJobInLogLines) {
  controllers({0x4301});
  framework.cpldProgress = {{0, 0, 40}};
  framework.flashProgress = {{0, 3, 37}};
  updateAll({"W0"});
  EXPECT_THAT(
      updateLines(),
      ElementsAre(
          "updateFW start, inputDict = {", "devId = 0, filePath = /W0.img",
          "zr_getControllerInfo(), u32Ret = 0", "pPage0->ci_ProductID = 4301",
          "zr_getUSBImageInfo() ....", "usb_u32checkUSB: 4294967280", "flashCPLD start",
          "devId = 0, filePath = /W0.img", "Start transferring CPLD image, please wait ...",
          "Start flashing CPLD, please wait ...",
          "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
          "  ...  20 percent completed... ",
          "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
          "  ... 100 percent completed... ", "flashCPLD end",
          "Start transferring image, please wait ...",
          "Flash image has been successfully transferred", "Start flashing image, please wait ...",
          "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 3",
          "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 5", "  ... 100 percent completed...",
          "Flash Completed.", "usbfwupdatecheck = 1, different usb fw version, update usb fw",
          "start _flashUSBFW, flashing Usb fw...", "qvxflash start zr_mac_flashUSBFWbin",
          "qvxflash -u usb start zr_mac_flashNVRAM", "updateAllFW end, retDict = {"));
  EXPECT_THAT(log(), Not(Contains(HasSubstr(" error: "))));
  EXPECT_THAT(logText(), HasSubstr("zr_getUSBImageInfo() ....\n\n["));
  EXPECT_THAT(logText(), HasSubstr("usb_u32checkUSB: 4294967280\n\n["));
}

TEST_F(UpdateSequence, ACompleteStandardJobInVersionsOfTheJobFile) {
  controllers({0x4301});
  framework.cpldProgress = {{0, 0, 40}, {0, 1, 40}};
  framework.flashProgress = {{0, 1, 0}, {0, 3, 37}, {0, 4, 100}};
  updateAll({"W0"});
  EXPECT_EQ(versions(), (Lines{"RUN 0/0/0", "RUN 10/20/0", "RUN 35/70/0", "RUN 50/100/0",
                               "RUN 68/100/37", "RUN 100/100/100", "FREE 100/100/100"}));
  EXPECT_EQ(host.sleeps, (std::vector<unsigned>{2, 2, 2, 2, 2}));
}

TEST_F(UpdateSequence, ACompleteQvxfJobInCalls) {
  controllers({0x4801});
  updateAll({"W0"});
  EXPECT_THAT(
      callsAfter("decod_locateBufferCtrlInfo(buffer, 65535, 0, 1)"),
      ElementsAre(
          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 1)", "zr_initializeFlashProcess(0/0, 0)",
          "zr_checkQVXFFlashImage(0/0, 0, flash[4801 /W0.img 0], zeroed)",
          "zr_transferQVXFFlashImage(0/0, 0, flash[4801 /W0.img 0], image[zeroed], 0)",
          "zr_finalizeFlashProcess(0/0, 0)", "zr_analyzeQVXFImage(0/0, 0, zeroed)",
          "zr_flashQVXFImage(0/0, 0)", "zr_getFlashQVXFImageStatus(0/0, 0, progress[zeroed])",
          "zr_finalizeFlashProcess(0/0, 0)", "zr_finializeQVXFImage(0/0, 0)",
          "getErrorDescription(0x0)"));
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, ACompleteQvxfJobInLogLines) {
  controllers({0x4901});
  framework.flashProgress = {{2, 4, 50}};
  updateAll({"W0"});
  EXPECT_THAT(
      updateLines(),
      ElementsAre("updateFW start, inputDict = {", "devId = 0, filePath = /W0.img",
                  "zr_getControllerInfo(), u32Ret = 0", "pPage0->ci_ProductID = 4901",
                  "rpf.rpf_uTransfer.rpf_u8ImageFilePath = /W0.img",
                  "[WRONG] zr_initializeFlashProcess = 0x0", "[WRONG] zr_checkQVXFFlashImage = 0x0",
                  "[WRONG] zr_transferQVXFFlashImage = 0x0", "[WRONG] zr_analyzeQVXFImage = 0x0",
                  "[WRONG] zr_flashQVXFImage = 0x0", "Start flashing image, please wait ...",
                  "fshProg.fp_u8Status = 2, fshProg.fp_u8Stage = 4",
                  "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 5",
                  "  ... 100 percent completed...", "Flash Completed.", "ignore upgrade usb fw",
                  "updateAllFW end, retDict = {"));
}

TEST_F(UpdateSequence, ACompleteQvxfJobInVersionsOfTheJobFile) {
  controllers({0x4801});
  framework.flashProgress = {{0, 1, 50}};
  updateAll({"W0"});
  EXPECT_EQ(versions(), (Lines{"RUN 0/0/0", "RUN 75/0/50", "RUN 100/0/100", "FREE 100/0/100"}));
}

TEST_F(UpdateSequence, SeveralControllersAreUpdatedOneAfterTheOther) {
  controllers({0x4301, 0x4801, 0x8801});
  updateAll({"W2", "W0", "W1"});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(versions().back(), "FREE 100/100/100 100/100/100 100/0/100");
  EXPECT_THAT(framework.calls, Contains("zr_flashImageEx(2/0, 0, 4, flash[8801 /W2.img f1])"));
  EXPECT_THAT(framework.calls, Contains("zr_flashImageEx(0/0, 0, 4, flash[4301 /W0.img f1])"));
  EXPECT_THAT(framework.calls, Contains("zr_flashQVXFImage(1/0, 0)"));
  EXPECT_THAT(framework.calls, Contains("zr_initializeCPLDProcess(2/0, 0)"));
}

TEST_F(UpdateSequence, EveryEntryStartsWithZeroedRecords) {
  controllers({0x4301, 0x4301});
  updateAll({"W0", "W1"});
  EXPECT_THAT(framework.calls,
              Contains("zr_getFDLImageInfo(flash[4301 /W1.img 0], image[zeroed])"));
  EXPECT_THAT(framework.calls, Contains("zr_getUSBImageInfo(flash[4301 /W1.img f1], usb[zeroed])"));
  EXPECT_THAT(framework.calls, Contains("zr_getControllerInfo(1, 0, request, zeroed, 65535)"));
  EXPECT_THAT(framework.calls,
              Contains("zr_getCPLDImageInfo(flash[4301 /W1.img f1], cpld[zeroed], image[fd 0], "
                       "page0, page1)"));
  EXPECT_THAT(framework.calls, Contains("zr_getFlashProgress(1/0, 0, progress[zeroed])"));
  EXPECT_THAT(framework.calls, Contains("zr_mac_getNVRAM(1/0, 0, nvram[zeroed])"));
}

TEST_F(UpdateSequence, TheJobIsMarkedRunningBeforeTheFrameworkIsInitialised) {
  controllers({0x4801});
  std::string stateAtFirstCall;
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[
                {"wwn":"W0","file_path":"/i"}]}])");
  framework.onCall = [&] {
    if (framework.calls.empty()) stateAtFirstCall = state();
  };
  worker.updateFW(jobs().at(0));
  EXPECT_EQ(stateAtFirstCall, "RUN");
}

TEST_F(UpdateSequence, EveryPercentageIsPublishedBeforeTheSleep) {
  controllers({0x4301});
  framework.cpldProgress = {{0, 0, 40}, {0, 1, 40}};
  framework.flashProgress = {{0, 3, 36}};
  updateAll({"W0"});
  EXPECT_EQ(versionsAtSleeps, (Lines{"RUN 10/20/0", "RUN 35/70/0", "RUN 68/100/36"}));
}

TEST_F(UpdateSequence, EveryVersionIsLoggedAsItIsWritten) {
  controllers({0x4801});
  framework.flashProgress = {{0, 1, 50}};
  updateAll({"W0"});
  ASSERT_EQ(versions().size(), 4U);
  for (const Value& version : wholeVersions) {
    const std::string dump = platform::describe(version);
    EXPECT_THAT(logText(), HasSubstr("updateJSONFile, newJobArray = " + dump + "\n"));
    EXPECT_THAT(logText(), HasSubstr("writeJSONFile, newArray = " + dump + "\n"));
    if (version == wholeVersions.back()) continue;
    EXPECT_THAT(logText(), HasSubstr("[updateJSONFile][debug] currentJobArray = " + dump + "\n"));
  }
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_THAT(logText(), HasSubstr("[updateFWUpdateStatus][debug] currentJobArray = " +
                                     platform::describe(wholeVersions[i]) + "\n"));
  }
  EXPECT_THAT(logText(), HasSubstr("[readJSONFileDict][debug] currentJobArray = " +
                                   platform::describe(wholeVersions[2]) + "\n"));
}

TEST_F(UpdateSequence, TheFirstLineShowsTheRecordHandedOverAndTheLastTheFinishedOne) {
  controllers({0x4801});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[
                {"wwn":"W0","file_path":"/i"}]}])");
  const Value record = jobs().at(0);
  worker.updateFW(record);
  EXPECT_THAT(logText(),
              HasSubstr("updateFW start, inputDict = " + platform::describe(record) + "\n"));
  EXPECT_THAT(logText(),
              HasSubstr("updateAllFW end, retDict = " + platform::describe(jobs().at(0)) + "\n"));
}

// --- the result

TEST_F(UpdateSequence, AJobWhoseRecordIsGoneFinishesTheLastRecordOfTheFile) {
  controllers({0x4801});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[
                {"wwn":"W0","file_path":"/i"}]}])");
  framework.onCall = [this] {
    if (framework.count("zr_finalizeFlashProcess") == 2) {
      writeJobs(R"([{"log_id":"1","state_id":"RUN"},{"log_id":"2","state_id":"WAIT"}])");
    }
  };
  worker.updateFW(jobs().at(0));
  EXPECT_EQ(jobs(), platform::parseJson(R"([{"log_id":"1","state_id":"RUN"},
      {"log_id":"2","state_id":"FREE","result":0,"resultStr":"text of 0x0"}])"));
}

TEST_F(UpdateSequence, ReturnsTheFinishedRecord) {
  controllers({0x4801});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","x":"y",
                 "input_parameters":[{"wwn":"W0","file_path":"/i"}]}])");
  const Value returned = worker.updateFW(jobs().at(0));
  EXPECT_EQ(returned, jobs().at(0));
  EXPECT_EQ(returned.get("x"), Value("y"));
}

TEST_F(UpdateSequence, TheResultIsAnUnsignedNumber) {
  controllers({0x4801});
  framework.answer("zr_flashQVXFImage", 1, 0xFFFFFFFF);
  updateAll({"W0"});
  EXPECT_EQ(result(), 4294967295);
  EXPECT_THAT(jobText(), HasSubstr("\"result\": 4294967295,"));
  EXPECT_THAT(updateLines(), Contains("[WRONG] zr_flashQVXFImage = 0xffffffff"));
  EXPECT_THAT(updateLines(), Contains("u32Ret is not 0, u32Ret = 0xffffffff"));
}

TEST_F(UpdateSequence, AResultTextThatIsNoTextIsRepairedAndAMissingOneIsNull) {
  framework.descriptions[0] = "caf\xC3";
  runJob("[]");
  EXPECT_EQ(jobs().isArray(), true);
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","job_id":"updateFW","input_parameters":[{}]}])");
  framework.descriptions[0x0402] = "caf\xC3";
  worker.run("17");
  EXPECT_EQ(resultText(), "caf\xEF\xBF\xBD");
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","job_id":"updateFW","input_parameters":[{}]}])");
  framework.descriptions[0x0402] = nullptr;
  worker.run("17");
  EXPECT_EQ(resultText(), "(null)");
}

TEST_F(UpdateSequence, ARecordWithoutAStateIsLeftAsItIs) {
  const std::string text = R"([{"log_id":"17","input_parameters":[]}])";
  writeJobs(text);
  const Value returned = worker.updateFW(jobs().at(0));
  EXPECT_EQ(jobText(), text);
  EXPECT_EQ(returned, jobs().at(0));
  EXPECT_EQ(framework.count("getErrorDescription"), 0);
  EXPECT_EQ(updateLines().back(), "updateAllFW end, retDict = {");
}

TEST_F(UpdateSequence, AStateOfAnyKindIsAState) {
  for (const char* state : {"null", "5", "[]", "\"\""}) {
    writeJobs(R"([{"log_id":"17","input_parameters":[],"state_id":)" + std::string(state) + "}]");
    const Value returned = worker.updateFW(jobs().at(0));
    EXPECT_EQ(returned, jobs().at(0)) << state;
    EXPECT_EQ(this->state(), "FREE") << state;
    EXPECT_EQ(result(), 0) << state;
  }
}

TEST_F(UpdateSequence, AJobWithoutALogIdIsFlashedAndItsRecordLeftAsItIs) {
  controllers({0x4801});
  framework.flashProgress = {{0, 1, 50}};
  const std::string text = R"([{"state_id":"WAIT","output":[{"wwn":"W0"}],
                                "input_parameters":[{"wwn":"W0","file_path":"/i"}]}])";
  writeJobs(text);
  EXPECT_EQ(worker.updateFW(jobs().at(0)), Value::dictionary());
  EXPECT_EQ(framework.calls.back(), "zr_finializeQVXFImage(0/0, 0)");
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(log(), Not(Contains(HasSubstr(" error: "))));
  EXPECT_THAT(logText(), HasSubstr("updateAllFW end, retDict = {\n}\n"));
}

TEST_F(UpdateSequence, AJobFileThatVanishesBeforeTheLastWriteEndsTheJobWithOneErrorLine) {
  controllers({0x4801});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[]}])");
  framework.decide = [this](const std::string& function) {
    if (function == "getErrorDescription") std::filesystem::remove(folder / test::kJobFile);
    return 0U;
  };
  EXPECT_TRUE(worker.updateFW(jobs().at(0)).isNothing());
  EXPECT_FALSE(std::filesystem::exists(folder / test::kJobFile));
  EXPECT_THAT(updateLines(),
              ElementsAre("updateFW start, inputDict = {",
                          "open " + folder / test::kJobFile + ": No such file or directory"));
  EXPECT_THAT(log().back(), StartsWith("updateFW error: open "));
}

TEST_F(UpdateSequence, AVanishedJobFileLeavesNothingToFinish) {
  const Value record =
      platform::parseJson(R"({"log_id":"17","state_id":"WAIT","input_parameters":[]})");
  std::filesystem::remove(folder / test::kJobFile);
  EXPECT_EQ(worker.updateFW(record), Value::dictionary());
  EXPECT_FALSE(std::filesystem::exists(folder / test::kJobFile));
}

TEST_F(UpdateSequence, AJobFileThatVanishesDuringTheFlashCostsErrorLinesOnly) {
  controllers({0x4801});
  framework.flashProgress = {{0, 1, 10}, {0, 1, 20}};
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","job_id":"updateFW",
                 "input_parameters":[{"wwn":"W0","file_path":"/i"}]}])");
  framework.onCall = [this] {
    if (framework.count("zr_flashQVXFImage") == 1) {
      std::filesystem::remove(folder / test::kJobFile);
    }
  };
  worker.run("17");
  EXPECT_EQ(framework.count("zr_getFlashQVXFImageStatus"), 3);
  EXPECT_EQ(framework.calls.back(), "zr_finializeQVXFImage(0/0, 0)");
  const Lines all = log();
  EXPECT_EQ(std::count_if(all.begin(), all.end(),
                          [](const std::string& line) {
                            return line.rfind("updateFWUpdateStatus error: open ", 0) == 0;
                          }),
            3);
  EXPECT_THAT(all, Contains(StartsWith("readJSONFileDict error: open ")));
  EXPECT_EQ(all.back(), "updateFW: updateAllFW end, retDict = {");
}

// --- start and discovery

TEST_F(UpdateSequence, AMissingRecordOrInputListIsDeviceNotFound) {
  EXPECT_EQ(worker.updateFW(Value()), Value::dictionary());
  EXPECT_THAT(framework.calls, IsEmpty());
  writeJobs(R"([{"log_id":"17","state_id":"WAIT"}])");
  worker.updateFW(jobs().at(0));
  EXPECT_THAT(framework.calls, ElementsAre("getErrorDescription(0x402)"));
  EXPECT_EQ(result(), 0x0402);
  EXPECT_EQ(state(), "FREE");
}

TEST_F(UpdateSequence, AnEmptyInputListDiscoversAndEndsWithItsStatus) {
  controllers({0x4301});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[]}])");
  worker.updateFW(jobs().at(0));
  EXPECT_THAT(framework.calls,
              ElementsAre("zr_initialize(fixed words)", "zr_discover(0)", "zr_getNumberOfHBA(0)",
                          "zr_getNumberOfSubsystem(0)", "zr_getSubsystemInfo(0/0, 0, zeroed)",
                          "decod_getStringWWN(zeroed, wwn)", "getErrorDescription(0x0)"));
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(state(), "FREE");
}

TEST_F(UpdateSequence, AnEmptyInputListWithAFailingDiscoveryEndsWithThatStatus) {
  controllers({0x4301});
  framework.answer("zr_getSubsystemInfo", 1, 0x77);
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[]}])");
  worker.updateFW(jobs().at(0));
  EXPECT_EQ(result(), 0x77);
}

TEST_F(UpdateSequence, TheStatusOfInitialiseAndOfTheAdapterCountIsIgnored) {
  controllers({0x4801});
  framework.answer("zr_initialize", 1, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(result(), 0);
  framework.answer("zr_getNumberOfHBA", 2, 0x77);
  framework.adapters = 0;
  updateAll({"W0"});
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, AFailingDiscoveryCountsNothing) {
  controllers({0x4301});
  framework.answer("zr_discover", 1, 0x201);
  updateAll({"W0"});
  EXPECT_THAT(framework.calls, ElementsAre("zr_initialize(fixed words)", "zr_discover(0)",
                                           "getErrorDescription(0x201)"));
  EXPECT_EQ(result(), 0x201);
}

TEST_F(UpdateSequence, AFailingSubsystemCountIsOverwrittenByTheDeviceList) {
  controllers({0x4801});
  framework.answer("zr_getNumberOfSubsystem", 1, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, SubsystemsAreAskedByTheirRunningIndex) {
  controllers({0x4301, 0x4301, 0x4801});
  framework.adapters = 1;
  updateAll({"W2"});
  EXPECT_THAT(framework.calls, Contains("zr_getSubsystemInfo(0/0, 0, zeroed)"));
  EXPECT_THAT(framework.calls, Contains("zr_getSubsystemInfo(0/1, 0, zeroed)"));
  EXPECT_THAT(framework.calls, Contains("zr_getSubsystemInfo(0/2, 0, zeroed)"));
  EXPECT_THAT(framework.calls, Contains("zr_getControllerInfo(2, 0, request, zeroed, 65535)"));
  EXPECT_THAT(framework.calls, Contains("zr_flashQVXFImage(2/0, 0)"));
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, ADeviceThatDoesNotAnswerIsLeftOut) {
  controllers({0x4801, 0x4801});
  framework.answer("zr_getSubsystemInfo", 1, 0x77);
  updateAll({"W1"});
  EXPECT_EQ(framework.count("decod_getStringWWN"), 1);
  EXPECT_EQ(result(), 0);
  EXPECT_THAT(framework.calls, Contains("zr_flashQVXFImage(1/0, 0)"));
}

TEST_F(UpdateSequence, TheLastDevicesFailureStaysAndSkipsEveryEntry) {
  controllers({0x4801, 0x4801});
  framework.answer("zr_getSubsystemInfo", 2, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(result(), 0x77);
  EXPECT_EQ(framework.count("zr_getControllerInfo"), 0);
  EXPECT_EQ(framework.calls.back(), "getErrorDescription(0x77)");
  EXPECT_EQ(framework.count("zr_finalizeFlashProcess"), 0);
}

TEST_F(UpdateSequence, AWwnOf32BytesWithoutATerminatorIsReadToItsEnd) {
  framework.devices = {{std::string(32, 'A'), 0x4801}};
  framework.adapters = 1;
  runJob(R"([{"wwn":")" + std::string(32, 'A') + R"(","file_path":"/i"}])");
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, AWwnThatIsNoTextIsFoundByWhatIsLeftOfIt) {
  framework.devices = {{"W\xFF", 0x4801}};
  framework.adapters = 1;
  runJob("[{\"wwn\":\"W\xEF\xBF\xBD\",\"file_path\":\"/i\"}]");
  EXPECT_EQ(framework.count("zr_flashQVXFImage"), 1);
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, OfManyAdaptersEachIsAskedAndFlashedByItsNumber) {
  controllers(300, 0x4301);
  updateAll({"W299"});
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(framework.count("zr_getSubsystemInfo"), 300);
  EXPECT_THAT(framework.calls, Contains("zr_getSubsystemInfo(299/0, 0, zeroed)"));
  EXPECT_THAT(framework.calls, Contains("zr_getControllerInfo(299, 0, request, zeroed, 65535)"));
  EXPECT_THAT(framework.calls, Contains("zr_initializeCPLDProcess(299/0, 0)"));
  EXPECT_THAT(framework.calls, Contains("zr_flashImageEx(299/0, 0, 4, flash[4301 /W299.img f1])"));
  EXPECT_THAT(updateLines(), Contains("devId = 299, filePath = /W299.img").Times(2));
}

TEST_F(UpdateSequence, OfManySubsystemsEachIsAskedByItsRunningIndex) {
  controllers(300, 0x4801);
  framework.adapters = 1;
  updateAll({"W299"});
  EXPECT_EQ(result(), 0);
  EXPECT_THAT(framework.calls, Contains("zr_getSubsystemInfo(0/299, 0, zeroed)"));
  EXPECT_THAT(framework.calls, Contains("zr_flashQVXFImage(299/0, 0)"));
}

// Counts whose sum is 2 where it has no more than 32 bits.
TEST_F(UpdateSequence, CountsOfAnySizeAreAddedUp) {
  framework.devices.resize(2);
  framework.adapters = 0xFFFFFFFF;
  framework.decide = [this](const std::string&) -> std::uint32_t {
    if (framework.count("zr_getSubsystemInfo") == 3) throw platform::Exception("that is enough");
    return 0;
  };
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[]}])");
  EXPECT_TRUE(worker.updateFW(jobs().at(0)).isNothing());
  EXPECT_EQ(framework.calls.back(), "zr_getSubsystemInfo(2/0, 0, zeroed)");
  EXPECT_EQ(log().back(), "updateFW error: that is enough");
}

// --- finding the controller

TEST_F(UpdateSequence, AnUnknownFirstWwnEndsTheJobWithDeviceNotFound) {
  controllers({0x4301});
  updateAll({"X", "W0"});
  EXPECT_EQ(result(), 0x0402);
  EXPECT_EQ(framework.count("zr_getControllerInfo"), 0);
  EXPECT_EQ(framework.count("zr_finalizeFlashProcess"), 0);
  EXPECT_EQ(versions().back(), "FREE 0/0/0 0/0/0");
  EXPECT_THAT(updateLines(),
              ElementsAre("updateFW start, inputDict = {", "updateAllFW end, retDict = {"));
}

TEST_F(UpdateSequence, WwnsAreComparedExactly) {
  controllers({0x4801});
  updateAll({"w0"});
  EXPECT_EQ(result(), 0x0402);
}

TEST_F(UpdateSequence, AnEntryWithoutAWwnIsDeviceNotFound) {
  controllers({0x4801});
  runJob(R"([{"file_path":"/i"}])");
  EXPECT_EQ(result(), 0x0402);
}

TEST_F(UpdateSequence, AWwnThatIsNoStringIsLoggedOnceAndDeviceNotFound) {
  controllers({0x4801});
  runJob(R"([{"wwn":5}])");
  EXPECT_EQ(result(), 0x0402);
  EXPECT_THAT(log(), Contains(StartsWith("getDevIdByWWN error: ")).Times(1));
}

TEST_F(UpdateSequence, GetDevIdByWwnGivesTheFirstMatch) {
  const Value devices = platform::parseJson(
      R"([{"wwn":"A"},{"device_id":8},{"wwn":"B","device_id":1},{"wwn":"A","device_id":2},
          {"wwn":"A","device_id":3}])");
  EXPECT_EQ(worker.getDevIdByWWN(devices, "A"), 2);
  EXPECT_EQ(worker.getDevIdByWWN(devices, "B"), 1);
  EXPECT_EQ(worker.getDevIdByWWN(devices, "a"), -1);
  EXPECT_EQ(worker.getDevIdByWWN(devices, Value()), -1);
  EXPECT_EQ(worker.getDevIdByWWN(Value::array(), "A"), -1);
  EXPECT_EQ(worker.getDevIdByWWN(Value(), "A"), -1);
}

TEST_F(UpdateSequence, AListedDeviceOfAWrongKindIsLoggedOnceAndNoneIsFound) {
  const Value numbered =
      platform::parseJson(R"([{"wwn":5,"device_id":1},{"wwn":"A","device_id":2}])");
  EXPECT_EQ(worker.getDevIdByWWN(numbered, "A"), -1);
  const Value text =
      platform::parseJson(R"([{"wwn":"A","device_id":"x"},{"wwn":"A","device_id":2}])");
  EXPECT_EQ(worker.getDevIdByWWN(text, "A"), -1);
  EXPECT_THAT(log(), ElementsAre("getDevIdByWWN error: compared a number as a string",
                                 StartsWith("getDevIdByWWN error: asked a string for its ")));
}

TEST_F(UpdateSequence, AnotherDevicesIdMayBeOfAnyKind) {
  const Value devices = platform::parseJson(
      R"([{"wwn":"B","device_id":null},{"wwn":"B","device_id":"x"},{"wwn":"A","device_id":2}])");
  EXPECT_EQ(worker.getDevIdByWWN(devices, "A"), 2);
  EXPECT_THAT(log(), IsEmpty());
}

TEST_F(UpdateSequence, AnAbsentFilePathShowsAsNullAndLeavesThePathEmpty) {
  controllers({0x4801});
  framework.answer("zr_checkQVXFFlashImage", 1, 0x8053);
  runJob(R"([{"wwn":"W0"}])");
  EXPECT_THAT(updateLines(), Contains("devId = 0, filePath = (null)"));
  EXPECT_THAT(updateLines(), Contains("rpf.rpf_uTransfer.rpf_u8ImageFilePath = "));
  EXPECT_THAT(framework.calls, Contains("zr_checkQVXFFlashImage(0/0, 0, flash[4801  0], zeroed)"));
  EXPECT_EQ(result(), 0x8053);
}

TEST_F(UpdateSequence, AFilePathThatIsNoStringEndsTheJobWithOneErrorLine) {
  for (const std::uint16_t product : {std::uint16_t{0x4801}, std::uint16_t{0x4301}}) {
    framework.devices.clear();
    controllers({product});
    runJob(R"([{"wwn":"W0","file_path":5}])");
    EXPECT_EQ(state(), "RUN");
    EXPECT_THAT(log().back(), StartsWith("updateFW error: "));
  }
  EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 0);
  EXPECT_EQ(framework.count("zr_finalizeFlashProcess"), 0);
}

TEST_F(UpdateSequence, ALongPathIsCutAt255BytesEvenInsideACharacter) {
  controllers({0x4801});
  const std::string path = "/" + std::string(253, 'p') + "\xC3\xA9.img";
  runJob(R"([{"wwn":"W0","file_path":")" + path + R"("}])");
  EXPECT_THAT(framework.calls, Contains("zr_checkQVXFFlashImage(0/0, 0, flash[4801 " +
                                        path.substr(0, 255) + " 0], zeroed)"));
}

// --- product identifiers

TEST_F(UpdateSequence, StandardProductsWithAUsbPartReadIt) {
  for (const int high : {0x43, 0x44, 0x45, 0x46, 0x47, 0x88}) {
    framework.devices.clear();
    framework.calls.clear();
    controllers({static_cast<std::uint16_t>(high << 8)});
    updateAll({"W0"});
    EXPECT_EQ(framework.count("zr_getUSBImageInfo"), 1) << high;
    EXPECT_EQ(framework.count("zr_flashImageEx"), 1) << high;
    EXPECT_EQ(result(), 0) << high;
  }
}

TEST_F(UpdateSequence, Product42IsFlashedWithAnAllZeroUsbRecord) {
  controllers({0x4201});
  updateAll({"W0"});
  EXPECT_EQ(framework.count("zr_getUSBImageInfo"), 0);
  EXPECT_THAT(framework.calls,
              Contains("zr_checkFlashImage(0/0, 0, buffer, flash[4201 /W0.img f1], usb[zeroed], "
                       "cpld[c1], image[fd cd])"));
  EXPECT_THAT(framework.calls, Contains("zr_mac_checkUSBFWVersion(0/0, 0, usb[zeroed], 0)"));
  EXPECT_THAT(updateLines(), Not(Contains(StartsWith("zr_getUSBImageInfo"))));
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, AnUnsupportedProductGetsTheCpldFlashAndAFlashProcessAndEndsThere) {
  for (const int high : {0x41, 0x00, 0x4A, 0x87, 0x89, 0xFF}) {
    framework.devices.clear();
    framework.calls.clear();
    controllers({static_cast<std::uint16_t>(high << 8 | 0x43)});
    updateAll({"W0"});
    EXPECT_THAT(callsAfter("zr_finalizeCPLDProcess"),
                ElementsAre("zr_finalizeCPLDProcess(0/0, 0)", "zr_initializeFlashProcess(0/0, 0)",
                            "zr_finalizeFlashProcess(0/0, 0)", "getErrorDescription(0x8055)"));
    EXPECT_EQ(framework.count("zr_getUSBImageInfo"), 0);
    EXPECT_EQ(result(), 0x8055);
  }
}

TEST_F(UpdateSequence, AProductIdentifierIsShownInSmallHexadecimalDigits) {
  controllers({0x48FE, 0xABCD});
  updateAll({"W0", "W1"});
  EXPECT_THAT(updateLines(), Contains("pPage0->ci_ProductID = 48fe"));
  EXPECT_THAT(updateLines(), Contains("pPage0->ci_ProductID = abcd"));
}

TEST_F(UpdateSequence, AQvxfControllerNeverGetsAUsbBridgeUpdate) {
  controllers({0x4801, 0x49FF});
  updateAll({"W0", "W1"});
  EXPECT_EQ(framework.count("zr_getCurrentDeviceInterface"), 0);
  EXPECT_EQ(result(), 0);
}

// --- the progress poll

TEST_F(UpdateSequence, PercentagesMapToTheSecondHalf) {
  controllers({0x4801});
  framework.flashProgress = {{0, 1, 37}, {0, 1, 255}, {0, 1, 100}};
  updateAll({"W0"});
  EXPECT_EQ(versions(), (Lines{"RUN 0/0/0", "RUN 68/0/37", "RUN 177/0/255", "RUN 100/0/100",
                               "FREE 100/0/100"}));
}

TEST_F(UpdateSequence, StatusTwoIsNeitherFinishedNorFailed) {
  controllers({0x4801});
  framework.flashProgress = {{2, 4, 10}, {2, 5, 20}, {4, 5, 30}, {0, 4, 40}, {255, 5, 50}};
  updateAll({"W0"});
  EXPECT_EQ(host.sleeps.size(), 5U);
  EXPECT_EQ(result(), 0);
}

TEST_F(UpdateSequence, AFailedStatusByteIsAFlashErrorThatStillPublishes100) {
  for (const std::uint8_t byte : {std::uint8_t{1}, std::uint8_t{3}}) {
    framework.devices.clear();
    framework.calls.clear();
    controllers({0x4301});
    framework.flashProgress = {{byte, 5, 40}};
    updateAll({"W0"});
    EXPECT_EQ(result(), 0x8054);
    EXPECT_EQ(versions().back(), "FREE 100/100/100");
    EXPECT_THAT(updateLines(), Contains("Flash Error"));
    EXPECT_THAT(callsAfter("zr_getFlashProgress"),
                ElementsAre("zr_getFlashProgress(0/0, 0, progress[zeroed])",
                            "zr_finalizeFlashProcess(0/0, 0)", "getErrorDescription(0x8054)"));
  }
  EXPECT_TRUE(host.sleeps.empty());
}

TEST_F(UpdateSequence, AFailedStatusByteCountsAlsoWhereTheProgressReadItselfFails) {
  controllers({0x4801});
  framework.flashProgress = {{1, 0, 0, 0, 0x77}};
  updateAll({"W0"});
  EXPECT_EQ(result(), 0x8054);
}

TEST_F(UpdateSequence, AFailedProgressReadIsActedOnOnceIncludingTheSleep) {
  controllers({0x4301});
  framework.flashProgress = {{0, 1, 20}};
  framework.answer("zr_getFlashProgress", 2, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(host.sleeps.size(), 2U);
  EXPECT_EQ(framework.count("zr_getFlashProgress"), 2);
  EXPECT_EQ(result(), 0x77);
  EXPECT_EQ(versions().back(), "FREE 60/100/20");
  EXPECT_EQ(framework.calls[framework.calls.size() - 2], "zr_finalizeFlashProcess(0/0, 0)");
}

TEST_F(UpdateSequence, AProgressReadThatFailsWithAFinishedRecordPublishes100AndEndsOnItsStatus) {
  controllers({0x4801});
  framework.flashProgress = {{0, 5, 100, 0, 0x77}};
  updateAll({"W0"});
  EXPECT_EQ(result(), 0x77);
  EXPECT_EQ(versions().back(), "FREE 100/0/100");
  EXPECT_THAT(updateLines(), Contains("Flash Completed."));
  EXPECT_THAT(callsAfter("zr_getFlashQVXFImageStatus"),
              ElementsAre("zr_getFlashQVXFImageStatus(0/0, 0, progress[zeroed])",
                          "zr_finalizeFlashProcess(0/0, 0)", "zr_finializeQVXFImage(0/0, 0)",
                          "getErrorDescription(0x77)"));
}

TEST_F(UpdateSequence, TheFinalisingStatusOfQvxfOverridesTheFlashProcesss) {
  controllers({0x4801});
  framework.answer("zr_finalizeFlashProcess", 2, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(result(), 0);
  EXPECT_THAT(updateLines(), Contains("ignore upgrade usb fw"));
}

// --- tolerated failures

TEST_F(UpdateSequence, AnUpToDateCpldStillGetsTheControllerFirmware) {
  controllers({0x4301});
  framework.answer("zr_flashCPLDBin", 1, 0x77);
  framework.answer("zr_finalizeCPLDProcess", 1, 0x77);
  framework.descriptions[0x77] = "the version of CPLD is up to date";
  updateAll({"W0"});
  EXPECT_EQ(framework.count("zr_flashImageEx"), 1);
  EXPECT_EQ(result(), 0);
  EXPECT_EQ(versions().back(), "FREE 100/100/100");
}

TEST_F(UpdateSequence, AFailureWithoutATextIsNotTolerated) {
  controllers({0x4301});
  framework.answer("zr_getFDLImageInfo", 1, 0x66);
  framework.descriptions[0x66] = nullptr;
  updateAll({"W0"});
  EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 0);
  EXPECT_EQ(result(), 0x66);
}

TEST_F(UpdateSequence, EveryFailureUpToTheCpldFlashMayBeTolerated) {
  for (const char* function :
       {"zr_getControllerInfo", "decod_locateBufferCtrlInfo", "zr_getFDLImageInfo",
        "zr_getCPLDImageInfo", "zr_getUSBImageInfo", "zr_finalizeCPLDProcess"}) {
    framework.devices.clear();
    framework.calls.clear();
    framework.answers.clear();
    controllers({0x4301, 0x4301});
    // The second controller's, where a page is known; for the page locator the one of page 1.
    const bool isLocator = std::string(function) == "decod_locateBufferCtrlInfo";
    framework.answer(function, isLocator ? 4 : 2, 0x66);
    framework.descriptions[0x66] = "unsupported management command";
    updateAll({"W0", "W1"});
    EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 2) << function;
    const bool isInfo = std::string(function) == "zr_getControllerInfo";
    if (isLocator) {  // nothing was filled after it
      EXPECT_THAT(framework.calls, Contains("zr_checkFlashImage(1/0, 0, buffer, flash[0000  0], "
                                            "usb[zeroed], cpld[zeroed], image[zeroed])"));
    }
    EXPECT_EQ(result(), isInfo ? 0x8055 : 0) << function;  // a zeroed page shows no product
  }
}

TEST_F(UpdateSequence, ToleratedTextsAreComparedExactly) {
  controllers({0x4301});
  framework.answer("zr_getFDLImageInfo", 1, 0x66);
  for (const char* text : {"Unsupported management command", "unsupported management command.",
                           "the version of CPLD is up to date!", ""}) {
    framework.calls.clear();
    framework.descriptions[0x66] = text;
    updateAll({"W0"});
    EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 0) << text;
    EXPECT_EQ(result(), 0x66);
  }
}

// --- entries after a failure

TEST_F(UpdateSequence, ASkippedStandardEntryClosesThePreviousControllersProcess) {
  controllers({0x4301, 0x4301});
  framework.answer("zr_verifyFlashImage", 1, 0x77);
  updateAll({"W0", "W1"});
  EXPECT_THAT(callsAfter("zr_verifyFlashImage"),
              ElementsAre("zr_verifyFlashImage(0/0, 0, flash[4301 /W0.img f1])",
                          "zr_finalizeFlashProcess(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "getErrorDescription(0x77)"));
  const Lines lines = updateLines();
  EXPECT_THAT(Lines(lines.end() - 3, lines.end()),
              ElementsAre("Image format is invalid.", "pPage0->ci_ProductID = 4301",
                          "updateAllFW end, retDict = {"));
  EXPECT_EQ(result(), 0x77);
}

TEST_F(UpdateSequence, ASkippedStandardEntryNamesABusyFrameworkAgain) {
  controllers({0x4301, 0x4301});
  framework.answer("zr_initializeFlashProcess", 1, 0x8050);
  updateAll({"W0", "W1"});
  const Lines lines = updateLines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "There is another flash process running."), 2);
  EXPECT_EQ(framework.count("zr_finalizeFlashProcess"), 2);
}

TEST_F(UpdateSequence, ABusyFrameworkIsNamedUpToTheTransferAndNotAfterIt) {
  const std::vector<std::pair<const char*, bool>> calls = {
      {"zr_getFDLImageInfo", true},        {"zr_getCPLDImageInfo", true},
      {"zr_getUSBImageInfo", true},        {"zr_finalizeCPLDProcess", true},
      {"zr_initializeFlashProcess", true}, {"zr_checkFlashImage", true},
      {"zr_transferFlashImage", true},     {"zr_verifyFlashImage", false},
      {"zr_flashImageEx", false},          {"zr_getFlashProgress", false},
      {"zr_finalizeFlashProcess", false},  {"zr_getCurrentDeviceInterface", false},
      {"zr_mac_flashUSBFWbin", false}};
  for (const auto& [function, isNamed] : calls) {
    framework.devices.clear();
    framework.calls.clear();
    framework.answers.clear();
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    controllers({0x4301});
    framework.answer(function, 1, 0x8050);
    updateAll({"W0"});
    EXPECT_THAT(updateLines(),
                Contains("There is another flash process running.").Times(isNamed ? 1 : 0))
        << function;
    EXPECT_EQ(result(), 0x8050) << function;
  }
}

TEST_F(UpdateSequence, ASkippedEntryIsNeverTolerated) {
  controllers({0x4301, 0x4301});
  framework.answer("zr_verifyFlashImage", 1, 0x66);
  framework.descriptions[0x66] = "unsupported management command";
  updateAll({"W0", "W1"});
  EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 1);
  EXPECT_EQ(framework.count("getErrorDescription"), 1);
  EXPECT_EQ(result(), 0x66);
}

TEST_F(UpdateSequence, ASkippedQvxfEntryFollowsTheStepsWithAnEmptyPath) {
  controllers({0x4801, 0x4301});
  framework.answer("zr_flashQVXFImage", 1, 0x77);
  updateAll({"W0", "W1"});
  EXPECT_THAT(callsAfter("zr_flashQVXFImage"),
              ElementsAre("zr_flashQVXFImage(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "zr_finializeQVXFImage(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "zr_finializeQVXFImage(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "zr_finializeQVXFImage(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "zr_finializeQVXFImage(0/0, 0)", "getErrorDescription(0x77)"));
  const Lines lines = updateLines();
  EXPECT_THAT(Lines(lines.end() - 6, lines.end()),
              ElementsAre("[WRONG] zr_flashQVXFImage = 0x77", "u32Ret is not 0, u32Ret = 0x77",
                          "pPage0->ci_ProductID = 4801", "rpf.rpf_uTransfer.rpf_u8ImageFilePath = ",
                          "u32Ret is not 0, u32Ret = 0x77", "updateAllFW end, retDict = {"));
}

TEST_F(UpdateSequence, AnUnknownWwnAfterAKnownOneGoesByThePreviousController) {
  controllers({0x4801});
  updateAll({"W0", "X"});
  const Lines lines = updateLines();
  EXPECT_THAT(Lines(lines.end() - 5, lines.end()),
              ElementsAre("ignore upgrade usb fw", "pPage0->ci_ProductID = 4801",
                          "rpf.rpf_uTransfer.rpf_u8ImageFilePath = ",
                          "u32Ret is not 0, u32Ret = 0x402", "updateAllFW end, retDict = {"));
  const Lines closing = {"zr_finalizeFlashProcess(0/0, 0)", "zr_finializeQVXFImage(0/0, 0)"};
  Lines expected = {"zr_getFlashQVXFImageStatus(0/0, 0, progress[zeroed])"};
  for (int i = 0; i < 3; ++i) expected.insert(expected.end(), closing.begin(), closing.end());
  expected.push_back("getErrorDescription(0x402)");
  EXPECT_EQ(callsAfter("zr_getFlashQVXFImageStatus"), expected);
  EXPECT_EQ(result(), 0x0402);
}

TEST_F(UpdateSequence, AnUnknownWwnAfterAStandardControllerClosesThatOnesProcess) {
  controllers({0x4301});
  updateAll({"W0", "X"});
  EXPECT_THAT(callsAfter("zr_mac_flashNVRAM"),
              ElementsAre("zr_mac_flashNVRAM(0/0, 0, nvram[a2])", "zr_finalizeFlashProcess(0/0, 0)",
                          "getErrorDescription(0x402)"));
  EXPECT_EQ(updateLines()[updateLines().size() - 2], "pPage0->ci_ProductID = 4301");
}

TEST_F(UpdateSequence, ALaterPageThatIsNotFoundLeavesTheEarlierOneInForce) {
  controllers({0x4801, 0x4801});
  framework.answer("decod_locateBufferCtrlInfo", 3, 0x66);
  updateAll({"W0", "W1"});
  // The buffer holds the second controller's information, and the page stands where it stood.
  const Lines lines = updateLines();
  EXPECT_THAT(
      Lines(lines.end() - 4, lines.end()),
      ElementsAre("pPage0->ci_ProductID = 4801", "rpf.rpf_uTransfer.rpf_u8ImageFilePath = /W1.img",
                  "u32Ret is not 0, u32Ret = 0x66", "updateAllFW end, retDict = {"));
  EXPECT_EQ(framework.calls[framework.calls.size() - 2], "zr_finializeQVXFImage(1/0, 0)");
}

TEST_F(UpdateSequence, AFirstControllerWithoutAPageEndsWithTheOneFinaliseCall) {
  for (const char* function : {"zr_getControllerInfo", "decod_locateBufferCtrlInfo"}) {
    framework.devices.clear();
    framework.calls.clear();
    framework.answers.clear();
    controllers({0x4801, 0x4801});
    framework.answer(function, 1, 0x66);
    framework.descriptions[0x66] = "unsupported management command";
    updateAll({"W0", "W1"});
    Lines tail = callsAfter(function);
    tail.erase(tail.begin());
    EXPECT_THAT(tail, ElementsAre("zr_finalizeFlashProcess(0/0, 0)",  // of W0
                                  "zr_finalizeFlashProcess(0/0, 0)",  // of W1, skipped
                                  "getErrorDescription(0x66)"));
    EXPECT_THAT(updateLines(), Not(Contains(StartsWith("pPage0"))));
    EXPECT_EQ(result(), 0x66);
  }
}

TEST_F(UpdateSequence, WhereAPageWasSaidToBeThatWasNotFoundNothingIsRead) {
  controllers({0x4801, 0x4801});
  framework.failuresTellPages = true;
  framework.answer("decod_locateBufferCtrlInfo", 1, 0x66);
  updateAll({"W0", "W1"});
  EXPECT_THAT(callsAfter("decod_locateBufferCtrlInfo"),
              ElementsAre("decod_locateBufferCtrlInfo(buffer, 65535, 0, 0)",
                          "zr_finalizeFlashProcess(0/0, 0)", "zr_finalizeFlashProcess(0/0, 0)",
                          "getErrorDescription(0x66)"));
  EXPECT_THAT(updateLines(), Not(Contains(StartsWith("pPage0"))));
}

TEST_F(UpdateSequence, ALaterControllerWithoutInformationShowsTheZeroedBuffer) {
  controllers({0x4801, 0x4801});
  framework.answer("zr_getControllerInfo", 2, 0x66);
  updateAll({"W0", "W1"});
  EXPECT_THAT(updateLines(), Contains("pPage0->ci_ProductID = 0"));
  EXPECT_THAT(updateLines(), Contains("zr_getControllerInfo(), u32Ret = 66"));
  EXPECT_THAT(
      callsAfter("zr_getControllerInfo(1"),
      ElementsAre("zr_getControllerInfo(1, 0, request, zeroed, 65535)", "getErrorDescription(0x66)",
                  "zr_finalizeFlashProcess(1/0, 0)", "getErrorDescription(0x66)"));
  EXPECT_EQ(result(), 0x66);
}

TEST_F(UpdateSequence, AFailedPageOneOfAQvxfControllerStartsNothing) {
  controllers({0x4801});
  framework.answer("decod_locateBufferCtrlInfo", 2, 0x66);
  updateAll({"W0"});
  EXPECT_THAT(updateLines(), Contains("rpf.rpf_uTransfer.rpf_u8ImageFilePath = /W0.img"));
  EXPECT_THAT(updateLines(), Contains("u32Ret is not 0, u32Ret = 0x66"));
  EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 0);
  EXPECT_EQ(framework.count("zr_finalizeFlashProcess"), 2);
  EXPECT_EQ(framework.count("zr_finializeQVXFImage"), 2);
}

TEST_F(UpdateSequence, AFailedControllerLeavesLaterOnesAlone) {
  controllers({0x4301, 0x4301});
  framework.answer("zr_checkFlashImage", 1, 0x77);
  updateAll({"W0", "W1"});
  EXPECT_EQ(framework.count("zr_getControllerInfo"), 1);
  EXPECT_EQ(framework.count("zr_initializeFlashProcess"), 1);
  EXPECT_EQ(versions().back(), "FREE 50/100/0 0/0/0");
}

// --- wrong kinds

TEST_F(UpdateSequence, InputParametersThatAreNoListEndTheJobWhereTheyAreWalked) {
  controllers({0x4301});
  runJob(R"({"wwn":"W0","file_path":"/i"})");
  EXPECT_EQ(state(), "WAIT");
  EXPECT_EQ(framework.calls.back(), "decod_getStringWWN(zeroed, wwn)");
  EXPECT_THAT(log(), Contains(StartsWith("initUpgradeFWStatus error: ")).Times(1));
  EXPECT_THAT(log().back(), StartsWith("updateFW error: "));
}

TEST_F(UpdateSequence, AnEntryThatIsNoDictionaryEndsTheJob) {
  controllers({0x4801});
  runJob(R"([{"wwn":"W0","file_path":"/i"},"entry"])");
  EXPECT_THAT(log().back(), StartsWith("updateFW error: "));
  EXPECT_NE(state(), "FREE");
}

TEST_F(UpdateSequence, ALogThatFailsEndsTheJobWithoutAnUpdate) {
  controllers({0x4801});
  writeJobs(R"([{"log_id":"17","state_id":"WAIT","input_parameters":[]}])");
  const std::string text = jobText();
  const test::FullFile full;
  setLogPath(full.path().c_str());
  EXPECT_TRUE(worker.updateFW(jobs().at(0)).isNothing());
  EXPECT_EQ(jobText(), text);
  EXPECT_THAT(framework.calls, IsEmpty());
}

}  // namespace
}  // namespace kelvane
