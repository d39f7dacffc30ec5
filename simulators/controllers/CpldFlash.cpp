// The CPLD: one flash process, in which the CPLD is transferred and then programmed.

#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Records.h"

namespace kelvane::simulator {

std::uint32_t Framework::initializeCPLDProcess(ControllerAddress address, std::uint32_t sel) {
  Call call = begin("zr_initializeCPLDProcess", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  requireNothingOpen(call);
  return finish(call, [&] {
    controller.cpldOpen = true;
    return kZorSuccess;
  });
}

std::uint32_t Framework::flashCPLDBin(ControllerAddress address, std::uint32_t sel,
                                      FlashParm* flash, std::uint32_t zero, UsbParm* usb,
                                      CpldParm* cpld, FwImgInfo* image) {
  Call call = begin("zr_flashCPLDBin", {{"address", shown(address)},
                                        {"sel", shown(sel)},
                                        {"flash", shown(flash)},
                                        {"zero", shown(zero)},
                                        {"usb", shown(usb)},
                                        {"cpld", shown(cpld)},
                                        {"image", shown(image)}});
  Controller& controller = addressed(call, address, sel);
  call.require(controller.cpldOpen, "no CPLD flash process is open", kStatusNoFlashProcess);
  call.require(zero == 0, "the fourth argument is not 0");
  requireFlashParm(call, flash, controller);
  requireImageRecords(call, usb, cpld, image);
  return finish(call, [&]() -> std::uint32_t {
    if (playBusy(controller.record.cpldBusy) || isStillFlashing(controller)) {
      return kZorFlashProcessRunning;
    }
    const ImageFile file = suitableImage(*flash, Image::Kind::standard);
    if (file.status != kZorSuccess) return file.status;
    return startCpld(controller, file.image);
  });
}

// An image without a CPLD part leaves the CPLD as it is, so that its firmware can be flashed.
std::uint32_t Framework::startCpld(Controller& controller, const Image& image) const {
  const ControllerRecord& record = controller.record;
  if (!image.cpld || image.cpld->version == record.cpld) return kStatusCpldUpToDate;
  controller.cpldFlash = startFlash(cpldTimeline(record), image.cpld->version);
  keepFlash(controller, kCpldFlash, image.cpld->version);
  return kZorSuccess;
}

std::uint32_t Framework::getCPLDProgress(ControllerAddress address, std::uint32_t sel,
                                         CpldProgress* progress) {
  Call call = begin("zr_getCPLDProgress", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  std::optional<RunningFlash>& flash = controller.cpldFlash;
  requireRecord(call, progress, "CpldProgress");
  call.require(flash.has_value(), "no flash has been started", kStatusNoFlashStarted);
  if (call.refusal() == 0 && !flash->polled) {
    call.require(isZero(*progress), "CpldProgress is not zeroed");
  }
  const std::uint32_t status = finish(call, [&] {
    const Reading reading = readProgress(controller, *flash, kCpldKey, controller.record.cpld);
    progress->rdcp_u8Status = reading.statusByte;
    progress->rdcp_u8Stage = reading.stage;
    progress->rdcp_u8Percent = reading.percent;
    progress->rdcp_u8RetryCount = reading.retries;
    call.result("progress", shown(*progress));
    return kZorSuccess;
  });
  clock_.queryAnswered();
  return status;
}

// Also where nothing is open, and twice: callers close on every path.
std::uint32_t Framework::finalizeCPLDProcess(ControllerAddress address, std::uint32_t sel) {
  Call call = begin("zr_finalizeCPLDProcess", {{"address", shown(address)}, {"sel", shown(sel)}});
  Controller& controller = addressed(call, address, sel);
  return finish(call, [&] {
    if (controller.cpldFlash) {
      end(controller, *controller.cpldFlash, kCpldKey, controller.record.cpld);
    }
    controller.cpldFlash.reset();
    controller.cpldOpen = false;
    return kZorSuccess;
  });
}

}  // namespace kelvane::simulator
