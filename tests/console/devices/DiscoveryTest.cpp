// What is told of the devices, with the scripted framework.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/devices/Discovery.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/support/FakeFramework.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

class DiscoveryTest : public ::testing::Test {
 protected:
  DiscoveryTest() {
#define KELVANE_FAKE_FUNCTION(name) zorapi.name = &::name;
    KELVANE_LOOKING_FUNCTIONS(KELVANE_FAKE_FUNCTION)
#undef KELVANE_FAKE_FUNCTION
    framework.devices = {{"A1", 0x4301}};
    framework.adapters = 1;
  }

  Value devices() const { return Discovery(zorapi, step).devices(); }
  Value device() const { return devices().at(0); }

  test::FakeFramework framework;
  LookingFunctions zorapi = {};
  std::vector<std::string> steps;
  Step step = [this](const std::string& next) { steps.push_back(next); };
};

TEST_F(DiscoveryTest, TellsOfEachDeviceWhatItIsAndHowItIsUpdated) {
  framework.devices = {{"A1", 0x4301}, {"A2", 0x3201}, {"B1", 0x4801}};
  framework.adapters = 2;
  EXPECT_EQ(devices(), parseJson(R"([
    {"device_id": 0, "listed_as": "adapter", "wwn": "A1", "product_id": "0x4301",
     "update": "standard", "attached": "bridge"},
    {"device_id": 1, "listed_as": "adapter", "wwn": "A2", "product_id": "0x3201",
     "update": "none", "attached": "bridge"},
    {"device_id": 2, "listed_as": "subsystem", "wwn": "B1", "product_id": "0x4801",
     "update": "qvxf", "attached": "bridge"}])"));
}

TEST_F(DiscoveryTest, AsksOnlyWhatTheWorkerAsksToo) {
  framework.devices = {{"A1", 0x4301}, {"B1", 0x4801}};
  devices();
  EXPECT_THAT(framework.calls,
              ElementsAre("zr_initialize(fixed words)", "zr_discover(0)", "zr_getNumberOfHBA(0)",
                          "zr_getNumberOfSubsystem(0)", "zr_getSubsystemInfo(0/0, 0, zeroed)",
                          "decod_getStringWWN(zeroed, wwn)", "zr_getSubsystemInfo(0/1, 0, zeroed)",
                          "decod_getStringWWN(zeroed, wwn)",
                          "zr_getControllerInfo(0, 0, request, zeroed, 65535)",
                          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 0)",
                          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 1)",
                          "zr_getCurrentDeviceInterface(0/0, 0, zeroed)",
                          "zr_mac_checkUSBFWVersion(0/0, 0, usb[zeroed], 0)",
                          "zr_getControllerInfo(1, 0, request, zeroed, 65535)",
                          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 0)",
                          "decod_locateBufferCtrlInfo(buffer, 65535, 0, 1)",
                          "zr_getCurrentDeviceInterface(1/0, 0, zeroed)"));
}

TEST_F(DiscoveryTest, ThunderboltShowsItselfAtTheVersionCheck) {
  framework.answer("zr_mac_checkUSBFWVersion", 1, kZorThunderbolt);
  EXPECT_EQ(device().get("attached"), Value("thunderbolt"));
}

TEST_F(DiscoveryTest, AVersionCheckThatFailsOtherwiseLeavesItABridge) {
  framework.answer("zr_mac_checkUSBFWVersion", 1, 0x0401);
  EXPECT_EQ(device().get("attached"), Value("bridge"));
}

TEST_F(DiscoveryTest, WithoutABridgeNoVersionIsAskedFor) {
  framework.interfaceByte = 0;
  EXPECT_EQ(device().get("attached"), Value("other"));
  EXPECT_EQ(framework.count("zr_mac_checkUSBFWVersion"), 0);
}

TEST_F(DiscoveryTest, ADeviceThatDoesNotAnswerIsToldWithItsStatus) {
  framework.answer("zr_getSubsystemInfo", 1, 0x0401);
  EXPECT_EQ(device(), parseJson(R"({"device_id": 0, "listed_as": "adapter",
    "failed": "zr_getSubsystemInfo", "status": "0x0401 text of 0x401"})"));
}

TEST_F(DiscoveryTest, AControllerWithoutInformationKeepsItsWwn) {
  for (const char* function : {"zr_getControllerInfo", "decod_locateBufferCtrlInfo"}) {
    framework.calls.clear();
    framework.answers.clear();
    framework.answer(function, 1, 0x0403);
    const Value told = device();
    EXPECT_EQ(told.get("wwn"), Value("A1"));
    EXPECT_EQ(told.get("failed"), Value(function));
    EXPECT_FALSE(told.has("update"));
  }
}

TEST_F(DiscoveryTest, AnInterfaceThatIsNotToldLeavesTheRest) {
  framework.answer("zr_getCurrentDeviceInterface", 1, 0x0403);
  EXPECT_EQ(device(), parseJson(R"({"device_id": 0, "listed_as": "adapter", "wwn": "A1",
    "product_id": "0x4301", "update": "standard", "failed": "zr_getCurrentDeviceInterface",
    "status": "0x0403 text of 0x403"})"));
}

TEST_F(DiscoveryTest, NoDevicesAreAnEmptyList) {
  framework.devices.clear();
  framework.adapters = 0;
  EXPECT_EQ(devices(), Value::array());
}

TEST_F(DiscoveryTest, ADiscoveryThatFailsIsAFailure) {
  framework.answer("zr_discover", 1, 0x0106);
  try {
    devices();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.exitCode(), kNoAnswer);
    EXPECT_STREQ(failure.what(), "discovering the controllers fails: 0x0106 text of 0x106");
  }
}

TEST_F(DiscoveryTest, EachStepIsToldBeforeItIsTaken) {
  devices();
  EXPECT_THAT(steps,
              ElementsAre("discovering the controllers", "discovering the controllers (1 so far)",
                          "asking the controller A1"));
}

TEST_F(DiscoveryTest, NoFlashProcessIsOpened) {
  devices();
  EXPECT_THAT(framework.calls, Not(Contains(StartsWith("zr_initializeFlashProcess"))));
}

}  // namespace
}  // namespace kelvane::console
