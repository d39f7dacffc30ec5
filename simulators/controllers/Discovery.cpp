// Start, discovery, and what a controller tells of itself.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iostream>

#include "platform/Utf8.h"
#include "simulators/controllers/Framework.h"
#include "simulators/controllers/Records.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {

namespace {

// Where the pages stand in the controller information buffer: at odd addresses, because nothing
// promises better ones.
constexpr std::size_t kPageOffsets[] = {37, 551};

char* pageAt(char* buffer, std::size_t number) { return buffer + kPageOffsets[number]; }

// Without an end mark: the buffer is zeroed.
void putText(char* field, const std::string& text) { std::copy(text.begin(), text.end(), field); }

void fillPages(char* buffer, const ControllerRecord& record) {
  char* page0 = pageAt(buffer, 0);
  putText(page0, record.firmware);
  std::memcpy(page0 + offsetof(ControllerInfoPage, ci_ProductID), &record.productId,
              sizeof record.productId);
  putText(pageAt(buffer, 1), record.cpld);
}

}  // namespace

bool Framework::isPage(const void* page, std::size_t number) const {
  return infoFilled_ && page == pageAt(infoBuffer_, number);
}

std::uint32_t Framework::initialize(const InitParm* parm) {
  loadFleet();
  qvxfChecked_ = false;
  qvxfAnalysed_ = false;
  Call call = begin("zr_initialize", {});
  if (requireRecord(call, parm, "InitParm")) {
    call.require(isExact(*parm), "InitParm does not hold exactly the fixed words");
  }
  initialised_ = true;  // also where a fault gives the status: callers ignore it
  return finish(call, [] { return kZorSuccess; });
}

std::uint32_t Framework::discover(std::uint32_t zero) {
  Call call = begin("zr_discover", {{"zero", shown(zero)}});
  call.require(initialised_, "called before zr_initialize", kStatusNotInitialised);
  call.require(zero == 0, "the argument is not 0");
  return finish(call, [this]() -> std::uint32_t {
    if (!complaint_.empty()) {
      std::cerr << "ZORAPI simulator: " << complaint_ << '\n';
      return kStatusFleetUnusable;
    }
    discovered_ = true;
    return kZorSuccess;
  });
}

std::uint32_t Framework::getNumberOfHBA(std::uint32_t* count) {
  Call call = begin("zr_getNumberOfHBA", {});
  requireDiscovered(call);
  requireRecord(call, count, "the count");
  const std::uint32_t status = finish(call, [&] {
    *count = static_cast<std::uint32_t>(adapterCount());
    call.result("count", shown(*count));
    return kZorSuccess;
  });
  countFailed_ = status != kZorSuccess;
  return status;
}

std::uint32_t Framework::getNumberOfSubsystem(std::uint32_t* count) {
  Call call = begin("zr_getNumberOfSubsystem", {});
  requireDiscovered(call);
  requireRecord(call, count, "the count");
  return finish(call, [&] {
    *count = static_cast<std::uint32_t>(controllers_.size() - adapterCount());
    call.result("count", shown(*count));
    return kZorSuccess;
  });
}

// Here alone a subsystem goes by its subsystem number, which is the running index.
std::optional<std::size_t> Framework::listedIndex(ControllerAddress address) const {
  const std::size_t adapters = adapterCount();
  if (address.adapterNumber < adapters && address.subsystemNumber == 0) {
    return address.adapterNumber;
  }
  const std::size_t index = address.subsystemNumber;
  if (address.adapterNumber == 0 && index >= adapters && index < controllers_.size()) return index;
  return {};
}

std::uint32_t Framework::getSubsystemInfo(ControllerAddress address, std::uint32_t sel,
                                          SubsystemInfo* info) {
  Call call = begin("zr_getSubsystemInfo", {{"address", shown(address)}, {"sel", shown(sel)}});
  requireDiscovered(call);
  requireSel(call, sel);
  call.require(address.reserved2 == 0 && address.reserved6 == 0,
               "reserved bits of the address are not 0");
  const std::optional<std::size_t> index = listedIndex(address);
  if (!index && countFailed_) call.refuse(kStatusUnknownAddress);
  call.require(index.has_value(), "no controller has this address", kStatusUnknownAddress);
  if (requireRecord(call, info, "SubsystemInfo")) {
    call.require(isZero(*info), "SubsystemInfo is not zeroed");
  }
  return finish(call, [&] {
    const ControllerRecord& record = controllers_[index.value_or(0)].record;
    std::memcpy(info->wwn, record.wwnBytes.data(), sizeof info->wwn);
    return kZorSuccess;
  });
}

