// The QVXF image: transferred inside a flash process, then analysed and flashed outside of it.

#include <cstring>

#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Records.h"

namespace kelvane::simulator {
namespace {

// The outputs are filled with something, so that nobody takes them for zeroed records.
constexpr int kAnswered = 0x51;

}  // namespace

Controller& Framework::addressedQvxf(Call& call, ControllerAddress address, std::uint32_t sel) {
  Controller& controller = addressed(call, address, sel);
  call.require(controller.isQvxf(), "the controller takes no QVXF images");
  return controller;
}

std::uint32_t Framework::checkQVXFFlashImage(ControllerAddress address, std::uint32_t sel,
                                             FlashParm* flash, QvxfCheckInfo* info) {
  Call call = begin("zr_checkQVXFFlashImage",
                    {{"address", shown(address)}, {"sel", shown(sel)}, {"flash", shown(flash)}});
  const Controller& controller = addressedQvxf(call, address, sel);
  call.require(controller.flashOpen, "no flash process is open", kStatusNoFlashProcess);
  requireFlashParm(call, flash, controller);
  if (requireRecord(call, info, "QvxfCheckInfo")) {
    call.require(qvxfChecked_ || isZero(*info), "QvxfCheckInfo is not zeroed");
  }
  return finish(call, [&] {
    qvxfChecked_ = true;
    std::memset(info->bytes, kAnswered, sizeof info->bytes);
    return suitableImage(*flash, Image::Kind::qvxf).status;
  });
}

std::uint32_t Framework::transferQVXFFlashImage(ControllerAddress address, std::uint32_t sel,
                                                FlashParm* flash, FwImgInfo* image,
                                                std::uint32_t zero) {
  Call call = begin("zr_transferQVXFFlashImage", {{"address", shown(address)},
                                                  {"sel", shown(sel)},
                                                  {"flash", shown(flash)},
                                                  {"image", shown(image)},
                                                  {"zero", shown(zero)}});
  Controller& controller = addressedQvxf(call, address, sel);
  call.require(controller.flashOpen, "no flash process is open", kStatusNoFlashProcess);
  call.require(zero == 0, "the last argument is not 0");
  requireFlashParm(call, flash, controller);
  requireRecord(call, image, "FwImgInfo");
  return finish(call, [&] {
    const ImageFile file = suitableImage(*flash, Image::Kind::qvxf);
    if (file.status == kZorSuccess) controller.qvxfTransferred = file.image.firmware.version;
    return file.status;
  });
}

std::uint32_t Framework::analyzeQVXFImage(ControllerAddress address, std::uint32_t sel,
                                          QvxfAnalysis* analysis) {
  Call call = begin("zr_analyzeQVXFImage", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressedQvxf(call, address, sel);
  call.require(controller.qvxfTransferred.has_value(), "no image has been transferred",
               kStatusNotTransferred);
  if (requireRecord(call, analysis, "QvxfAnalysis")) {
    call.require(qvxfAnalysed_ || isZero(*analysis), "QvxfAnalysis is not zeroed");
  }
  return finish(call, [&] {
    qvxfAnalysed_ = true;
    std::memset(analysis->bytes, kAnswered, sizeof analysis->bytes);
    controller.qvxfAnalysed = true;
    return kZorSuccess;
  });
}

std::uint32_t Framework::flashQVXFImage(ControllerAddress address, std::uint32_t sel) {
  Call call = begin("zr_flashQVXFImage", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressedQvxf(call, address, sel);
  call.require(controller.qvxfAnalysed, "the image has not been analysed", kStatusNotAnalysed);
  return finish(call, [&] {
    startFirmware(controller, controller.qvxfFlash, controller.qvxfTransferred.value_or(""));
    return kZorSuccess;
  });
}

std::uint32_t Framework::getFlashQVXFImageStatus(ControllerAddress address, std::uint32_t sel,
                                                 FlashProgress* progress) {
  Call call =
      begin("zr_getFlashQVXFImageStatus", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  return firmwareProgress(call, controller, controller.qvxfFlash, progress);
}

// Also where nothing is open, and twice: callers close on every path.
std::uint32_t Framework::finializeQVXFImage(ControllerAddress address, std::uint32_t sel) {
  Call call = begin("zr_finializeQVXFImage", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  return finish(call, [&] {
    closeFirmware(controller, controller.qvxfFlash);
    controller.qvxfTransferred.reset();
    controller.qvxfAnalysed = false;
    return kZorSuccess;
  });
}

}  // namespace kelvane::simulator
