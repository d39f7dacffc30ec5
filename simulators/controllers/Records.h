// The framework's records: whether they are as the contract has them, and how a journal shows them.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Value.h"
#include "zorapi/zorapi.h"

namespace kelvane::simulator {

// Whether every byte is 0. Bytes between the fields are not part of a record.
bool isZero(const void* bytes, std::size_t size);
bool isZero(const UsbParm& record);
bool isZero(const CpldParm& record);
template <typename Record>
bool isZero(const Record& record) {
  return isZero(&record, sizeof record);
}

// Whether the record holds the fixed words and nothing else.
bool isExact(const InitParm& record);
bool isExact(const CtrlInfoRequest& record);

// Whether the image's path ends inside its field.
bool hasTerminatedPath(const FlashParm& flash);
// The path; of one that does not end, what is there.
std::string imagePath(const FlashParm& flash);
// Whether nothing is set but the product identifier and the path.
bool hasOnlyProductAndPath(const FlashParm& flash);

// Texts in the records' byte fields.
template <std::size_t size>
std::string textOf(const std::uint8_t (&field)[size]) {
  std::string text;
  for (std::size_t i = 0; i < size && field[i] != 0; ++i) {
    text.push_back(static_cast<char>(field[i]));
  }
  return text;
}

// For the journal; null for a null pointer.
platform::Value shown(std::uint32_t number);
platform::Value shown(ControllerAddress address);
platform::Value shown(const FlashParm* flash);
platform::Value shown(const UsbParm* usb);
platform::Value shown(const CpldParm* cpld);
platform::Value shown(const FwImgInfo* image);
platform::Value shown(const FlashProgress& progress);
platform::Value shown(const CpldProgress& progress);

}  // namespace kelvane::simulator
