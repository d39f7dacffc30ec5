// The framework's C functions over the one simulated framework of the process.

#include <cstdlib>
#include <iostream>
#include <string>

// First, because the functions get their visibility where they are first declared.
#pragma GCC visibility push(default)
#include "zorapi/zorapi.h"
#pragma GCC visibility pop

#include <dlfcn.h>

#include "platform/File.h"
#include "simulators/controllers/Framework.h"

namespace {

using kelvane::simulator::FileJournal;
using kelvane::simulator::Framework;

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string besideTheLibrary(const std::string& name) {
  static const char inTheLibrary = 0;
  Dl_info library = {};
  if (::dladdr(&inTheLibrary, &library) == 0 || library.dli_fname == nullptr) return name;
  const std::string folder = kelvane::platform::withoutLastComponent(library.dli_fname);
  return folder.empty() ? name : folder + "/" + name;
}

std::string fleetPath() {
  const std::string given = environment("ZORAPI_FLEET");
  return given.empty() ? besideTheLibrary("fleet.json") : given;
}

Framework& framework() {
  static FileJournal journal(environment("ZORAPI_JOURNAL"));
  static Framework framework(fleetPath(), journal);
  return framework;
}

// No exception leaves the library.
template <typename Method, typename... Arguments>
std::uint32_t ask(Method method, Arguments... arguments) {
  try {
    return (framework().*method)(arguments...);
  } catch (const std::exception& caught) {
    std::cerr << "ZORAPI simulator: " << caught.what() << '\n';
    return kelvane::simulator::kStatusInternal;
  }
}

}  // namespace

std::uint32_t zr_initialize(const InitParm* parm) { return ask(&Framework::initialize, parm); }

std::uint32_t zr_discover(std::uint32_t zero) { return ask(&Framework::discover, zero); }

std::uint32_t zr_getNumberOfHBA(std::uint32_t* count) {
  return ask(&Framework::getNumberOfHBA, count);
}

std::uint32_t zr_getNumberOfSubsystem(std::uint32_t* count) {
  return ask(&Framework::getNumberOfSubsystem, count);
}

std::uint32_t zr_getSubsystemInfo(ControllerAddress addr, std::uint32_t sel, SubsystemInfo* info) {
  return ask(&Framework::getSubsystemInfo, addr, sel, info);
}

void decod_getStringWWN(WwnString* text, const void* wwnField) {
  try {
    framework().getStringWWN(text, wwnField);
  } catch (const std::exception& caught) {
    std::cerr << "ZORAPI simulator: " << caught.what() << '\n';
  }
}

std::uint32_t zr_getControllerInfo(std::uint16_t adapterNumber, std::uint32_t sel,
                                   const CtrlInfoRequest* request, void* buffer,
                                   std::uint32_t size) {
  return ask(&Framework::getControllerInfo, adapterNumber, sel, request, buffer, size);
}

std::uint32_t decod_locateBufferCtrlInfo(void* buffer, std::uint32_t size, std::uint32_t zero,
                                         std::uint32_t pageNumber, void** page) {
  return ask(&Framework::locateBufferCtrlInfo, buffer, size, zero, pageNumber, page);
}

std::uint32_t zr_getCurrentDeviceInterface(ControllerAddress addr, std::uint32_t sel,
                                           DeviceInterfaceInfo* info) {
  return ask(&Framework::getCurrentDeviceInterface, addr, sel, info);
}

const char* getErrorDescription(std::uint32_t status) {
  try {
    return framework().errorDescription(status);
  } catch (const std::exception&) {
    return kelvane::simulator::describeStatus(status);  // the text needs no memory
  }
}

std::uint32_t zr_getFDLImageInfo(FlashParm* flash, FwImgInfo* image) {
  return ask(&Framework::getFDLImageInfo, flash, image);
}

std::uint32_t zr_getCPLDImageInfo(FlashParm* flash, CpldParm* cpld, FwImgInfo* image, void* page0,
                                  void* page1) {
  return ask(&Framework::getCPLDImageInfo, flash, cpld, image, page0, page1);
}

std::uint32_t zr_getUSBImageInfo(FlashParm* flash, UsbParm* usb) {
  return ask(&Framework::getUSBImageInfo, flash, usb);
}

