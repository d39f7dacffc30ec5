// The fleet file: what it says, and how every mistake in it is told.

#include <optional>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Json.h"
#include "simulators/controllers/Fleet.h"
#include "tests/support/TempFolder.h"

namespace kelvane::simulator {
namespace {

using kelvane::test::TempFolder;

constexpr char kController[] =
    R"("wwn":"500a098000000001","product_id":"0x4301","firmware":"1","cpld":"1","usb_bridge":"1")";

std::string fleetWith(const std::string& more) {
  return std::string(R"({"controllers":[{)") + kController + more + "}]}";
}

Fleet read(const std::string& text) {
  const TempFolder folder;
  return readFleet(folder.write("fleet.json", text));
}

std::string complaint(const std::string& text) {
  try {
    read(text);
    return "";
  } catch (const platform::Exception& caught) {
    return caught.what();
  }
}

TEST(FleetFile, DescribesAController) {
  const Fleet fleet = read(
      R"({"clock":"queries","seconds_per_query":0.5,"controllers":[{"note":["any"],
          "wwn":"50:0A:09:80:00:00:00:01","product_id":17153,"firmware":"2.3","cpld":"1.6",
          "usb_bridge":"3.0","nvram":"00ff","attached":"thunderbolt","listed_as":"subsystem",
          "cpld_transfer_seconds":1,"cpld_programming_seconds":2,"firmware_seconds":3.5}]})");
  ASSERT_EQ(fleet.controllers.size(), 1U);
  const ControllerRecord& controller = fleet.controllers[0];
  EXPECT_EQ(fleet.secondsPerQuery, 0.5);
  EXPECT_EQ(controller.wwn, "50:0A:09:80:00:00:00:01");
  EXPECT_EQ(controller.wwnBytes, std::string("\x50\x0A\x09\x80\0\0\0\x01", 8));
  EXPECT_EQ(controller.productId, 0x4301);
  EXPECT_EQ(controller.firmware, "2.3");
  EXPECT_EQ(controller.cpld, "1.6");
  EXPECT_EQ(controller.bridge, "3.0");
  EXPECT_EQ(controller.nvram, std::string("\0\xFF", 2));
  EXPECT_EQ(controller.attached, ControllerRecord::Attachment::thunderbolt);
  EXPECT_TRUE(controller.subsystem);
  EXPECT_EQ(controller.cpldTransferSeconds, 1);
  EXPECT_EQ(controller.cpldProgrammingSeconds, 2);
  EXPECT_EQ(controller.firmwareSeconds, 3.5);
}

TEST(FleetFile, WallClockIsTheDefault) {
  EXPECT_EQ(read(fleetWith("")).secondsPerQuery, std::nullopt);
}

TEST(FleetFile, QueriesCountTwoSecondsByDefault) {
  EXPECT_EQ(read(R"({"clock":"queries","controllers":[]})").secondsPerQuery, 2);
}

TEST(FleetFile, FlashesSurviveByTheWallClockAlone) {
  EXPECT_FALSE(read(fleetWith("")).survives);
  EXPECT_TRUE(read(R"({"survives":true,"controllers":[]})").survives);
  EXPECT_NE(complaint(R"({"survives":true,"clock":"queries","controllers":[]})")
                .find("survives: goes by the clock \"wall\" alone"),
            std::string::npos);
}

TEST(FleetFile, HoldsTheFlashThatSurvives) {
  const Fleet fleet =
      read(fleetWith(R"(,"flashing":{"flash":"cpld","version":"1.7","started_at":1795000000})"));
  const std::optional<SurvivingFlash>& flashing = fleet.controllers.at(0).flashing;
  ASSERT_TRUE(flashing.has_value());
  EXPECT_TRUE(flashing->ofCpld);
  EXPECT_EQ(flashing->version, "1.7");
  EXPECT_EQ(flashing->startedAt, 1795000000);
  EXPECT_NE(complaint(fleetWith(R"(,"flashing":{"flash":"cpld","version":"1.7"})"))
                .find("controllers[0].flashing.started_at: is missing"),
            std::string::npos);
}

