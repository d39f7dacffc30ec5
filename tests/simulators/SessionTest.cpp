// Sessions as a worker has them: what the controllers do, what they keep, which faults they play.

#include <cstring>

#include <gtest/gtest.h>

#include "simulators/controllers/Status.h"
#include "tests/simulators/SimulatedWorld.h"

namespace kelvane::test {
namespace {

using simulator::describeStatus;

TEST(SimulatedSession, StandardUpdateBreaksNoContract) {
  SimulatedWorld world;
  EXPECT_EQ(world.upToExamined(world.standardImage()), 0U);
  EXPECT_EQ(world.openCpld(), 0U);
  EXPECT_EQ(world.startCpld(), 0U);
  EXPECT_EQ(world.pollCpld().rdcp_u8Stage, 2);
  EXPECT_EQ(world.framework.finalizeCPLDProcess(world.address, 0), 0U);
  EXPECT_EQ(world.transfer(), 0U);
  EXPECT_EQ(world.startFirmware(), 0U);
  EXPECT_EQ(world.pollFirmware().fp_u8Stage, 5);
  EXPECT_EQ(world.framework.finalizeFlashProcess(world.address, 0), 0U);
  EXPECT_EQ(world.prepareBridge(), 0U);
  EXPECT_EQ(world.flashBridge(), 0U);
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
  EXPECT_EQ(world.stored("firmware"), "2.0");
  EXPECT_EQ(world.stored("cpld"), "2.0");
  EXPECT_EQ(world.stored("usb_bridge"), "2.0");
  EXPECT_EQ(world.stored("nvram"), "4e56524d322e30");
}

TEST(SimulatedSession, QvxfUpdateBreaksNoContract) {
  SimulatedWorld world(fleetOfOneQvxf());
  world.start();
  EXPECT_EQ(world.readController(), 0U);
  EXPECT_EQ(world.transferQvxf(world.qvxfImage()), 0U);
  EXPECT_EQ(world.framework.finalizeFlashProcess(world.address, 0), 0U);
  EXPECT_EQ(world.startQvxf(), 0U);
  EXPECT_EQ(world.pollQvxf().fp_u8Stage, 5);
  EXPECT_EQ(world.framework.finalizeFlashProcess(world.address, 0), 0U);
  EXPECT_EQ(world.framework.finializeQVXFImage(world.address, 0), 0U);
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
  EXPECT_EQ(world.stored("firmware"), "2.0");
}

TEST(SimulatedSession, ClosingWhatIsNotOpenIsNoBreach) {
  SimulatedWorld world;
  world.start();
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(world.framework.finalizeFlashProcess(world.address, 0), 0U);
    EXPECT_EQ(world.framework.finializeQVXFImage(world.address, 0), 0U);
    EXPECT_EQ(world.framework.finalizeCPLDProcess(world.address, 0), 0U);
  }
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
}

TEST(SimulatedSession, PagesTellTheProductAtAnyAddress) {
  SimulatedWorld world;
  world.start();
  world.readController();
  std::uint16_t product = 0;
  std::memcpy(&product,
              static_cast<char*>(world.job.page0) + offsetof(ControllerInfoPage, ci_ProductID),
              sizeof product);
  EXPECT_EQ(product, 0x4301);
}

TEST(SimulatedSession, SubsystemsAreListedByTheRunningIndex) {
  SimulatedWorld world(
      R"({"controllers":[
        {"wwn":"500A098000000001","product_id":1,"firmware":"1","cpld":"1","usb_bridge":"1"},
        {"wwn":"500a098000000002","product_id":2,"firmware":"1","cpld":"1","usb_bridge":"1",
         "listed_as":"subsystem"}]})");
  world.start();
  std::uint32_t adapters = 9;
  std::uint32_t subsystems = 9;
  world.framework.getNumberOfHBA(&adapters);
  world.framework.getNumberOfSubsystem(&subsystems);
  EXPECT_EQ(adapters, 1U);
  EXPECT_EQ(subsystems, 1U);
  SubsystemInfo info = {};
  EXPECT_EQ(world.framework.getSubsystemInfo(ControllerAddress{0, 0, 1, 0}, 0, &info), 0U);
  WwnString wwn = {};
  world.framework.getStringWWN(&wwn, info.wwn);
  EXPECT_STREQ(wwn.text, "500a098000000002");
  EXPECT_EQ(world.readController(1), 0U) << "by its index as an adapter number";
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
}

