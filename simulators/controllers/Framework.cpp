#include "simulators/controllers/Framework.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <utility>

#include "platform/Exception.h"
#include "simulators/controllers/Records.h"

namespace kelvane::simulator {

using platform::Value;

namespace {

// Closing calls still close when a fault gives their status: otherwise the fault of one controller
// would be another's.
bool isClosing(std::string_view function) {
  return function == "zr_finalizeFlashProcess" || function == "zr_finializeQVXFImage" ||
         function == "zr_finalizeCPLDProcess";
}

}  // namespace

Framework::Framework(std::string fleetPath, Journal& journal, TimeOfDay timeOfDay)
    : fleetPath_(std::move(fleetPath)),
      journal_(journal),
      timeOfDay_(std::move(timeOfDay)),
      clock_(timeOfDay_) {}

Call Framework::begin(std::string function, Arguments arguments) {
  ++calls_[function];
  return {std::move(function), Value::dictionary(std::move(arguments))};
}

std::uint32_t Framework::finish(Call& call, const Body& body) {
  const std::uint32_t status = statusOf(call, body);
  if (status != kZorSuccess) failed_ = true;
  call.journalTo(journal_, shown(status));
  return status;
}

std::uint32_t Framework::statusOf(const Call& call, const Body& body) {
  if (call.refusal() != 0) return call.refusal();
  const std::uint32_t fault = faultOf(call);
  if (fault == 0) return body();
  if (isClosing(call.function())) body();
  if (fault == kZorCpldFlashAccepted && call.function() == "zr_flashCPLDBin") {
    const std::uint32_t own = body();  // the one status that is as good as success
    return own == kZorSuccess ? fault : own;
  }
  return fault;
}

std::uint32_t Framework::faultOf(const Call& call) const {
  const std::uint64_t number = calls_.at(call.function());
  const auto found = std::find_if(faults_.begin(), faults_.end(), [&](const CallFault& fault) {
    return fault.function == call.function() && number >= fault.call &&
           (fault.count == 0 || number - fault.call < fault.count);
  });
  return found == faults_.end() ? 0 : found->status;
}

bool Framework::requireDiscovered(Call& call) const {
  return call.require(initialised_, "called before zr_initialize", kStatusNotInitialised) &&
         call.require(discovered_, "called before zr_discover", kStatusNotDiscovered);
}

bool Framework::requireSel(Call& call, std::uint32_t sel) {
  return call.require(sel == 0, "sel is not 0");
}

bool Framework::requireRecord(Call& call, const void* record, std::string_view name) {
  return call.require(record != nullptr, std::string(name) + " is missing");
}

std::size_t Framework::adapterCount() const {
  return static_cast<std::size_t>(
      std::count_if(controllers_.begin(), controllers_.end(),
                    [](const Controller& each) { return !each.record.subsystem; }));
}

// Past the discovery list, every controller goes by its index as an adapter number, also one that
// is listed as a subsystem.
Controller& Framework::addressed(Call& call, ControllerAddress address, std::uint32_t sel) {
  requireDiscovered(call);
  requireSel(call, sel);
  call.require(address.reserved2 == 0 && address.reserved6 == 0,
               "reserved bits of the address are not 0");
  const bool known = address.subsystemNumber == 0 && address.adapterNumber < controllers_.size();
  if (!call.require(known, "no controller has this address", kStatusUnknownAddress)) {
    return nobody_;
  }
  return controllers_[address.adapterNumber];
}

Controller& Framework::current() { return current_ == nullptr ? nobody_ : *current_; }

bool Framework::requireFlashParm(Call& call, const FlashParm* flash,
                                 const Controller& controller) const {
  return requireRecord(call, flash, "FlashParm") &&
         call.require(flash->at1 == 0, "byte 1 of FlashParm is not 0") &&
         call.require(hasTerminatedPath(*flash), "the path in FlashParm does not end") &&
         call.require(flash->productId == controller.record.productId,
                      "the product identifier in FlashParm is not the controller's") &&
         call.require(hasOnlyProductAndPath(*flash), "a field of FlashParm is not 0");
}

// The image's record has to be the one that was filled last, unless examining the image failed.
bool Framework::requireImageRecords(Call& call, const UsbParm* usb, const CpldParm* cpld,
                                    const FwImgInfo* image) const {
  return requireRecord(call, usb, "UsbParm") && requireRecord(call, cpld, "CpldParm") &&
         requireRecord(call, image, "FwImgInfo") &&
         call.require(failed_ || (image->at0 == filledImage_.at0 && image->at4 == filledImage_.at4),
                      "FwImgInfo is not as the framework filled it");
}

void Framework::requireNothingOpen(Call& call) const {
  const bool busy = std::any_of(controllers_.begin(), controllers_.end(),
                                [](const Controller& each) { return each.isBusy(); });
  call.require(!busy, "a flash process is still open", kZorFlashProcessRunning);
}

ImageFile Framework::suitableImage(const FlashParm& flash, Image::Kind kind) {
  ImageFile file = readImage(imagePath(flash));
  if (file.status != kZorSuccess) return file;
  if (file.image.kind != kind) {
    file.status = kStatusImageOtherKind;
  } else if (!file.image.fits(flash.productId)) {
    file.status = kStatusImageOtherProduct;
  }
  return file;
}

bool Framework::playBusy(BusyFault& busy) {
  if (busy.forEver) return true;
  if (busy.calls == 0) return false;
  --busy.calls;
  return true;
}

RunningFlash Framework::startFlash(Timeline timeline, std::string version) const {
  return {std::move(timeline), clock_.seconds(), std::move(version)};
}

void Framework::startFirmware(Controller& controller, std::optional<RunningFlash>& flash,
                              const std::string& version) const {
  flash = startFlash(firmwareTimeline(controller.record), version);
  keepFlash(controller, kFirmwareFlash, version);
}

std::uint32_t Framework::firmwareProgress(Call& call, Controller& controller,
                                          std::optional<RunningFlash>& flash,
                                          FlashProgress* progress) {
  requireRecord(call, progress, "FlashProgress");
  call.require(flash.has_value(), "no flash has been started", kStatusNoFlashStarted);
  if (call.refusal() == 0 && !flash->polled) {
    call.require(isZero(*progress), "FlashProgress is not zeroed");
  }
  const std::uint32_t status = finish(call, [&] {
    const Reading reading =
        readProgress(controller, *flash, kFirmwareKey, controller.record.firmware);
    progress->fp_u8Status = reading.statusByte;
    progress->fp_u8Stage = reading.stage;
    progress->fp_u8Percent = reading.percent;
    call.result("progress", shown(*progress));
    return kZorSuccess;
  });
  clock_.queryAnswered();
  return status;
}

Reading Framework::readProgress(Controller& controller, RunningFlash& flash, const char* key,
                                std::string& held) {
  flash.polled = true;
  const Reading reading = flash.timeline.at(clock_.seconds() - flash.startedAt);
  if (reading.done) complete(controller, flash, key, held);
  return reading;
}

void Framework::closeFirmware(Controller& controller, std::optional<RunningFlash>& flash) {
  if (flash) end(controller, *flash, kFirmwareKey, controller.record.firmware);
  flash.reset();
}

// A flash that has come to its end unseen counts; one that has not is given up.
void Framework::end(Controller& controller, RunningFlash& flash, const char* key,
                    std::string& held) {
  complete(controller, flash, key, held);
  if (!flash.stored) forgetFlash(controller);
}

void Framework::complete(Controller& controller, RunningFlash& flash, const char* key,
                         std::string& held) {
  const bool done = flash.timeline.at(clock_.seconds() - flash.startedAt).done;
  if (!done || flash.stored) return;
  flash.stored = true;
  held = flash.version;
  store(controller, key, held);
  forgetFlash(controller);
}

void Framework::store(const Controller& controller, const char* key, const Value& value) const {
  try {
    storeInFleet(fleetPath_, controller.record.wwn, key, value);
  } catch (const platform::Exception& caught) {
    std::cerr << "ZORAPI simulator: what was flashed is not kept: " << caught.what() << '\n';
  }
}

void Framework::loadFleet() {
  controllers_.clear();
  faults_.clear();
  current_ = nullptr;
  discovered_ = false;
  complaint_.clear();
  try {
    Fleet fleet = readFleet(fleetPath_);
    clock_ = Clock(timeOfDay_, fleet.secondsPerQuery);
    survives_ = fleet.survives;
    faults_ = std::move(fleet.faults);
    for (ControllerRecord& each : fleet.controllers) controllers_.emplace_back(std::move(each));
    for (Controller& each : controllers_) takeSurvivor(each);
  } catch (const platform::Exception& caught) {
    complaint_ = caught.what();
  }
}

}  // namespace kelvane::simulator
