// The sub-command devices on the simulated framework, and on frameworks that fail.

#include <gmock/gmock.h>

#include "platform/Json.h"
#include "tests/end_to_end/SupportInstallation.h"

namespace kelvane {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kFleet[] = R"([
  {"wwn": "50000000000000A1", "product_id": "0x4301", "firmware": "1", "cpld": "1",
   "usb_bridge": "1"},
  {"wwn": "50000000000000B2", "product_id": "0x4801", "firmware": "1", "cpld": "1",
   "usb_bridge": "1", "listed_as": "subsystem", "attached": "other"},
  {"wwn": "50000000000000C3", "product_id": "0x4201", "firmware": "1", "cpld": "1",
   "usb_bridge": "1", "attached": "thunderbolt"}])";

class Devices : public SupportInstallation {
 protected:
  test::Ended devices(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"devices", "--bundle", bundle.path(), "--shared",
                                          shared()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return consoleWithFleet(arguments);
  }
  void expectNoAnswer(const std::string& fault, const std::string& complaints = "") const {
    const test::Ended ended = devices();
    EXPECT_EQ(ended.exitStatus, 8);
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err,
              "kelvane-console: the framework " + framework() + ": " + fault + "\n" + complaints);
  }
};

TEST_F(Devices, AreWhatTheFrameworkFinds) {
  writeFleet(kFleet);
  const test::Ended ended = devices();
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_EQ(ended.out,
            "WWN               Listed as  Product  Update    Attached\n"
            "50000000000000A1  adapter    0x4301   standard  bridge\n"
            "50000000000000C3  adapter    0x4201   standard  Thunderbolt\n"
            "50000000000000B2  subsystem  0x4801   QVXF      no bridge\n");
}

TEST_F(Devices, AreAskedByTheFrameworksContractAndOpenNoFlash) {
  writeFleet(kFleet);
  devices();
  EXPECT_THAT(violations(), IsEmpty());
  EXPECT_THAT(calls(), Contains("zr_getControllerInfo"));
  EXPECT_THAT(calls(), Not(Contains(StartsWith("zr_initializeFlash"))));
}

TEST_F(Devices, AreAListForMachines) {
  writeFleet(kFleet);
  EXPECT_EQ(platform::parseJson(devices({"--json"}).out).at(2), platform::parseJson(R"({
    "device_id": 2, "listed_as": "subsystem", "wwn": "50000000000000B2", "product_id": "0x4801",
    "update": "qvxf", "attached": "other"})"));
}

TEST_F(Devices, OneThatDoesNotAnswerLeavesTheOthers) {
  writeFleet(kFleet, R"([{"function": "zr_getSubsystemInfo", "call": 2, "status": "0x0401"}])");
  const platform::Value all = platform::parseJson(devices({"--json"}).out);
  EXPECT_EQ(devices().exitStatus, 1);
  EXPECT_EQ(all.count(), 3U);
  EXPECT_EQ(all.at(1).get("status"), platform::Value("0x0401 unsupported management command"));
}

// What the warning says of the last device is so.
TEST_F(Devices, TheLastOneWithoutAnAnswerEndsEveryJob) {
  writeFleet(kFleet, R"([{"function": "zr_getSubsystemInfo", "call": 3, "status": "0x0401"}])");
  EXPECT_EQ(devices().exitStatus, 1);
  updateFirmware({{"50000000000000A1",
                   makeImage("a.img", {"standard", "--product", "0x43", "--firmware", "2"})}});
  EXPECT_EQ(result(), 0x0401);
}

TEST_F(Devices, AFleetThatCannotBeUsedIsToldWithTheCause) {
  folder.write("fleet.json", "{}");
  const test::Ended ended = devices();
  EXPECT_EQ(ended.exitStatus, 8);
  EXPECT_THAT(ended.err,
              StartsWith("kelvane-console: the framework " + framework() +
                         ": discovering the controllers fails: 0x0106 the fleet of "
                         "simulated controllers cannot be used\n  ZORAPI simulator: fleet file " +
                         (folder / "fleet.json")));
}

TEST_F(Devices, AFrameworkThatCrashesTakesNothingAlong) {
  installFramework(KELVANE_CRASHING_FRAMEWORK);
  expectNoAnswer("loading it ends with signal 9");
  installFramework(KELVANE_FALLING_FRAMEWORK);
  expectNoAnswer("discovering the controllers ends with signal 6", "  the framework complains\n");
}

TEST_F(Devices, AFrameworkThatHangsIsGivenUp) {
  installFramework(KELVANE_HANGING_FRAMEWORK);  // it rings the alarm itself
  expectNoAnswer("discovering the controllers takes longer than 60 s",
                 "  the framework complains\n");
}

TEST_F(Devices, AFrameworkThatLacksAFunctionIsNotAsked) {
  installFramework(KELVANE_INCOMPLETE_FRAMEWORK);
  expectNoAnswer("it lacks zr_discover");
}

}  // namespace
}  // namespace kelvane
