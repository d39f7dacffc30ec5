// Flashes that go on when the process ends that started them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Json.h"
#include "simulators/controllers/Status.h"
#include "tests/simulators/SimulatedWorld.h"

namespace kelvane::test {
namespace {

using platform::Value;
using ::testing::IsEmpty;

std::string survivingFleet(const std::string& product, const std::string& more = "") {
  return R"({"survives": true, "controllers": [{"wwn": "500a098000000001", "product_id": ")" +
         product + R"(", "firmware": "1.0", "cpld": "1.0", "usb_bridge": "1.0",
         "cpld_transfer_seconds": 50, "cpld_programming_seconds": 50, "firmware_seconds": 100)" +
         more + "}]}";
}

Value flashing(const SimulatedWorld& world) {
  const Value document = platform::parseJson(world.folder.read("fleet.json"));
  return document.get("controllers").at(0).get("flashing");
}

// A later process on the same fleet, which comes so many seconds after the other one has ended.
class Later : public SimulatedWorld {
 public:
  Later(const SimulatedWorld& earlier, double seconds)
      : SimulatedWorld(earlier.folder.read("fleet.json")) {
    timeOfDay = earlier.timeOfDay + seconds;
  }
};

TEST(SurvivingFlash, IsKeptInTheFleetWhileItRuns) {
  SimulatedWorld world(survivingFleet("0x4301"));
  ASSERT_EQ(world.upToFirmwareStarted(world.standardImage()), 0U);
  EXPECT_EQ(flashing(world), platform::parseJson(R"({"flash": "firmware", "version": "2.0",
                                                     "started_at": 1000000})"));
  world.timeOfDay += 100;
  EXPECT_EQ(world.pollFirmware().fp_u8Percent, 100);
  EXPECT_TRUE(flashing(world).isNothing());
  EXPECT_EQ(world.stored("firmware"), "2.0");
}

TEST(SurvivingFlash, IsGivenUpWhenItIsClosed) {
  SimulatedWorld world(survivingFleet("0x4301"));
  ASSERT_EQ(world.upToFirmwareStarted(world.standardImage()), 0U);
  world.framework.finalizeFlashProcess(world.address, 0);
  EXPECT_TRUE(flashing(world).isNothing());
  EXPECT_EQ(world.stored("firmware"), "1.0");
}

TEST(SurvivingFlash, WithoutTheKeyNothingIsKept) {
  SimulatedWorld world(fleetOfOne(R"("firmware_seconds": 100)"));
  ASSERT_EQ(world.upToFirmwareStarted(world.standardImage()), 0U);
  EXPECT_TRUE(flashing(world).isNothing());
}

TEST(SurvivingFlash, KeepsTheControllerBusyForALaterProcess) {
  SimulatedWorld killed(survivingFleet("0x4301"));
  ASSERT_EQ(killed.upToFirmwareStarted(killed.standardImage()), 0U);
  Later later(killed, 99);
  ASSERT_EQ(later.upToExamined(later.standardImage()), 0U);
  EXPECT_EQ(later.openCpld(), 0U);
  EXPECT_EQ(later.startCpld(), kZorFlashProcessRunning);
  later.framework.finalizeCPLDProcess(later.address, 0);
  EXPECT_EQ(later.transfer(), kZorFlashProcessRunning);
  later.framework.finalizeFlashProcess(later.address, 0);
  EXPECT_EQ(later.stored("firmware"), "1.0");
  EXPECT_FALSE(flashing(later).isNothing());
  EXPECT_THAT(later.journal.violations(), IsEmpty());
}

TEST(SurvivingFlash, ThatHasComeToItsEndIsWhatTheControllerHolds) {
  SimulatedWorld killed(survivingFleet("0x4301"));
  ASSERT_EQ(killed.upToFirmwareStarted(killed.standardImage()), 0U);
  Later later(killed, 100);
  later.start();
  EXPECT_EQ(later.stored("firmware"), "2.0");
  EXPECT_TRUE(flashing(later).isNothing());
  later.readController();
  later.examine(later.standardImage("3.0"));
  EXPECT_EQ(later.transfer(), 0U);
  EXPECT_EQ(later.startFirmware(), 0U);
}

TEST(SurvivingFlash, MayEndWhileALaterProcessWaits) {
  SimulatedWorld killed(survivingFleet("0x4301"));
  ASSERT_EQ(killed.upToFirmwareStarted(killed.standardImage()), 0U);
  Later later(killed, 10);
  ASSERT_EQ(later.upToExamined(later.standardImage()), 0U);
  EXPECT_EQ(later.transfer(), kZorFlashProcessRunning);
  later.timeOfDay += 90;
  EXPECT_EQ(later.transfer(), 0U);
  EXPECT_EQ(later.stored("firmware"), "2.0");
}

TEST(SurvivingFlash, OfACpldGoesOnAsWell) {
  SimulatedWorld killed(survivingFleet("0x4301"));
  ASSERT_EQ(killed.upToExamined(killed.standardImage()), 0U);
  killed.openCpld();
  ASSERT_EQ(killed.startCpld(), 0U);
  Later soon(killed, 60);
  soon.start();
  EXPECT_EQ(soon.stored("cpld"), "1.0");
  Later late(soon, 40);
  late.start();
  EXPECT_EQ(late.stored("cpld"), "2.0");
  EXPECT_EQ(late.stored("firmware"), "1.0");
}

TEST(SurvivingFlash, OfAQvxfImageGoesOnAsWell) {
  SimulatedWorld killed(survivingFleet("0x4801"));
  killed.start();
  killed.readController();
  ASSERT_EQ(killed.transferQvxf(killed.qvxfImage()), 0U);
  killed.framework.finalizeFlashProcess(killed.address, 0);
  ASSERT_EQ(killed.startQvxf(), 0U);
  Later later(killed, 100);
  later.start();
  EXPECT_EQ(later.stored("firmware"), "2.0");
}

TEST(SurvivingFlash, ThatFailsLeavesTheControllerAsItWas) {
  SimulatedWorld killed(
      survivingFleet("0x4301", R"(, "faults": [{"flash": "firmware", "do": "fail", "at": 90}])"));
  ASSERT_EQ(killed.upToFirmwareStarted(killed.standardImage()), 0U);
  Later soon(killed, 89);
  soon.start();
  EXPECT_FALSE(flashing(soon).isNothing());
  Later late(killed, 90);
  late.start();
  EXPECT_TRUE(flashing(late).isNothing());
  EXPECT_EQ(late.stored("firmware"), "1.0");
}

TEST(SurvivingFlash, OfASystemWhoseClockIsAheadHasJustBegun) {
  SimulatedWorld killed(survivingFleet("0x4301"));
  ASSERT_EQ(killed.upToFirmwareStarted(killed.standardImage()), 0U);
  Later later(killed, -500);
  ASSERT_EQ(later.upToExamined(later.standardImage()), 0U);
  EXPECT_EQ(later.transfer(), kZorFlashProcessRunning);
}

}  // namespace
}  // namespace kelvane::test
