#include "simulators/controllers/Records.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "platform/Utf8.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {

using platform::Value;

namespace {

template <typename Record>
bool isSame(const Record& left, const Record& right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

// Whether all is 0 from one field to the next: the record's bytes without those in between.
bool isZeroBetween(const void* record, std::size_t begin, std::size_t end) {
  return isZero(static_cast<const char*>(record) + begin, end - begin);
}

}  // namespace

bool isZero(const void* bytes, std::size_t size) {
  const auto* first = static_cast<const unsigned char*>(bytes);
  return std::all_of(first, first + size, [](unsigned char byte) { return byte == 0; });
}

bool isZero(const UsbParm& record) {
  constexpr std::size_t kEndOfBytes = offsetof(UsbParm, at10) + sizeof(UsbParm::at10);
  constexpr std::size_t kEndOfTexts = offsetof(UsbParm, at63) + sizeof(UsbParm::at63);
  return isZeroBetween(&record, 0, kEndOfBytes) &&
         isZeroBetween(&record, offsetof(UsbParm, at12), kEndOfTexts) && record.flashRequest == 0;
}

bool isZero(const CpldParm& record) {
  return record.at0 == 0 && isZero(record.at4, sizeof record.at4);
}

bool isExact(const InitParm& record) {
  InitParm fixed;
  std::memset(&fixed, 0, sizeof fixed);
  fixed.at16 = 0xBABA0001;
  fixed.at28 = 300;
  fixed.at140 = 1;
  fixed.at146 = 1;
  fixed.at148 = 0x0401;
  fixed.at160 = 16;
  fixed.at164 = 4;
  return isSame(record, fixed);
}

bool isExact(const CtrlInfoRequest& record) {
  CtrlInfoRequest fixed;
  std::memset(&fixed, 0, sizeof fixed);
  fixed.at4 = 1;
  fixed.at40 = 255;
  return isSame(record, fixed);
}

bool hasTerminatedPath(const FlashParm& flash) {
  const auto& path = flash.rpf_uTransfer.rpf_u8ImageFilePath;
  return std::find(std::begin(path), std::end(path), '\0') != std::end(path);
}

std::string imagePath(const FlashParm& flash) {
  const auto& path = flash.rpf_uTransfer.rpf_u8ImageFilePath;
  return {std::begin(path), std::find(std::begin(path), std::end(path), '\0')};
}

bool hasOnlyProductAndPath(const FlashParm& flash) {
  FlashParm rest;
  std::memcpy(&rest, &flash, sizeof rest);
  rest.productId = 0;
  std::memset(&rest.rpf_uTransfer, 0, sizeof rest.rpf_uTransfer);
  return isZero(rest);
}

Value shown(std::uint32_t number) { return Value::integer(number); }

Value shown(ControllerAddress address) {
  Value all = Value::dictionary(
      {{"adapter", shown(address.adapterNumber)}, {"subsystem", shown(address.subsystemNumber)}});
  if (address.reserved2 != 0 || address.reserved6 != 0) {
    all.set("reserved2", shown(address.reserved2));
    all.set("reserved6", shown(address.reserved6));
  }
  return all;
}

Value shown(const FlashParm* flash) {
  if (flash == nullptr) return Value::null();
  return Value::dictionary({{"path", platform::repairedUtf8(imagePath(*flash))},
                            {"product_id", hexText(flash->productId, 4)},
                            {"byte1", shown(flash->at1)}});
}

Value shown(const UsbParm* usb) {
  if (usb == nullptr) return Value::null();
  return Value::dictionary({{"usb_u32checkUSB", shown(usb->usb_u32checkUSB)},
                            {"version", platform::repairedUtf8(textOf(usb->at39))},
                            {"flash_request", shown(usb->flashRequest)}});
}

Value shown(const CpldParm* cpld) {
  if (cpld == nullptr) return Value::null();
  return Value::dictionary({{"present", shown(cpld->at0)},
                            {"size", shown(cpld->at4[0])},
                            {"checksum", shown(cpld->at4[1])}});
}

Value shown(const FwImgInfo* image) {
  if (image == nullptr) return Value::null();
  return Value::dictionary({{"size", shown(image->at0)}, {"checksum", shown(image->at4)}});
}

Value shown(const FlashProgress& progress) {
  return Value::dictionary({{"status_byte", shown(progress.fp_u8Status)},
                            {"stage", shown(progress.fp_u8Stage)},
                            {"percent", shown(progress.fp_u8Percent)}});
}

Value shown(const CpldProgress& progress) {
  return Value::dictionary({{"status_byte", shown(progress.rdcp_u8Status)},
                            {"stage", shown(progress.rdcp_u8Stage)},
                            {"percent", shown(progress.rdcp_u8Percent)},
                            {"retries", shown(progress.rdcp_u8RetryCount)}});
}

}  // namespace kelvane::simulator
