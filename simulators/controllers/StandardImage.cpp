// The standard image: examined, then flashed inside a flash process.

#include <algorithm>

#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Records.h"

namespace kelvane::simulator {

namespace {

constexpr std::uint32_t kFlashMode = 4;

FwImgInfo imageInfo(const ImagePart& firmware) {
  return {static_cast<std::uint32_t>(firmware.bytes.size()), checksum(firmware.bytes)};
}

CpldParm cpldInfo(const Image& image) {
  CpldParm cpld = {};
  if (!image.cpld) return cpld;
  cpld.at0 = 1;
  cpld.at4[0] = static_cast<std::uint32_t>(image.cpld->bytes.size());
  cpld.at4[1] = checksum(image.cpld->bytes);
  return cpld;
}

// Never 0 where there is a bridge part, because 0 stands for a record that was not filled.
UsbParm usbInfo(const Image& image) {
  UsbParm usb = {};
  if (!image.usb) return usb;
  const std::uint32_t sum = checksum(image.usb->bytes);
  usb.usb_u32checkUSB = sum == 0 ? 1 : sum;
  std::copy(image.usb->version.begin(), image.usb->version.end(), usb.at39);
  return usb;
}

}  // namespace

void Framework::requireExamination(Call& call, const FlashParm* flash) {
  requireDiscovered(call);
  call.require(infoFilled_, "called before zr_getControllerInfo");
  requireFlashParm(call, flash, current());
}

std::uint32_t Framework::getFDLImageInfo(FlashParm* flash, FwImgInfo* image) {
  Call call = begin("zr_getFDLImageInfo", {{"flash", shown(flash)}});
  requireExamination(call, flash);
  if (requireRecord(call, image, "FwImgInfo")) {
    call.require(isZero(*image), "FwImgInfo is not zeroed");
  }
  return finish(call, [&] {
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status != kZorSuccess) return file.status;
    *image = filledImage_ = imageInfo(file.image.firmware);
    call.result("image", shown(image));
    return file.status;
  });
}

std::uint32_t Framework::getCPLDImageInfo(FlashParm* flash, CpldParm* cpld, FwImgInfo* image,
                                          void* page0, void* page1) {
  Call call = begin("zr_getCPLDImageInfo", {{"flash", shown(flash)}, {"image", shown(image)}});
  requireExamination(call, flash);
  requireRecord(call, image, "FwImgInfo");
  call.require(isPage(page0, 0), "page 0 is not as it was located");
  call.require(isPage(page1, 1), "page 1 is not as it was located");
  if (requireRecord(call, cpld, "CpldParm")) {
    call.require(isZero(*cpld), "CpldParm is not zeroed");
  }
  return finish(call, [&] {
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status != kZorSuccess) return file.status;
    *cpld = cpldInfo(file.image);
    *image = filledImage_ = imageInfo(file.image.firmware);
    call.result("cpld", shown(cpld));
    return file.status;
  });
}

std::uint32_t Framework::getUSBImageInfo(FlashParm* flash, UsbParm* usb) {
  Call call = begin("zr_getUSBImageInfo", {{"flash", shown(flash)}});
  requireExamination(call, flash);
  if (requireRecord(call, usb, "UsbParm")) call.require(isZero(*usb), "UsbParm is not zeroed");
  return finish(call, [&] {
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status != kZorSuccess) return file.status;
    *usb = usbInfo(file.image);
    call.result("usb", shown(usb));
    return file.status;
  });
}

