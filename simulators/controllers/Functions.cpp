#include "simulators/controllers/Functions.h"

#include <algorithm>
#include <iterator>

namespace kelvane::simulator {
namespace {

constexpr std::string_view kWithStatus[] = {
    "zr_initialize",
    "zr_discover",
    "zr_getNumberOfHBA",
    "zr_getNumberOfSubsystem",
    "zr_getSubsystemInfo",
    "zr_getControllerInfo",
    "decod_locateBufferCtrlInfo",
    "zr_getCurrentDeviceInterface",
    "zr_getFDLImageInfo",
    "zr_getCPLDImageInfo",
    "zr_getUSBImageInfo",
    "zr_initializeFlashProcess",
    "zr_checkFlashImage",
    "zr_transferFlashImage",
    "zr_verifyFlashImage",
    "zr_flashImageEx",
    "zr_getFlashProgress",
    "zr_finalizeFlashProcess",
    "zr_checkQVXFFlashImage",
    "zr_transferQVXFFlashImage",
    "zr_analyzeQVXFImage",
    "zr_flashQVXFImage",
    "zr_getFlashQVXFImageStatus",
    "zr_finializeQVXFImage",
    "zr_initializeCPLDProcess",
    "zr_flashCPLDBin",
    "zr_getCPLDProgress",
    "zr_finalizeCPLDProcess",
    "zr_mac_checkUSBFWVersion",
    "zr_mac_getNVRAM",
    "zr_mac_flashUSBFWbin",
    "zr_mac_setNVRAM",
    "zr_mac_flashNVRAM",
};

}  // namespace

bool hasStatus(std::string_view function) {
  return std::find(std::begin(kWithStatus), std::end(kWithStatus), function) !=
         std::end(kWithStatus);
}

bool isClosing(std::string_view function) {
  return function == "zr_finalizeFlashProcess" || function == "zr_finializeQVXFImage" ||
         function == "zr_finalizeCPLDProcess";
}

}  // namespace kelvane::simulator
