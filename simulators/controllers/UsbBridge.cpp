// The USB bridge: its firmware, and the NVRAM that goes with it.

#include <algorithm>
#include <cstring>

#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Records.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {
namespace {

// The bridge's NVRAM begins with a mark and the version of the firmware that it goes with.
constexpr std::string_view kNvramMark = "NVRM";

std::string bytesOf(const UsbNvram& nvram) {
  return {std::begin(nvram.bytes), std::end(nvram.bytes)};
}

void setBytes(UsbNvram& nvram, const std::string& bytes) {
  std::copy(bytes.begin(), bytes.end(), std::begin(nvram.bytes));
}

std::string withVersion(std::string nvram, const std::string& version) {
  std::string head = std::string(kNvramMark) + version;
  head.resize(kNvramMark.size() + kVersionLengthLimit + 1, '\0');
  return nvram.replace(0, head.size(), head);
}

std::string nvramOf(const ControllerRecord& record) {
  std::string nvram = record.nvram;
  nvram.resize(sizeof(UsbNvram), '\0');
  return record.nvram.empty() ? withVersion(nvram, record.bridge) : nvram;
}

// Without the zeros at the end.
std::string trimmed(std::string bytes) {
  while (!bytes.empty() && bytes.back() == '\0') bytes.pop_back();
  return bytes;
}

}  // namespace

std::uint32_t Framework::checkUSBFWVersion(ControllerAddress address, std::uint32_t sel,
                                           UsbParm* usb, std::uint32_t* updateFlag) {
  Call call = begin("zr_mac_checkUSBFWVersion",
                    {{"address", shown(address)}, {"sel", shown(sel)}, {"usb", shown(usb)}});
  using Attachment = ControllerRecord::Attachment;
  Controller& controller = addressed(call, address, sel);
  call.require(controller.record.attached != Attachment::other,
               "the controller is not attached through the USB bridge");
  requireRecord(call, usb, "UsbParm");
  requireRecord(call, updateFlag, "the update flag");
  return finish(call, [&]() -> std::uint32_t {
    if (controller.record.attached == Attachment::thunderbolt) return kZorThunderbolt;
    controller.bridgeChecked = true;
    // A record without a bridge image asks for nothing.
    const bool differs = usb->usb_u32checkUSB != 0 && textOf(usb->at39) != controller.record.bridge;
    *updateFlag = differs ? 1 : 0;
    call.result("update_flag", shown(*updateFlag));
    return kZorSuccess;
  });
}

std::uint32_t Framework::getNVRAM(ControllerAddress address, std::uint32_t sel, UsbNvram* nvram) {
  Call call = begin("zr_mac_getNVRAM", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  if (requireRecord(call, nvram, "UsbNvram"))
    call.require(isZero(*nvram), "UsbNvram is not zeroed");
  return finish(call, [&] {
    controller.nvramRead = nvramOf(controller.record);
    setBytes(*nvram, *controller.nvramRead);
    call.result("nvram", hexOfBytes(trimmed(*controller.nvramRead)));
    return kZorSuccess;
  });
}

std::uint32_t Framework::flashUSBFWbin(ControllerAddress address, std::uint32_t sel,
                                       FlashParm* flash, UsbParm* usb) {
  Call call = begin("zr_mac_flashUSBFWbin", {{"address", shown(address)},
                                             {"sel", shown(sel)},
                                             {"flash", shown(flash)},
                                             {"usb", shown(usb)}});
  Controller& controller = addressed(call, address, sel);
  requireFlashParm(call, flash, controller);
  if (requireRecord(call, usb, "UsbParm")) {
    call.require(usb->flashRequest == 1, "the flash request in UsbParm is not 1");
  }
  call.require(controller.bridgeChecked, "the version of the bridge has not been checked",
               kStatusBridgeNotChecked);
  requireNothingOpen(call);
  return finish(call, [&]() -> std::uint32_t {
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status != kZorSuccess) return file.status;
    if (!file.image.usb) return kZorUsbNothingToDo;
    if (isStillFlashing(controller)) return kZorFlashProcessRunning;
    controller.record.bridge = file.image.usb->version;
    store(controller, kBridgeKey, controller.record.bridge);
    return kZorSuccess;
  });
}

std::uint32_t Framework::setNVRAM(ControllerAddress address, std::uint32_t sel, FlashParm* flash,
                                  UsbParm* usb, UsbNvram* nvram) {
  Call call = begin("zr_mac_setNVRAM", {{"address", shown(address)},
                                        {"sel", shown(sel)},
                                        {"flash", shown(flash)},
                                        {"usb", shown(usb)}});
  Controller& controller = addressed(call, address, sel);
  requireFlashParm(call, flash, controller);
  requireRecord(call, usb, "UsbParm");
  if (requireRecord(call, nvram, "UsbNvram")) {
    call.require(controller.nvramRead == bytesOf(*nvram), "UsbNvram is not as it was read");
  }
  return finish(call, [&] {
    controller.nvramPrepared = withVersion(bytesOf(*nvram), textOf(usb->at39));
    setBytes(*nvram, *controller.nvramPrepared);
    return kZorSuccess;
  });
}

std::uint32_t Framework::flashNVRAM(ControllerAddress address, std::uint32_t sel, UsbNvram* nvram) {
  Call call = begin("zr_mac_flashNVRAM", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  call.require(controller.nvramPrepared.has_value(), "the NVRAM has not been prepared",
               kStatusNvramNotPrepared);
  if (requireRecord(call, nvram, "UsbNvram")) {
    call.require(controller.nvramPrepared == bytesOf(*nvram), "UsbNvram is not as it was prepared");
  }
  return finish(call, [&] {
    controller.record.nvram = trimmed(bytesOf(*nvram));
    controller.nvramPrepared.reset();
    store(controller, kNvramKey, hexOfBytes(controller.record.nvram));
    call.result("nvram", hexOfBytes(controller.record.nvram));
    return kZorSuccess;
  });
}

}  // namespace kelvane::simulator