TEST(FleetFile, AdaptersComeBeforeSubsystems) {
  const Fleet fleet = read(
      R"({"controllers":[
        {"wwn":"500a098000000001","product_id":1,"firmware":"1","cpld":"1","usb_bridge":"1",
         "listed_as":"subsystem"},
        {"wwn":"500a098000000002","product_id":2,"firmware":"1","cpld":"1","usb_bridge":"1"}]})");
  ASSERT_EQ(fleet.controllers.size(), 2U);
  EXPECT_EQ(fleet.controllers[0].productId, 2);
  EXPECT_EQ(fleet.controllers[1].productId, 1);
}

TEST(FleetFile, FaultsOfTheSecondCpldStageComeAfterTheFirst) {
  const Fleet fleet = read(fleetWith(
      R"(,"faults":[{"flash":"cpld","do":"fail","stage":"programming","at":30,"status_byte":2}])"));
  ASSERT_EQ(fleet.controllers[0].cpldFaults.size(), 1U);
  EXPECT_EQ(fleet.controllers[0].cpldFaults[0].at, 130);
  EXPECT_EQ(fleet.controllers[0].cpldFaults[0].statusByte, 2);
}

struct MistakenFleet {
  const char* text;
  const char* told;
};

class FleetFileMistake : public ::testing::TestWithParam<MistakenFleet> {};