// --- what was flashed stays flashed

TEST(SimulatedSession, SecondRunMeetsAnUpToDateCpld) {
  SimulatedWorld world(fleetOfOne(R"("note": "kept")"));
  const std::string image = world.standardImage();
  world.upToExamined(image);
  world.openCpld();
  world.startCpld();
  world.pollCpld();
  world.framework.finalizeCPLDProcess(world.address, 0);
  EXPECT_EQ(world.stored("note"), "kept");

  SimulatedWorld second(world.folder.read("fleet.json"));
  second.upToExamined(image);
  second.openCpld();
  EXPECT_STREQ(describeStatus(second.startCpld()), "the version of CPLD is up to date");
}

TEST(SimulatedSession, UnfinishedFlashIsGivenUpByClosing) {
  SimulatedWorld world(fleetOfOne(R"("firmware_seconds": 100)"));
  world.upToFirmwareStarted(world.standardImage());
  world.pollFirmware();
  world.framework.finalizeFlashProcess(world.address, 0);
  EXPECT_EQ(world.stored("firmware"), "1.0");
}

TEST(SimulatedSession, FlashThatEndedUnseenCountsWhenItIsClosed) {
  SimulatedWorld world(fleetOfOne(R"("firmware_seconds": 1)"));
  world.upToFirmwareStarted(world.standardImage());
  EXPECT_NE(world.pollFirmware().fp_u8Stage, 5);
  world.framework.finalizeFlashProcess(world.address, 0);
  EXPECT_EQ(world.stored("firmware"), "2.0");
}

// --- the clock

TEST(SimulatedSession, EveryProgressQueryMovesTheTimeOn) {
  SimulatedWorld world(fleetOfOne(R"("firmware_seconds": 4)"));
  world.upToFirmwareStarted(world.standardImage());
  for (const int percent : {0, 25, 50, 75, 100}) {
    EXPECT_EQ(world.pollFirmware().fp_u8Percent, percent);
  }
  EXPECT_EQ(world.pollFirmware().fp_u8Stage, 5);
}

// --- faults

TEST(SimulatedFault, StatusComesAtTheNamedCallOnly) {
  SimulatedWorld world(
      fleetOfOne("", R"({"function":"zr_getNumberOfHBA","call":2,"status":"0x0401"})"));
  world.start();
  std::uint32_t count = 0;
  EXPECT_EQ(world.framework.getNumberOfHBA(&count), 0U);
  EXPECT_STREQ(describeStatus(world.framework.getNumberOfHBA(&count)),
               "unsupported management command");
  EXPECT_EQ(world.framework.getNumberOfHBA(&count), 0U);
}

TEST(SimulatedFault, CountOfZeroIsForEver) {
  SimulatedWorld world(
      fleetOfOne("", R"({"function":"zr_getNumberOfHBA","call":2,"status":7,"count":0})"));
  world.start();
  std::uint32_t count = 0;
  EXPECT_EQ(world.framework.getNumberOfHBA(&count), 0U);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(world.framework.getNumberOfHBA(&count), 7U);
}

TEST(SimulatedFault, FailedCallDoesNothing) {
  SimulatedWorld world(fleetOfOne("", R"({"function":"zr_initializeFlashProcess","status":7})"));
  world.upToExamined(world.standardImage());
  EXPECT_EQ(world.transfer(), 7U);
  EXPECT_EQ(world.transfer(), 0U);
}

TEST(SimulatedFault, ClosingCallClosesAllTheSame) {
  SimulatedWorld world(fleetOfOne("", R"({"function":"zr_finalizeCPLDProcess","status":7})"));
  world.upToExamined(world.standardImage());
  world.openCpld();
  EXPECT_EQ(world.framework.finalizeCPLDProcess(world.address, 0), 7U);
  EXPECT_EQ(world.transfer(), 0U);
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
}

