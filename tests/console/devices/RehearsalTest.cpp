// What is told of a firmware job before it runs, with the scripted framework.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/devices/Rehearsal.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/support/FakeFramework.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;

class RehearsalTest : public ::testing::Test {
 protected:
  RehearsalTest() {
#define KELVANE_FAKE_FUNCTION(name) zorapi.name = &::name;
    KELVANE_LOOKING_FUNCTIONS(KELVANE_FAKE_FUNCTION)
#undef KELVANE_FAKE_FUNCTION
    framework.devices = {{"5000A1", 0x4301}, {"5000B2", 0x4801}, {"5000C3", 0x3201}};
    framework.adapters = 3;
    framework.descriptions[0x8051] = ZOR_TEXT_CPLD_UP_TO_DATE;
  }

  Value tell(const std::string& inputs) const {
    return rehearse(parseJson(inputs), zorapi, [](const std::string& /*step*/) {});
  }
  Value tellOf(const std::string& wwn) const {
    return tell(R"([{"wwn": ")" + wwn + R"(", "file_path": "/a.img"}])").at(0);
  }
  void expectVerdict(const std::string& wwn, const char* verdict, const std::string& why) const {
    const Value told = tellOf(wwn);
    EXPECT_EQ(told.get("verdict"), Value(verdict));
    EXPECT_EQ(told.get("why"), Value(why));
  }

  test::FakeFramework framework;
  LookingFunctions zorapi = {};
};

TEST_F(RehearsalTest, AnImageThatTheFrameworkReadsFits) {
  EXPECT_EQ(tellOf("5000A1"), parseJson(R"({"wwn": "5000A1", "file_path": "/a.img",
    "product_id": "0x4301", "update": "standard", "verdict": "fits"})"));
}

TEST_F(RehearsalTest, TheImageIsExaminedAsTheWorkerDoes) {
  tellOf("5000A1");
  EXPECT_THAT(framework.calls,
              AllOf(Contains("zr_getFDLImageInfo(flash[4301 /a.img 0], image[zeroed])"),
                    Contains("zr_getCPLDImageInfo(flash[4301 /a.img f1], cpld[zeroed], "
                             "image[fd 0], page0, page1)"),
                    Contains("zr_getUSBImageInfo(flash[4301 /a.img f1], usb[zeroed])")));
}

TEST_F(RehearsalTest, NothingIsOpenedOrFlashed) {
  tell(R"([{"wwn": "5000A1", "file_path": "/a.img"}, {"wwn": "5000B2", "file_path": "/a.img"},
           {"wwn": "5000C3", "file_path": "/a.img"}])");
  EXPECT_THAT(framework.calls, Each(AllOf(Not(HasSubstr("Process")), Not(HasSubstr("zr_flash")),
                                          Not(HasSubstr("zr_transfer")))));
}

TEST_F(RehearsalTest, AnImageThatIsRefusedFails) {
  for (const char* function : {"zr_getFDLImageInfo", "zr_getCPLDImageInfo", "zr_getUSBImageInfo"}) {
    framework.calls.clear();
    framework.answers.clear();
    framework.answer(function, 1, 0x8053);
    expectVerdict("5000A1", "fails", "of the image the framework says 0x8053 text of 0x8053");
  }
}

TEST_F(RehearsalTest, WhatTheWorkerToleratesIsNotCertain) {
  framework.answer("zr_getCPLDImageInfo", 1, 0x8051);
  expectVerdict("5000A1", "not certain",
                "of the image the framework says 0x8051 the version of CPLD is up to date, and the "
                "worker goes on in spite of it");
}

TEST_F(RehearsalTest, AProductWithoutAWayFails) {
  expectVerdict("5000C3", "fails",
                "the worker knows no way to flash the firmware of this product: it would flash the "
                "CPLD and then end with 0x8055 text of 0x8055");
}

TEST_F(RehearsalTest, AStandardImageForAQvxfControllerFails) {
  expectVerdict("5000B2", "fails", "it is a standard image, and the product takes QVXF ones");
}

TEST_F(RehearsalTest, AQvxfImageIsNotCertain) {
  framework.answer("zr_getFDLImageInfo", 1, 0x8057);
  expectVerdict("5000B2", "not certain",
                "a QVXF image is examined only when its flash begins; as a standard image it is "
                "refused: 0x8057 text of 0x8057");
}

TEST_F(RehearsalTest, AnUnknownWwnNamesTheKnownOnesAndTheNearest) {
  const Value told = tellOf("5000A2");
  EXPECT_EQ(told.get("verdict"), Value("fails"));
  EXPECT_EQ(told.get("why"),
            Value("no controller has this WWN, letter by letter; found are 5000A1, "
                  "5000B2, 5000C3"));
  EXPECT_EQ(told.get("nearest"), Value("5000A1"));
}

TEST_F(RehearsalTest, WhereNoneIsAlikeNoneIsNamed) {
  framework.devices.clear();
  framework.adapters = 0;
  const Value told = tellOf("5000A2");
  EXPECT_EQ(told.get("why"), Value("no controller has this WWN, letter by letter; found are none"));
  EXPECT_FALSE(told.has("nearest"));
}

TEST_F(RehearsalTest, AControllerThatRefusesFails) {
  framework.answer("zr_getControllerInfo", 1, 0x0403);
  expectVerdict("5000A1", "fails", "zr_getControllerInfo gives 0x0403 text of 0x403");
}

TEST_F(RehearsalTest, ASilentDeviceInBetweenHarmsNoOther) {
  framework.answer("zr_getSubsystemInfo", 2, 0x0401);
  EXPECT_EQ(tellOf("5000A1").get("verdict"), Value("fits"));
  EXPECT_EQ(tellOf("5000B2").get("verdict"), Value("fails"));
}

TEST_F(RehearsalTest, ASilentDeviceAtTheEndFailsEveryJob) {
  framework.answer("zr_getSubsystemInfo", 3, 0x0401);
  expectVerdict("5000A1", "fails",
                "the device that is asked last does not answer, which ends every job: 0x0401 text "
                "of 0x401");
}

TEST_F(RehearsalTest, EachEntryIsLookedAtByItself) {
  const Value all = tell(R"([{"wwn": "5000C3", "file_path": "/a.img"},
                             {"wwn": "5000A1", "file_path": "/a.img"}])");
  EXPECT_EQ(all.at(0).get("verdict"), Value("fails"));
  EXPECT_EQ(all.at(1).get("verdict"), Value("fits"));
}

TEST_F(RehearsalTest, WhereADeviceDoesNotAnswerAnotherControllerIsNotSuggested) {
  framework.answer("zr_getSubsystemInfo", 2, 0x0402);
  const Value told = tellOf("5000B2");
  EXPECT_EQ(told.get("why").string(),
            "no controller has this WWN, letter by letter; found are 5000A1, 5000C3; device 1 "
            "gives 0x0402 text of 0x402 instead of a WWN, and may be the one: look at its power "
            "and cable");
  EXPECT_FALSE(told.has("nearest"));
}

}  // namespace
}  // namespace kelvane::console
