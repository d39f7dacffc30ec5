// A failure at each call of a complete standard job and of a complete QVXF job, once each: what is
// called after it, and the job's result.

#include <string>

#include <gtest/gtest.h>

#include "tests/worker/FirmwareWorld.h"

namespace kelvane {
namespace {

constexpr std::uint32_t kFailure = 0x6ABC;

struct Case {
  const char* function;
  int call;
  std::uint16_t product;
  Lines after;  // the calls after the failing one, up to the last description
  std::uint32_t result;
  // The log: so many lines of an undisturbed job, then these, then the undisturbed ones from there.
  std::ptrdiff_t kept;
  Lines instead = {};
  std::ptrdiff_t resumed = 100;
};

std::string nameOf(const ::testing::TestParamInfo<Case>& info) {
  return std::string(info.param.product >= 0x4800 ? "Qvxf_" : "Standard_") + info.param.function +
         "_" + std::to_string(info.param.call);
}

// The lines of a job that nothing disturbs, without the last.
const Lines kStandardLines = {"updateFW start, inputDict = {",
                              "devId = 0, filePath = /W0.img",
                              "zr_getControllerInfo(), u32Ret = 0",
                              "pPage0->ci_ProductID = 4301",
                              "zr_getUSBImageInfo() ....",
                              "usb_u32checkUSB: 4294967280",
                              "flashCPLD start",
                              "devId = 0, filePath = /W0.img",
                              "Start transferring CPLD image, please wait ...",
                              "Start flashing CPLD, please wait ...",
                              "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
                              "  ...  20 percent completed... ",
                              "progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 2",
                              "  ... 100 percent completed... ",
                              "flashCPLD end",
                              "Start transferring image, please wait ...",
                              "Flash image has been successfully transferred",
                              "Start flashing image, please wait ...",
                              "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 2",
                              "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 5",
                              "  ... 100 percent completed...",
                              "Flash Completed.",
                              "usbfwupdatecheck = 1, different usb fw version, update usb fw",
                              "start _flashUSBFW, flashing Usb fw...",
                              "qvxflash start zr_mac_flashUSBFWbin",
                              "qvxflash -u usb start zr_mac_flashNVRAM"};
const Lines kQvxfLines = {"updateFW start, inputDict = {",
                          "devId = 0, filePath = /W0.img",
                          "zr_getControllerInfo(), u32Ret = 0",
                          "pPage0->ci_ProductID = 4801",
                          "rpf.rpf_uTransfer.rpf_u8ImageFilePath = /W0.img",
                          "[WRONG] zr_initializeFlashProcess = 0x0",
                          "[WRONG] zr_checkQVXFFlashImage = 0x0",
                          "[WRONG] zr_transferQVXFFlashImage = 0x0",
                          "[WRONG] zr_analyzeQVXFImage = 0x0",
                          "[WRONG] zr_flashQVXFImage = 0x0",
                          "Start flashing image, please wait ...",
                          "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 2",
                          "fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 5",
                          "  ... 100 percent completed...",
                          "Flash Completed.",
                          "ignore upgrade usb fw"};
const char* const kNotZero = "u32Ret is not 0, u32Ret = 0x6abc";
constexpr std::ptrdiff_t kAll = 100;

Lines expectedLines(const Case& param, const Lines& undisturbed) {
  const auto from = [&](std::ptrdiff_t index) {
    return undisturbed.begin() + std::min(index, std::ssize(undisturbed));
  };
  Lines lines(undisturbed.begin(), from(param.kept));
  lines.insert(lines.end(), param.instead.begin(), param.instead.end());
  lines.insert(lines.end(), from(param.resumed), undisturbed.end());
  lines.push_back("updateAllFW end, retDict = {");
  return lines;
}

class UpdateFailure : public FirmwareWorld, public ::testing::WithParamInterface<Case> {};

TEST_P(UpdateFailure, EndsTheControllersUpdateAndIsTheResult) {
  const Case& param = GetParam();
  controllers({param.product});
  framework.answer(param.function, param.call, kFailure);
  framework.descriptions[kFailure] = "the failure's text";
  framework.descriptions[0] = "success";
  framework.cpldProgress = {{0, 0, 40}};
  framework.flashProgress = {{0, 2, 40}};
  updateAll({"W0"});

  int seen = 0;
  auto at = framework.calls.begin();
  for (; at != framework.calls.end(); ++at) {
    if (at->rfind(std::string(param.function) + "(", 0) == 0 && ++seen == param.call) break;
  }
  ASSERT_NE(at, framework.calls.end());
  Lines after;
  for (++at; at != framework.calls.end(); ++at) after.push_back(at->substr(0, at->find('(')));
  EXPECT_EQ(after, param.after);
  EXPECT_EQ(result(), static_cast<std::int64_t>(param.result));
  EXPECT_EQ(resultText(), param.result == 0 ? "success" : "the failure's text");
  EXPECT_EQ(state(), "FREE");
  const bool isQvxf = param.product >= 0x4800;
  EXPECT_EQ(updateLines(), expectedLines(param, isQvxf ? kQvxfLines : kStandardLines));
}

const char* const kText = "getErrorDescription";
const char* const kClose = "zr_finalizeFlashProcess";
const char* const kCloseQvxf = "zr_finializeQVXFImage";

Lines operator+(Lines left, const Lines& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// The calls of a job that nothing disturbs, from a place on.
const Lines kUsb = {
    "zr_getCurrentDeviceInterface", "zr_mac_checkUSBFWVersion", "zr_mac_getNVRAM",
    "zr_mac_flashUSBFWbin",         "zr_mac_setNVRAM",          "zr_mac_flashNVRAM"};
const Lines kFirmware = Lines{"zr_initializeFlashProcess", "zr_checkFlashImage",
                              "zr_transferFlashImage",     "zr_verifyFlashImage",
                              "zr_flashImageEx",           "zr_getFlashProgress",
                              "zr_getFlashProgress",       kClose} +
                        kUsb + Lines{kText};
const Lines kCpld = Lines{"zr_initializeCPLDProcess", "zr_flashCPLDBin", "zr_getCPLDProgress",
                          "zr_getCPLDProgress", "zr_finalizeCPLDProcess"} +
                    kFirmware;
const Lines kImage =
    Lines{"zr_getFDLImageInfo", "zr_getCPLDImageInfo", "zr_getUSBImageInfo"} + kCpld;
const Lines kLocate = {"decod_locateBufferCtrlInfo", "decod_locateBufferCtrlInfo"};
const Lines kDevice = Lines{"zr_getControllerInfo"} + kLocate + kImage;
const Lines kList = Lines{"zr_getSubsystemInfo", "decod_getStringWWN"} + kDevice;
const Lines kStart = Lines{"zr_discover", "zr_getNumberOfHBA", "zr_getNumberOfSubsystem"} + kList;

const Lines kQvxfFlash = {"zr_initializeFlashProcess",
                          "zr_checkQVXFFlashImage",
                          "zr_transferQVXFFlashImage",
                          kClose,
                          "zr_analyzeQVXFImage",
                          "zr_flashQVXFImage",
                          "zr_getFlashQVXFImageStatus",
                          "zr_getFlashQVXFImageStatus",
                          kClose,
                          kCloseQvxf,
                          kText};
const Lines kQvxfStart =
    Lines{"zr_discover",         "zr_getNumberOfHBA",  "zr_getNumberOfSubsystem",
          "zr_getSubsystemInfo", "decod_getStringWWN", "zr_getControllerInfo"} +
    kLocate + kQvxfFlash;
// A failed start of a QVXF flash closes both processes, and the entry's end closes them again.
const Lines kQvxfFailed = {kClose, kCloseQvxf, kClose, kCloseQvxf, kText};

Lines from(const Lines& all, const char* function) {
  return {std::find(all.begin(), all.end(), function) + 1, all.end()};
}

INSTANTIATE_TEST_SUITE_P(
    Standard, UpdateFailure,
    ::testing::Values(
        Case{"zr_initialize", 1, 0x4301, kStart, 0, kAll},
        Case{"zr_discover", 1, 0x4301, {kText}, kFailure, 1},
        // Overwritten by what the device list gives.
        Case{"zr_getNumberOfSubsystem", 1, 0x4301, kList, 0, kAll},
        Case{"zr_getSubsystemInfo", 1, 0x4301, {kText}, kFailure, 1},
        Case{"zr_getControllerInfo",
             1,
             0x4301,
             {kClose, kText},
             kFailure,
             2,
             {"zr_getControllerInfo(), u32Ret = 6abc"}},
        Case{"decod_locateBufferCtrlInfo", 1, 0x4301, {kClose, kText}, kFailure, 3},
        Case{"decod_locateBufferCtrlInfo", 2, 0x4301, {kText, kClose, kText}, kFailure, 4},
        Case{"zr_getFDLImageInfo", 1, 0x4301, {kText, kClose, kText}, kFailure, 4},
        Case{"zr_getCPLDImageInfo", 1, 0x4301, {kText, kClose, kText}, kFailure, 4},
        Case{"zr_getUSBImageInfo",
             1,
             0x4301,
             {kText, kClose, kText},
             kFailure,
             5,
             {"usb_u32checkUSB: 0"}},
        Case{"zr_initializeCPLDProcess",
             1,
             0x4301,
             Lines{"zr_finalizeCPLDProcess"} + kFirmware,
             0,
             8,
             {},
             14},
        Case{"zr_flashCPLDBin",
             1,
             0x4301,
             Lines{kText, "zr_finalizeCPLDProcess"} + kFirmware,
             0,
             8,
             {},
             14},
        // The record, still zeroed or as the call before left it, is looked at once more.
        Case{"zr_getCPLDProgress",
             1,
             0x4301,
             Lines{"zr_finalizeCPLDProcess"} + kFirmware,
             0,
             10,
             {"progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
              "  ...   0 percent completed... "},
             14},
        Case{"zr_getCPLDProgress",
             2,
             0x4301,
             Lines{"zr_finalizeCPLDProcess"} + kFirmware,
             0,
             12,
             {"progress.rdcp_u8Status = 0, progress.rdcp_u8Stage = 0",
              "  ...  20 percent completed... "},
             14},
        Case{"zr_finalizeCPLDProcess", 1, 0x4301, {kText, kClose, kText}, kFailure, 15},
        Case{"zr_initializeFlashProcess", 1, 0x4301, {kClose, kText}, kFailure, 15},
        Case{"zr_checkFlashImage", 1, 0x4301, {kClose, kText}, kFailure, 15},
        Case{"zr_transferFlashImage", 1, 0x4301, {kClose, kText}, kFailure, 16},
        Case{"zr_verifyFlashImage",
             1,
             0x4301,
             {kClose, kText},
             kFailure,
             17,
             {"Image format is invalid."}},
        Case{"zr_flashImageEx", 1, 0x4301, {kClose, kText}, kFailure, 17},
        Case{"zr_getFlashProgress",
             1,
             0x4301,
             {kClose, kText},
             kFailure,
             18,
             {"fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 0"}},
        Case{"zr_getFlashProgress",
             2,
             0x4301,
             {kClose, kText},
             kFailure,
             19,
             {"fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 2"}},
        Case{"zr_finalizeFlashProcess", 1, 0x4301, {kText}, kFailure, 22},
        Case{"zr_getCurrentDeviceInterface", 1, 0x4301, {kText}, kFailure, 22},
        Case{"zr_mac_checkUSBFWVersion",
             1,
             0x4301,
             {kText},
             0,
             22,
             {"unknown error, end usb fw update process"}},
        Case{"zr_mac_getNVRAM",
             1,
             0x4301,
             {kText},
             0,
             22,
             {"unknown error, end usb fw update process"}},
        Case{"zr_mac_flashUSBFWbin", 1, 0x4301, {kText}, kFailure, 25},
        Case{"zr_mac_setNVRAM", 1, 0x4301, {kText}, kFailure, 25},
        Case{"zr_mac_flashNVRAM", 1, 0x4301, {kText}, kFailure, kAll}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    Qvxf, UpdateFailure,
    ::testing::Values(
        Case{"zr_initialize", 1, 0x4801, kQvxfStart, 0, kAll},
        Case{"zr_discover", 1, 0x4801, {kText}, kFailure, 1},
        Case{"zr_getNumberOfSubsystem", 1, 0x4801, from(kQvxfStart, "zr_getNumberOfSubsystem"), 0,
             kAll},
        Case{"zr_getSubsystemInfo", 1, 0x4801, {kText}, kFailure, 1},
        Case{"zr_getControllerInfo",
             1,
             0x4801,
             {kClose, kText},
             kFailure,
             2,
             {"zr_getControllerInfo(), u32Ret = 6abc"}},
        Case{"decod_locateBufferCtrlInfo", 1, 0x4801, {kClose, kText}, kFailure, 3},
        Case{"decod_locateBufferCtrlInfo", 2, 0x4801, kQvxfFailed, kFailure, 5, {kNotZero}},
        Case{"zr_initializeFlashProcess",
             1,
             0x4801,
             kQvxfFailed,
             kFailure,
             5,
             {"[WRONG] zr_initializeFlashProcess = 0x6abc", kNotZero}},
        Case{"zr_checkQVXFFlashImage",
             1,
             0x4801,
             kQvxfFailed,
             kFailure,
             6,
             {"[WRONG] zr_checkQVXFFlashImage = 0x6abc", kNotZero}},
        Case{"zr_transferQVXFFlashImage",
             1,
             0x4801,
             Lines{kClose} + kQvxfFailed,
             kFailure,
             7,
             {"[WRONG] zr_transferQVXFFlashImage = 0x6abc", kNotZero}},
        Case{"zr_finalizeFlashProcess", 1, 0x4801, from(kQvxfFlash, kClose), 0, kAll},
        Case{"zr_analyzeQVXFImage",
             1,
             0x4801,
             kQvxfFailed,
             kFailure,
             8,
             {"[WRONG] zr_analyzeQVXFImage = 0x6abc", kNotZero}},
        Case{"zr_flashQVXFImage",
             1,
             0x4801,
             kQvxfFailed,
             kFailure,
             9,
             {"[WRONG] zr_flashQVXFImage = 0x6abc", kNotZero}},
        Case{"zr_getFlashQVXFImageStatus",
             1,
             0x4801,
             {kClose, kCloseQvxf, kText},
             kFailure,
             11,
             {"fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 0"}},
        Case{"zr_getFlashQVXFImageStatus",
             2,
             0x4801,
             {kClose, kCloseQvxf, kText},
             kFailure,
             12,
             {"fshProg.fp_u8Status = 0, fshProg.fp_u8Stage = 2"}},
        Case{"zr_finalizeFlashProcess", 2, 0x4801, {kCloseQvxf, kText}, 0, kAll},
        Case{"zr_finializeQVXFImage", 1, 0x4801, {kText}, kFailure, 15}),
    nameOf);

// The adapters cannot be counted: what is left are the subsystems, here none.
TEST_F(FirmwareWorld, AFailingAdapterCountLeavesNoAdapters) {
  controllers({0x4301});
  framework.answer("zr_getNumberOfHBA", 1, kFailure);
  updateAll({"W0"});
  EXPECT_EQ(callsAfter("zr_getNumberOfSubsystem"),
            (Lines{"zr_getNumberOfSubsystem(0)", "getErrorDescription(0x402)"}));
  EXPECT_EQ(result(), 0x0402);
}

}  // namespace
}  // namespace kelvane