TEST(SimulatedFault, AcceptedCpldFlashRuns) {
  SimulatedWorld world(fleetOfOne("", R"({"function":"zr_flashCPLDBin","status":"0x8058"})"));
  world.upToExamined(world.standardImage());
  world.openCpld();
  EXPECT_EQ(world.startCpld(), kZorCpldFlashAccepted);
  EXPECT_EQ(world.pollCpld().rdcp_u8Stage, 2);
}

TEST(SimulatedFault, SecondFlashProcessRuns) {
  SimulatedWorld world(fleetOfOne(R"("faults": [{"flash": "firmware", "do": "busy", "calls": 1},
                                                {"flash": "cpld", "do": "busy"}])"));
  world.upToExamined(world.standardImage());
  world.openCpld();
  EXPECT_EQ(world.startCpld(), kZorFlashProcessRunning);
  EXPECT_EQ(world.startCpld(), kZorFlashProcessRunning);
  world.framework.finalizeCPLDProcess(world.address, 0);
  EXPECT_EQ(world.transfer(), kZorFlashProcessRunning);
  EXPECT_EQ(world.transfer(), 0U);
}

TEST(SimulatedFault, FirmwareFlashFails) {
  SimulatedWorld world(fleetOfOne(R"("firmware_seconds": 2, "faults":
                    [{"flash": "firmware", "do": "fail", "at": 50, "status_byte": 3}])"));
  world.upToFirmwareStarted(world.standardImage());
  EXPECT_EQ(world.pollFirmware().fp_u8Status, 0);
  EXPECT_EQ(world.pollFirmware().fp_u8Status, 3);
  world.framework.finalizeFlashProcess(world.address, 0);
  EXPECT_EQ(world.stored("firmware"), "1.0");
}

TEST(SimulatedFault, CpldIsRetriedAndThenHolds) {
  SimulatedWorld world(fleetOfOne(R"("cpld_transfer_seconds": 2, "faults":
                    [{"flash": "cpld", "do": "retry", "at": 50}])"));
  world.upToExamined(world.standardImage());
  world.openCpld();
  world.startCpld();
  EXPECT_EQ(world.pollCpld().rdcp_u8RetryCount, 0);
  EXPECT_EQ(world.pollCpld().rdcp_u8RetryCount, 1);
  EXPECT_EQ(world.pollCpld().rdcp_u8Percent, 50);
  const CpldProgress last = world.pollCpld();
  EXPECT_EQ(last.rdcp_u8Stage, 2);
  EXPECT_EQ(last.rdcp_u8RetryCount, 1);
  EXPECT_EQ(world.stored("cpld"), "2.0");
}

TEST(SimulatedFault, UnusableFleetFailsTheDiscovery) {
  SimulatedWorld world(R"({"controllers": [], "colour": "red"})");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(world.start(), simulator::kStatusFleetUnusable);
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("colour"), std::string::npos);
}

TEST(SimulatedFault, WhatCannotBeKeptIsTold) {
  SimulatedWorld world;
  world.upToFirmwareStarted(world.standardImage());
  world.folder.write("fleet.json", "no fleet any more");
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(world.pollFirmware().fp_u8Stage, 5);
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("not kept"), std::string::npos);
}

// A worker tolerates this one failure and goes on with a record that it never filled.
TEST(SimulatedFault, UnfilledFlashParmAfterAFailureIsAnErrorAndNoBreach) {
  SimulatedWorld world(fleetOfOne("", R"({"function":"zr_getControllerInfo","status":"0x0401"})"));
  world.start();
  EXPECT_EQ(world.readController(), 0x0401U);
  EXPECT_EQ(world.transfer(), simulator::kStatusImageUnreadable);
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
}

TEST(SimulatedFault, WrongAddressAfterALostCountIsNoBreach) {
  SimulatedWorld world(fleetOfOne("", R"({"function":"zr_getNumberOfHBA","status":7})"));
  world.start();
  std::uint32_t count = 0;
  world.framework.getNumberOfHBA(&count);
  SubsystemInfo info = {};
  EXPECT_EQ(world.framework.getSubsystemInfo(ControllerAddress{0, 0, 5, 0}, 0, &info),
            simulator::kStatusUnknownAddress);
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{});
}