std::uint32_t Framework::initializeFlashProcess(ControllerAddress address, std::uint32_t sel) {
  Call call =
      begin("zr_initializeFlashProcess", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  requireNothingOpen(call);
  return finish(call, [&]() -> std::uint32_t {
    if (playBusy(controller.record.firmwareBusy) || isStillFlashing(controller)) {
      return kZorFlashProcessRunning;
    }
    controller.flashOpen = true;
    controller.transferred.reset();
    return kZorSuccess;
  });
}

// Who goes on after a tolerated failure may not have filled FlashParm at all: an error, but no
// breach.
void Framework::requireCheckable(Call& call, const FlashParm* flash, const Controller& controller) {
  const bool neverFilled = flash != nullptr && isZero(*flash);
  if (neverFilled && failed_) {
    call.refuse(kStatusImageUnreadable);
  } else {
    requireFlashParm(call, flash, controller);
  }
}

std::uint32_t Framework::checkFlashImage(ControllerAddress address, std::uint32_t sel,
                                         void* controllerInfo, FlashParm* flash, UsbParm* usb,
                                         CpldParm* cpld, FwImgInfo* image) {
  Call call = begin("zr_checkFlashImage", {{"address", shown(address)},
                                           {"sel", shown(sel)},
                                           {"flash", shown(flash)},
                                           {"usb", shown(usb)},
                                           {"cpld", shown(cpld)},
                                           {"image", shown(image)}});
  const Controller& controller = addressed(call, address, sel);
  call.require(controller.flashOpen, "no flash process is open", kStatusNoFlashProcess);
  call.require(controllerInfo != nullptr && controllerInfo == infoBuffer_,
               "the controller information buffer is not the one that was filled last");
  requireCheckable(call, flash, controller);
  requireImageRecords(call, usb, cpld, image);
  return finish(call, [&]() -> std::uint32_t {
    if (!controller.isStandard()) return kZorUnsupportedProduct;
    return suitableImage(*flash, Image::Kind::standard).status;
  });
}

std::uint32_t Framework::transferFlashImage(ControllerAddress address, std::uint32_t sel,
                                            FlashParm* flash, UsbParm* usb, CpldParm* cpld,
                                            FwImgInfo* image) {
  Call call = begin("zr_transferFlashImage", {{"address", shown(address)},
                                              {"sel", shown(sel)},
                                              {"flash", shown(flash)},
                                              {"usb", shown(usb)},
                                              {"cpld", shown(cpld)},
                                              {"image", shown(image)}});
  Controller& controller = addressed(call, address, sel);
  call.require(controller.flashOpen, "no flash process is open", kStatusNoFlashProcess);
  requireFlashParm(call, flash, controller);
  requireImageRecords(call, usb, cpld, image);
  return finish(call, [&] {
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status == kZorSuccess) controller.transferred = file.image.firmware.version;
    return file.status;
  });
}

void Framework::requireTransferred(Call& call, const FlashParm* flash,
                                   const Controller& controller) const {
  call.require(controller.flashOpen, "no flash process is open", kStatusNoFlashProcess);
  call.require(controller.transferred.has_value(), "no image has been transferred",
               kStatusNotTransferred);
  requireFlashParm(call, flash, controller);
}

std::uint32_t Framework::verifyFlashImage(ControllerAddress address, std::uint32_t sel,
                                          FlashParm* flash) {
  Call call = begin("zr_verifyFlashImage",
                    {{"address", shown(address)}, {"sel", shown(sel)}, {"flash", shown(flash)}});
  requireTransferred(call, flash, addressed(call, address, sel));
  // What has been transferred was whole: only a fault to play finds it otherwise.
  return finish(call, [] { return kZorSuccess; });
}

std::uint32_t Framework::flashImageEx(ControllerAddress address, std::uint32_t sel,
                                      std::uint32_t flashMode, FlashParm* flash) {
  Call call = begin("zr_flashImageEx", {{"address", shown(address)},
                                        {"sel", shown(sel)},
                                        {"flash_mode", shown(flashMode)},
                                        {"flash", shown(flash)}});
  Controller& controller = addressed(call, address, sel);
  call.require(flashMode == kFlashMode, "the flash mode is not 4");
  requireTransferred(call, flash, controller);
  return finish(call, [&] {
    startFirmware(controller, controller.firmwareFlash, controller.transferred.value_or(""));
    return kZorSuccess;
  });
}

std::uint32_t Framework::getFlashProgress(ControllerAddress address, std::uint32_t sel,
                                          FlashProgress* progress) {
  Call call = begin("zr_getFlashProgress", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  return firmwareProgress(call, controller, controller.firmwareFlash, progress);
}

// Also where nothing is open, and twice: callers close on every path.
std::uint32_t Framework::finalizeFlashProcess(ControllerAddress address, std::uint32_t sel) {
  Call call = begin("zr_finalizeFlashProcess", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  return finish(call, [&] {
    closeFirmware(controller, controller.firmwareFlash);
    controller.flashOpen = false;
    controller.transferred.reset();
    return kZorSuccess;
  });
}

}  // namespace kelvane::simulator