TEST_P(FleetFileMistake, IsToldWithItsKey) {
  EXPECT_NE(complaint(GetParam().text).find(GetParam().told), std::string::npos)
      << "told: " << complaint(GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    OfTheWhole, FleetFileMistake,
    ::testing::Values(
        MistakenFleet{"", "is not JSON"}, MistakenFleet{"[]", "is not JSON with an object"},
        MistakenFleet{"{}", "controllers: is missing"},
        MistakenFleet{R"({"controllers":{}})", "controllers: must be a list"},
        MistakenFleet{R"({"controllers":[1]})", "controllers[0]: must be an object"},
        MistakenFleet{R"({"controllers":[],"colour":1})", "colour: is not a known key"},
        MistakenFleet{R"({"controllers":[],"clock":"sun"})", "clock: must be one of \"wall\""},
        MistakenFleet{R"({"controllers":[],"clock":1})", "clock: must be a text"},
        MistakenFleet{R"({"controllers":[],"seconds_per_query":-1})", "seconds_per_query: must be"},
        MistakenFleet{R"({"controllers":[],"faults":[{}]})", "faults[0].function: is missing"},
        MistakenFleet{R"({"controllers":[],"faults":[{"function":"zr_x","status":1}]})",
                      "faults[0].function: no function"},
        MistakenFleet{R"({"controllers":[],"faults":[{"function":"zr_discover"}]})",
                      "faults[0].status: is missing"},
        MistakenFleet{R"({"controllers":[],"faults":[{"function":"zr_discover","status":0}]})",
                      "faults[0].status: must not be 0"},
        MistakenFleet{R"({"controllers":[],"faults":[{"function":"zr_discover","status":"x"}]})",
                      "faults[0].status: must be a whole number"},
        MistakenFleet{
            R"({"controllers":[],"faults":[{"function":"zr_discover","status":1,"call":0}]})",
            "faults[0].call: the first"}));

TEST(FleetFile, ControllerWithoutAWwnIsRefused) {
  EXPECT_NE(complaint(R"({"controllers":[{}]})").find("controllers[0].wwn: is missing"),
            std::string::npos);
}

TEST(FleetFile, SameWwnTwiceIsRefused) {
  const std::string one = std::string("{") + kController + "}";
  EXPECT_NE(complaint(R"({"controllers":[)" + one + "," + one + "]}").find("controllers[1].wwn"),
            std::string::npos);
}

class ControllerMistake : public ::testing::TestWithParam<MistakenFleet> {};

TEST_P(ControllerMistake, IsToldWithItsKey) {
  const std::string told = complaint(fleetWith(std::string(",") + GetParam().text));
  EXPECT_NE(told.find(std::string("controllers[0].") + GetParam().told), std::string::npos)
      << "told: " << told;
}

INSTANTIATE_TEST_SUITE_P(
    OfOneKey, ControllerMistake,
    ::testing::Values(
        MistakenFleet{R"("wwn":"500a")", "wwn: must be 16"},
        MistakenFleet{R"("wwn":5)", "wwn: must be a text"},
        MistakenFleet{R"("product_id":"4301")", "product_id: must be"},
        MistakenFleet{R"("product_id":65536)", "product_id: must be"},
        MistakenFleet{R"("product_id":1.5)", "product_id: must be"},
        MistakenFleet{R"("firmware":"")", "firmware: must be 1 to 23"},
        MistakenFleet{R"("cpld":17)", "cpld: must be a text"},
        MistakenFleet{R"("nvram":"abc")", "nvram: must be"},
        MistakenFleet{R"("attached":"scsi")", "attached: must be one of"},
        MistakenFleet{R"("listed_as":"disk")", "listed_as: must be one of"},
        MistakenFleet{R"("firmware_seconds":"3")", "firmware_seconds: must be a number"},
        MistakenFleet{R"("firmware_second":3)", "firmware_second: is not a known key"},
        MistakenFleet{R"("faults":[{"do":"fail"}])", "faults[0].flash: is missing"},
        MistakenFleet{R"("faults":[{"flash":"cpld","do":"melt"}])", "faults[0].do: must be one of"},
        MistakenFleet{R"("faults":[{"flash":"cpld","do":"fail"}])", "faults[0].at: is missing"},
        MistakenFleet{R"("faults":[{"flash":"cpld","do":"fail","at":101}])",
                      "faults[0].at: must be"},
        MistakenFleet{R"("faults":[{"flash":"firmware","do":"retry","at":1}])",
                      "faults[0].do: only"},
        MistakenFleet{R"("faults":[{"flash":"firmware","do":"stall","at":1,"status_byte":1}])",
                      "faults[0].status_byte: is not a known key"},
        MistakenFleet{R"("faults":[{"flash":"firmware","do":"backwards","at":1,"to":2}])",
                      "faults[0].to: must not"},
        MistakenFleet{R"("faults":[{"flash":"cpld","do":"stall","at":5},
                             {"flash":"cpld","do":"stall","at":4}])",
                      "faults[1].at: the flash has passed"}));

TEST(FleetFile, MissingFileIsToldWithItsPath) {
  const TempFolder folder;
  try {
    readFleet(folder / "none.json");
    FAIL() << "nothing raised";
  } catch (const platform::Exception& caught) {
    EXPECT_NE(std::string(caught.what()).find(folder / "none.json"), std::string::npos);
  }
}

TEST(FleetFile, NoPrefixCrashesOrPasses) {
  const std::string whole = fleetWith(R"(,"faults":[{"flash":"cpld","do":"retry","at":5}])");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(complaint(whole.substr(0, length)), "") << length;
  }
}

TEST(FleetFile, StoringKeepsEverythingElse) {
  const TempFolder folder;
  const std::string path = folder.write(
      "fleet.json", R"({"note":"mine","controllers":[{"wwn":"a","firmware":"1","note":{"b":[1]}},
                        {"wwn":"b","firmware":"1"}]})");
  storeInFleet(path, "a", kFirmwareKey, "2");
  EXPECT_EQ(platform::parseJson(folder.read("fleet.json")),
            platform::parseJson(
                R"({"note":"mine","controllers":[{"wwn":"a","firmware":"2","note":{"b":[1]}},
                    {"wwn":"b","firmware":"1"}]})"));
}

}  // namespace
}  // namespace kelvane::simulator