void Framework::getStringWWN(WwnString* text, const void* wwnField) {
  Call call = begin("decod_getStringWWN", {});
  requireDiscovered(call);
  requireRecord(call, wwnField, "the WWN");
  if (requireRecord(call, text, "WwnString")) {
    call.require(isZero(*text), "WwnString is not zeroed");
  }
  if (call.refusal() == 0) {
    const std::string bytes(static_cast<const char*>(wwnField), kWwnSize);
    const auto found =
        std::find_if(controllers_.begin(), controllers_.end(),
                     [&](const Controller& each) { return each.record.wwnBytes == bytes; });
    const std::string wwn = found == controllers_.end() ? hexOfBytes(bytes) : found->record.wwn;
    putText(text->text, wwn);
    call.result("text", wwn);
  }
  call.journalTo(journal_, {});
}

std::uint32_t Framework::getControllerInfo(std::uint16_t adapterNumber, std::uint32_t sel,
                                           const CtrlInfoRequest* request, void* buffer,
                                           std::uint32_t size) {
  Call call =
      begin("zr_getControllerInfo",
            {{"adapter", shown(adapterNumber)}, {"sel", shown(sel)}, {"size", shown(size)}});
  Controller& controller = addressed(call, ControllerAddress{adapterNumber, 0, 0, 0}, sel);
  if (requireRecord(call, request, "CtrlInfoRequest")) {
    call.require(isExact(*request), "CtrlInfoRequest does not hold exactly the fixed words");
  }
  requireRecord(call, buffer, "the controller information buffer");
  if (call.require(size == ZOR_CONTROLLER_INFO_SIZE, "the size of the buffer is not 65535")) {
    call.require(isZero(buffer, size), "the controller information buffer is not zeroed");
  }
  failed_ = false;
  infoFilled_ = false;
  infoBuffer_ = static_cast<char*>(buffer);
  current_ = call.refusal() == 0 ? &controller : nullptr;
  controller.bridgeChecked = false;
  controller.nvramRead.reset();
  controller.nvramPrepared.reset();
  return finish(call, [&] {
    isStillFlashing(controller);  // what has come to its end shows
    fillPages(infoBuffer_, controller.record);
    infoFilled_ = true;
    call.result("product_id", hexText(controller.record.productId, 4));
    return kZorSuccess;
  });
}

std::uint32_t Framework::locateBufferCtrlInfo(void* buffer, std::uint32_t size, std::uint32_t zero,
                                              std::uint32_t pageNumber, void** page) {
  Call call = begin("decod_locateBufferCtrlInfo",
                    {{"size", shown(size)}, {"zero", shown(zero)}, {"page", shown(pageNumber)}});
  requireDiscovered(call);
  call.require(infoFilled_ && buffer == infoBuffer_,
               "the buffer is not the one that was filled last");
  call.require(size == ZOR_CONTROLLER_INFO_SIZE, "the size of the buffer is not 65535");
  call.require(zero == 0, "the third argument is not 0");
  call.require(pageNumber < std::size(kPageOffsets), "there is no page of this number");
  requireRecord(call, page, "the page pointer");
  return finish(call, [&] {
    *page = pageAt(infoBuffer_, pageNumber);
    return kZorSuccess;
  });
}

std::uint32_t Framework::getCurrentDeviceInterface(ControllerAddress address, std::uint32_t sel,
                                                   DeviceInterfaceInfo* info) {
  Call call =
      begin("zr_getCurrentDeviceInterface", {{"address", shown(address)}, {"sel", shown(sel)}});
  const Controller& controller = addressed(call, address, sel);
  if (requireRecord(call, info, "DeviceInterfaceInfo")) {
    call.require(isZero(*info), "DeviceInterfaceInfo is not zeroed");
  }
  return finish(call, [&] {
    // Thunderbolt shows itself only when the bridge is asked for its version.
    info->at33 = controller.record.attached == ControllerRecord::Attachment::other ? 0 : 1;
    call.result("byte33", shown(info->at33));
    return kZorSuccess;
  });
}

const char* Framework::errorDescription(std::uint32_t status) {
  Call call = begin("getErrorDescription", {{"status", shown(status)}});
  const char* text = describeStatus(status);
  call.result("text", text);
  call.journalTo(journal_, {});
  return text;
}

}  // namespace kelvane::simulator