std::uint32_t zr_initializeFlashProcess(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::initializeFlashProcess, addr, sel);
}

std::uint32_t zr_checkFlashImage(ControllerAddress addr, std::uint32_t sel, void* controllerInfo,
                                 FlashParm* flash, UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return ask(&Framework::checkFlashImage, addr, sel, controllerInfo, flash, usb, cpld, image);
}

std::uint32_t zr_transferFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                    UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return ask(&Framework::transferFlashImage, addr, sel, flash, usb, cpld, image);
}

std::uint32_t zr_verifyFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash) {
  return ask(&Framework::verifyFlashImage, addr, sel, flash);
}

std::uint32_t zr_flashImageEx(ControllerAddress addr, std::uint32_t sel, std::uint32_t flashMode,
                              FlashParm* flash) {
  return ask(&Framework::flashImageEx, addr, sel, flashMode, flash);
}

std::uint32_t zr_getFlashProgress(ControllerAddress addr, std::uint32_t sel,
                                  FlashProgress* progress) {
  return ask(&Framework::getFlashProgress, addr, sel, progress);
}

std::uint32_t zr_finalizeFlashProcess(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::finalizeFlashProcess, addr, sel);
}

std::uint32_t zr_checkQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                     QvxfCheckInfo* info) {
  return ask(&Framework::checkQVXFFlashImage, addr, sel, flash, info);
}

std::uint32_t zr_transferQVXFFlashImage(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                        FwImgInfo* image, std::uint32_t zero) {
  return ask(&Framework::transferQVXFFlashImage, addr, sel, flash, image, zero);
}

std::uint32_t zr_analyzeQVXFImage(ControllerAddress addr, std::uint32_t sel,
                                  QvxfAnalysis* analysis) {
  return ask(&Framework::analyzeQVXFImage, addr, sel, analysis);
}

std::uint32_t zr_flashQVXFImage(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::flashQVXFImage, addr, sel);
}

std::uint32_t zr_getFlashQVXFImageStatus(ControllerAddress addr, std::uint32_t sel,
                                         FlashProgress* progress) {
  return ask(&Framework::getFlashQVXFImageStatus, addr, sel, progress);
}

std::uint32_t zr_finializeQVXFImage(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::finializeQVXFImage, addr, sel);
}

std::uint32_t zr_initializeCPLDProcess(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::initializeCPLDProcess, addr, sel);
}

std::uint32_t zr_flashCPLDBin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              std::uint32_t zero, UsbParm* usb, CpldParm* cpld, FwImgInfo* image) {
  return ask(&Framework::flashCPLDBin, addr, sel, flash, zero, usb, cpld, image);
}

std::uint32_t zr_getCPLDProgress(ControllerAddress addr, std::uint32_t sel,
                                 CpldProgress* progress) {
  return ask(&Framework::getCPLDProgress, addr, sel, progress);
}

std::uint32_t zr_finalizeCPLDProcess(ControllerAddress addr, std::uint32_t sel) {
  return ask(&Framework::finalizeCPLDProcess, addr, sel);
}

std::uint32_t zr_mac_checkUSBFWVersion(ControllerAddress addr, std::uint32_t sel, UsbParm* usb,
                                       std::uint32_t* updateFlag) {
  return ask(&Framework::checkUSBFWVersion, addr, sel, usb, updateFlag);
}

std::uint32_t zr_mac_getNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram) {
  return ask(&Framework::getNVRAM, addr, sel, nvram);
}

std::uint32_t zr_mac_flashUSBFWbin(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                                   UsbParm* usb) {
  return ask(&Framework::flashUSBFWbin, addr, sel, flash, usb);
}

std::uint32_t zr_mac_setNVRAM(ControllerAddress addr, std::uint32_t sel, FlashParm* flash,
                              UsbParm* usb, UsbNvram* nvram) {
  return ask(&Framework::setNVRAM, addr, sel, flash, usb, nvram);
}

std::uint32_t zr_mac_flashNVRAM(ControllerAddress addr, std::uint32_t sel, UsbNvram* nvram) {
  return ask(&Framework::flashNVRAM, addr, sel, nvram);
}
