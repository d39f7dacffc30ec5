// Discovery: how the framework is started, what it finds, and what a controller's product
// identifier says of its update. For the worker, which is linked to the framework, and for those
// who load it at run time to look at controllers without flashing them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "platform/Utf8.h"
#include "zorapi/zorapi.h"

namespace kelvane::framework {

// The framework's functions that discovery calls.
#define KELVANE_DISCOVERY_FUNCTIONS(FUNCTION) \
  FUNCTION(zr_initialize)                     \
  FUNCTION(zr_discover)                       \
  FUNCTION(zr_getNumberOfHBA)                 \
  FUNCTION(zr_getNumberOfSubsystem)           \
  FUNCTION(zr_getSubsystemInfo)               \
  FUNCTION(decod_getStringWWN)                \
  FUNCTION(zr_getControllerInfo)              \
  FUNCTION(decod_locateBufferCtrlInfo)

// The same, wherever they come from, in this order.
struct DiscoveryFunctions {
  decltype(&::zr_initialize) zr_initialize;
  decltype(&::zr_discover) zr_discover;
  decltype(&::zr_getNumberOfHBA) zr_getNumberOfHBA;
  decltype(&::zr_getNumberOfSubsystem) zr_getNumberOfSubsystem;
  decltype(&::zr_getSubsystemInfo) zr_getSubsystemInfo;
  decltype(&::decod_getStringWWN) decod_getStringWWN;
  decltype(&::zr_getControllerInfo) zr_getControllerInfo;
  decltype(&::decod_locateBufferCtrlInfo) decod_locateBufferCtrlInfo;
};

struct DeviceCounts {
  std::uint32_t adapters = 0;
  std::uint32_t subsystems = 0;
};

// One device of the discovery list.
struct ListedDevice {
  std::int32_t id = 0;  // its place in the list, by which all other functions address it
  bool isSubsystem = false;
  std::uint32_t status = 0;  // of the question for it; not 0: it does not answer
  std::string wwn = {};      // empty where it does not answer
};

// What a controller's product identifier says of its update, by its high byte.
class Product {
 public:
  explicit Product(std::uint16_t identifier) : identifier_(identifier) {}
  std::uint16_t identifier() const { return identifier_; }
  bool isQvxf() const { return high() == 0x48 || high() == 0x49; }
  bool hasUsbImage() const { return (high() >= 0x43 && high() <= 0x47) || high() == 0x88; }
  bool isStandard() const { return high() == 0x42 || hasUsbImage(); }

 private:
  unsigned high() const { return identifier_ >> 8U; }
  std::uint16_t identifier_;
};

inline InitParm initialParameters() {
  InitParm parm = {};
  parm.at16 = 0xBABA0001;
  parm.at28 = 300;
  parm.at140 = 1;
  parm.at146 = 1;
  parm.at148 = 0x0401;
  parm.at160 = 16;
  parm.at164 = 4;
  return parm;
}

// Starts the framework, discovers and counts. Neither the start's status counts nor that of the
// adapters' number.
inline std::uint32_t startDiscovery(const DiscoveryFunctions& zorapi, DeviceCounts& counts) {
  const InitParm parm = initialParameters();
  zorapi.zr_initialize(&parm);
  const std::uint32_t status = zorapi.zr_discover(0);
  if (status != 0) return status;
  zorapi.zr_getNumberOfHBA(&counts.adapters);
  return zorapi.zr_getNumberOfSubsystem(&counts.subsystems);
}

inline std::string wwnText(const DiscoveryFunctions& zorapi, const SubsystemInfo& info) {
  WwnString wwn = {};
  zorapi.decod_getStringWWN(&wwn, info.wwn);
  const char* end = std::find(std::begin(wwn.text), std::end(wwn.text), '\0');
  return platform::repairedUtf8({wwn.text, static_cast<std::size_t>(end - wwn.text)});
}

// Asks each device, the adapters first, and hands it to `found` before the next one is asked.
template <typename Found>
void listDevices(const DiscoveryFunctions& zorapi, const DeviceCounts& counts, const Found& found) {
  const std::uint64_t count = std::uint64_t{counts.adapters} + counts.subsystems;
  for (std::uint64_t i = 0; i < count; ++i) {
    ListedDevice device{.id = static_cast<std::int32_t>(i), .isSubsystem = i >= counts.adapters};
    ControllerAddress address = {};
    // A subsystem goes by the running index, not by its place among the subsystems: meant so.
    (device.isSubsystem ? address.subsystemNumber : address.adapterNumber) =
        static_cast<std::uint16_t>(i);
    SubsystemInfo info = {};
    device.status = zorapi.zr_getSubsystemInfo(address, 0, &info);
    if (device.status == 0) device.wwn = wwnText(zorapi, info);
    found(device);
  }
}

// The address of a device for all other functions, also of one that was listed as a subsystem:
// meant so.
inline ControllerAddress addressOf(std::int64_t deviceId) {
  return {static_cast<std::uint16_t>(deviceId), 0, 0, 0};
}

// Fills the buffer, of ZOR_CONTROLLER_INFO_SIZE bytes, with the controller's information pages.
inline std::uint32_t readControllerInfo(const DiscoveryFunctions& zorapi, ControllerAddress address,
                                        void* buffer) {
  CtrlInfoRequest request = {};
  request.at4 = 1;
  request.at40 = 255;
  std::memset(buffer, 0, ZOR_CONTROLLER_INFO_SIZE);
  return zorapi.zr_getControllerInfo(address.adapterNumber, 0, &request, buffer,
                                     ZOR_CONTROLLER_INFO_SIZE);
}

// A page that is not found leaves the pointer where it was.
inline std::uint32_t locatePage(const DiscoveryFunctions& zorapi, void* buffer,
                                std::uint32_t number, void*& page) {
  void* found = nullptr;
  const std::uint32_t status =
      zorapi.decod_locateBufferCtrlInfo(buffer, ZOR_CONTROLLER_INFO_SIZE, 0, number, &found);
  if (status == 0) page = found;
  return status;
}

inline std::uint16_t productIdentifier(const void* page0) {
  std::uint16_t identifier = 0;
  std::memcpy(&identifier,
              static_cast<const char*>(page0) + offsetof(ControllerInfoPage, ci_ProductID),
              sizeof identifier);
  return identifier;
}

inline bool isAttachedByBridge(const DeviceInterfaceInfo& interface) { return interface.at33 == 1; }

// The record that names the image for a controller; null: no image.
inline FlashParm flashParm(const Product& product, const char* imagePath) {
  FlashParm flash = {};
  auto& field = flash.rpf_uTransfer.rpf_u8ImageFilePath;
  if (imagePath != nullptr) {
    std::memcpy(field, imagePath, std::min(std::strlen(imagePath), sizeof field - 1));
  }
  flash.productId = product.identifier();
  return flash;
}

// Whether the text is of a failure that does not keep a controller from getting its firmware; null
// is none.
inline bool isTolerable(const char* description) {
  return description != nullptr && (std::strcmp(description, ZOR_TEXT_UNSUPPORTED_COMMAND) == 0 ||
                                    std::strcmp(description, ZOR_TEXT_CPLD_UP_TO_DATE) == 0);
}

}  // namespace kelvane::framework