// --- images

TEST(SimulatedSession, ImageForAnotherProductIsRefused) {
  SimulatedWorld world;
  simulator::Image image;
  image.products = {"0x4302"};
  image.firmware = {"2.0", ""};
  const std::string path = world.folder.write("other.img", encodeImage(image));
  EXPECT_EQ(world.upToExamined(path), simulator::kStatusImageOtherProduct);
}

TEST(SimulatedSession, ImageOfTheOtherKindIsRefusedOnBothPaths) {
  SimulatedWorld standard;
  EXPECT_EQ(standard.upToExamined(standard.qvxfImage()), simulator::kStatusImageOtherKind);
  SimulatedWorld qvxf(fleetOfOneQvxf());
  qvxf.start();
  qvxf.readController();
  EXPECT_EQ(qvxf.transferQvxf(qvxf.standardImage()), simulator::kStatusImageOtherKind);
}

TEST(SimulatedSession, MissingAndDamagedImagesAreRefused) {
  SimulatedWorld world;
  EXPECT_EQ(world.upToExamined(world.folder / "none.img"), simulator::kStatusImageUnreadable);
  EXPECT_EQ(world.upToExamined(world.folder.write("bad.img", "bad")),
            simulator::kStatusImageDamaged);
}

TEST(SimulatedSession, ImageWithoutCpldLeavesItUpToDate) {
  SimulatedWorld world;
  world.upToExamined(world.standardImage("2.0", ""));
  world.openCpld();
  EXPECT_STREQ(describeStatus(world.startCpld()), "the version of CPLD is up to date");
}

TEST(SimulatedSession, ImageWithoutBridgeAsksForNothing) {
  SimulatedWorld world;
  world.upToExamined(world.standardImage("2.0", "2.0", ""));
  EXPECT_EQ(world.job.usb.usb_u32checkUSB, 0U);
  EXPECT_EQ(world.prepareBridge(), 0U);
  EXPECT_EQ(world.job.usb.flashRequest, 0U);
}

// --- the bridge

TEST(SimulatedBridge, SameVersionRaisesNoFlag) {
  SimulatedWorld world;
  world.upToExamined(world.standardImage("2.0", "2.0", "1.0"));
  EXPECT_NE(world.job.usb.usb_u32checkUSB, 0U);
  EXPECT_EQ(world.prepareBridge(), 0U);
  EXPECT_EQ(world.job.usb.flashRequest, 0U);
}

TEST(SimulatedBridge, ThunderboltShowsAtTheVersionCheck) {
  SimulatedWorld world(fleetOfOne(R"("attached": "thunderbolt")"));
  world.upToExamined(world.standardImage());
  EXPECT_EQ(world.prepareBridge(), kZorThunderbolt);
}

TEST(SimulatedBridge, OtherAttachmentsShowInTheInterface) {
  SimulatedWorld world(fleetOfOne(R"("attached": "other")"));
  world.start();
  DeviceInterfaceInfo interface = {};
  EXPECT_EQ(world.framework.getCurrentDeviceInterface(world.address, 0, &interface), 0U);
  EXPECT_EQ(interface.at33, 0);
}

// --- texts

TEST(SimulatedStatus, EveryCodeHasAText) {
  EXPECT_STREQ(describeStatus(0), "no error");
  EXPECT_STREQ(describeStatus(0xFFFFFFFF), "unknown error");
  EXPECT_STREQ(describeStatus(simulator::kStatusCpldUpToDate), ZOR_TEXT_CPLD_UP_TO_DATE);
  for (const std::uint32_t status :
       {kZorOutOfMemory, kZorUsbNothingToDo, kZorDeviceNotFound, kZorThunderbolt,
        kZorFlashProcessRunning, kZorFlashFailed, kZorUnsupportedProduct, kZorCpldFlashAccepted}) {
    EXPECT_STRNE(describeStatus(status), "unknown error") << status;
  }
}

}  // namespace
}  // namespace kelvane::test
