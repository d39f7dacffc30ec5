#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "firmware/UsbBridge.h"
#include "tests/support/WorkerWorld.h"

namespace kelvane {
namespace {

using test::Lines;
using ::testing::ElementsAre;

constexpr char kInterface[] = "zr_getCurrentDeviceInterface(3/0, 0, zeroed)";
constexpr char kCheck[] = "zr_mac_checkUSBFWVersion(3/0, 0, usb[b 0], 0)";
constexpr char kGet[] = "zr_mac_getNVRAM(3/0, 0, nvram[zeroed])";
constexpr char kFlash[] = "zr_mac_flashUSBFWbin(3/0, 0, flash[4301  0], usb[b 1])";
constexpr char kSet[] = "zr_mac_setNVRAM(3/0, 0, flash[4301  0], usb[b 1], nvram[a1])";
constexpr char kWrite[] = "zr_mac_flashNVRAM(3/0, 0, nvram[a2])";

class UsbBridge : public test::WorkerWorld {
 protected:
  UsbBridge() {
    flash.productId = 0x4301;
    usb.usb_u32checkUSB = 0xB;
  }
  std::uint32_t run() { return updateUsbBridge({3, 0, 0, 0}, flash, usb, nvram); }

  FlashParm flash = {};
  UsbParm usb = {};
  UsbNvram nvram = {};
};

TEST_F(UsbBridge, ADifferentVersionIsFlashedThenTheNvram) {
  framework.usbUpdateFlag = 7;
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash, kSet, kWrite));
  EXPECT_THAT(log(),
              ElementsAre("updateFW: usbfwupdatecheck = 7, different usb fw version, update usb fw",
                          "updateFW: start _flashUSBFW, flashing Usb fw...",
                          "updateFW: qvxflash start zr_mac_flashUSBFWbin",
                          "updateFW: qvxflash -u usb start zr_mac_flashNVRAM"));
}

TEST_F(UsbBridge, TheFlagIsShownWithASign) {
  framework.usbUpdateFlag = 0xFFFFFFFF;
  EXPECT_EQ(run(), 0U);
  EXPECT_EQ(log().front(),
            "updateFW: usbfwupdatecheck = -1, different usb fw version, update usb fw");
}

TEST_F(UsbBridge, TheTwoStartLinesEndInALineFeedOfTheirOwn) {
  run();
  EXPECT_THAT(logText(), ::testing::HasSubstr("qvxflash start zr_mac_flashUSBFWbin\n\n["));
  EXPECT_THAT(logText(), ::testing::HasSubstr("qvxflash -u usb start zr_mac_flashNVRAM\n\n"));
}

TEST_F(UsbBridge, TheSameVersionStillReadsTheNvramAndIsNotFlashed) {
  framework.usbUpdateFlag = 0;
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet));
  EXPECT_THAT(log(), ElementsAre("updateFW: usbfwupdatecheck = 0, same usb fw version",
                                 "updateFW: same usb fw version, won't flash"));
}

TEST_F(UsbBridge, AControllerThatIsNotAttachedThroughTheBridgeEndsWithoutALine) {
  for (const std::uint8_t byte : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{255}}) {
    framework.calls.clear();
    framework.interfaceByte = byte;
    EXPECT_EQ(run(), 0U);
    EXPECT_THAT(framework.calls, ElementsAre(kInterface));
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(UsbBridge, AFailedInterfaceQueryIsTheResultWithoutALine) {
  for (const std::uint32_t status : {0x4027U, 0x105U, 0x1U}) {
    framework.calls.clear();
    framework.answer("zr_getCurrentDeviceInterface", 1, status);
    EXPECT_EQ(run(), status);
    EXPECT_THAT(framework.calls, ElementsAre(kInterface));
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(UsbBridge, ThunderboltInTheVersionCheckEndsWellWithoutReadingTheNvram) {
  framework.answer("zr_mac_checkUSBFWVersion", 1, 0x4027);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck));
  EXPECT_THAT(log(), ElementsAre("updateFW: thunderbolt device detected, end _flashUSBFW process"));
}

TEST_F(UsbBridge, ThunderboltInTheNvramReadEndsWell) {
  framework.answer("zr_mac_getNVRAM", 1, 0x4027);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet));
  EXPECT_THAT(log(), ElementsAre("updateFW: thunderbolt device detected, end _flashUSBFW process"));
}

TEST_F(UsbBridge, AnyOtherFailureOfTheVersionCheckIsSwallowed) {
  for (const std::uint32_t status : {0x1U, 0x105U, 0x8050U}) {
    framework.calls.clear();
    framework.answer("zr_mac_checkUSBFWVersion", 1, status);
    EXPECT_EQ(run(), 0U);
    EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck));
    EXPECT_EQ(log().back(), "updateFW: unknown error, end usb fw update process");
  }
}

TEST_F(UsbBridge, AnyOtherFailureOfTheNvramReadIsSwallowed) {
  framework.answer("zr_mac_getNVRAM", 1, 0x105);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet));
  EXPECT_THAT(log(), ElementsAre("updateFW: unknown error, end usb fw update process"));
}

TEST_F(UsbBridge, ThunderboltInTheBridgeFlashCountsAsSuccess) {
  framework.answer("zr_mac_flashUSBFWbin", 1, 0x4027);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash, kSet, kWrite));
}

TEST_F(UsbBridge, AFailedBridgeFlashIsTheResultAndStopsTheRest) {
  framework.answer("zr_mac_flashUSBFWbin", 1, 0x9);
  EXPECT_EQ(run(), 0x9U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash));
}

TEST_F(UsbBridge, Status0105OfTheBridgeFlashStopsTheRestAndCountsAsZero) {
  framework.answer("zr_mac_flashUSBFWbin", 1, 0x105);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash));
}

TEST_F(UsbBridge, AFailedNvramPreparationIsTheResultAndStopsTheRest) {
  framework.answer("zr_mac_setNVRAM", 1, 0x4027);
  EXPECT_EQ(run(), 0x4027U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash, kSet));
}

TEST_F(UsbBridge, Status0105OfTheNvramPreparationStopsBeforeTheWriteAndCountsAsZero) {
  framework.answer("zr_mac_setNVRAM", 1, 0x105);
  EXPECT_EQ(run(), 0U);
  EXPECT_THAT(framework.calls, ElementsAre(kInterface, kCheck, kGet, kFlash, kSet));
  EXPECT_EQ(log().size(), 3U);
}

TEST_F(UsbBridge, AFailedNvramWriteIsTheResult) {
  framework.answer("zr_mac_flashNVRAM", 1, 0x4027);
  EXPECT_EQ(run(), 0x4027U);
}

TEST_F(UsbBridge, Status0105OfTheNvramWriteCountsAsZero) {
  framework.answer("zr_mac_flashNVRAM", 1, 0x105);
  EXPECT_EQ(run(), 0U);
}

}  // namespace
}  // namespace kelvane
