// A framework in ZORAPI's place that has one controller and does nothing: each flash shows
// KELVANE_BENCHMARK_UPDATES changes of the percentage, one with each question. Sleeps end at once,
// as the worker finds `sleep` here before it finds the system's.

#include <cstdlib>
#include <cstring>

#include "zorapi/zorapi.h"

#define SUCCEEDS(function, ...) \
  std::uint32_t function(__VA_ARGS__) { return kZorSuccess; }

extern "C" unsigned int sleep(unsigned int seconds);
unsigned int sleep(unsigned int /*seconds*/) { return 0; }

namespace {

constexpr std::uint16_t kQvxfProduct = 0x4801;
constexpr std::uint8_t kFlashing = 4;
constexpr std::uint8_t kFinished = 5;

int wantedUpdates() {
  const char* text = std::getenv("KELVANE_BENCHMARK_UPDATES");
  return text == nullptr ? 0 : std::atoi(text);
}

}  // namespace

// --- what the worker's way through a QVXF image asks

SUCCEEDS(zr_initialize, const InitParm*)
SUCCEEDS(zr_discover, std::uint32_t)
std::uint32_t zr_getNumberOfHBA(std::uint32_t* count) {
  *count = 1;
  return kZorSuccess;
}
std::uint32_t zr_getNumberOfSubsystem(std::uint32_t* count) {
  *count = 0;
  return kZorSuccess;
}
SUCCEEDS(zr_getSubsystemInfo, ControllerAddress, std::uint32_t, SubsystemInfo*)
SUCCEEDS(zr_initializeFlashProcess, ControllerAddress, std::uint32_t)
SUCCEEDS(zr_checkQVXFFlashImage, ControllerAddress, std::uint32_t, FlashParm*, QvxfCheckInfo*)
SUCCEEDS(zr_transferQVXFFlashImage, ControllerAddress, std::uint32_t, FlashParm*, FwImgInfo*,
         std::uint32_t)
SUCCEEDS(zr_analyzeQVXFImage, ControllerAddress, std::uint32_t, QvxfAnalysis*)
SUCCEEDS(zr_flashQVXFImage, ControllerAddress, std::uint32_t)
SUCCEEDS(zr_finalizeFlashProcess, ControllerAddress, std::uint32_t)
SUCCEEDS(zr_finializeQVXFImage, ControllerAddress, std::uint32_t)

void decod_getStringWWN(WwnString* text, const void*) {
  std::strcpy(text->text, "50000000000000A1");
}
std::uint32_t zr_getControllerInfo(std::uint16_t, std::uint32_t, const CtrlInfoRequest*,
                                   void* buffer, std::uint32_t) {
  std::memcpy(static_cast<char*>(buffer) + offsetof(ControllerInfoPage, ci_ProductID),
              &kQvxfProduct, sizeof kQvxfProduct);
  return kZorSuccess;
}
std::uint32_t decod_locateBufferCtrlInfo(void* buffer, std::uint32_t, std::uint32_t, std::uint32_t,
                                         void** page) {
  *page = buffer;
  return kZorSuccess;
}
const char* getErrorDescription(std::uint32_t status) {
  return status == kZorSuccess ? "no error" : "an error";
}

// Percentages of two digits, so that one update is as long as another.
std::uint32_t zr_getFlashQVXFImageStatus(ControllerAddress, std::uint32_t,
                                         FlashProgress* progress) {
  static int shown = 0;
  const bool isFinished = shown == wantedUpdates();
  progress->fp_u8Stage = isFinished ? kFinished : kFlashing;
  progress->fp_u8Percent = static_cast<std::uint8_t>(10 + shown % 90);
  ++shown;
  return kZorSuccess;
}

// --- what it does not ask there, and is linked to

SUCCEEDS(zr_getCurrentDeviceInterface, ControllerAddress, std::uint32_t, DeviceInterfaceInfo*)
SUCCEEDS(zr_getFDLImageInfo, FlashParm*, FwImgInfo*)
SUCCEEDS(zr_getCPLDImageInfo, FlashParm*, CpldParm*, FwImgInfo*, void*, void*)
SUCCEEDS(zr_getUSBImageInfo, FlashParm*, UsbParm*)
SUCCEEDS(zr_checkFlashImage, ControllerAddress, std::uint32_t, void*, FlashParm*, UsbParm*,
         CpldParm*, FwImgInfo*)
SUCCEEDS(zr_transferFlashImage, ControllerAddress, std::uint32_t, FlashParm*, UsbParm*, CpldParm*,
         FwImgInfo*)
SUCCEEDS(zr_verifyFlashImage, ControllerAddress, std::uint32_t, FlashParm*)
SUCCEEDS(zr_flashImageEx, ControllerAddress, std::uint32_t, std::uint32_t, FlashParm*)
SUCCEEDS(zr_getFlashProgress, ControllerAddress, std::uint32_t, FlashProgress*)
SUCCEEDS(zr_initializeCPLDProcess, ControllerAddress, std::uint32_t)
SUCCEEDS(zr_flashCPLDBin, ControllerAddress, std::uint32_t, FlashParm*, std::uint32_t, UsbParm*,
         CpldParm*, FwImgInfo*)
SUCCEEDS(zr_getCPLDProgress, ControllerAddress, std::uint32_t, CpldProgress*)
SUCCEEDS(zr_finalizeCPLDProcess, ControllerAddress, std::uint32_t)
SUCCEEDS(zr_mac_checkUSBFWVersion, ControllerAddress, std::uint32_t, UsbParm*, std::uint32_t*)
SUCCEEDS(zr_mac_getNVRAM, ControllerAddress, std::uint32_t, UsbNvram*)
SUCCEEDS(zr_mac_flashUSBFWbin, ControllerAddress, std::uint32_t, FlashParm*, UsbParm*)
SUCCEEDS(zr_mac_setNVRAM, ControllerAddress, std::uint32_t, FlashParm*, UsbParm*, UsbNvram*)
SUCCEEDS(zr_mac_flashNVRAM, ControllerAddress, std::uint32_t, UsbNvram*)
