// What a framework tells of its devices.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "console/devices/FrameworkQuestion.h"
#include "platform/Value.h"

namespace kelvane::console {

// The keys of a device, as machines get it.
namespace device {

inline constexpr char kDeviceId[] = "device_id";  // number: its place in the discovery list
inline constexpr char kListedAs[] = "listed_as";  // one of the two
inline constexpr char kAdapter[] = "adapter";
inline constexpr char kSubsystem[] = "subsystem";
inline constexpr char kWwn[] = "wwn";               // missing where it does not answer
inline constexpr char kProductId[] = "product_id";  // "0x4301"; likewise
inline constexpr char kUpdate[] = "update";         // one of the three
inline constexpr char kStandard[] = "standard";
inline constexpr char kQvxf[] = "qvxf";
inline constexpr char kNone[] = "none";
inline constexpr char kAttached[] = "attached";  // one of the three
inline constexpr char kBridge[] = "bridge";
inline constexpr char kThunderbolt[] = "thunderbolt";
inline constexpr char kOther[] = "other";
inline constexpr char kFailed[] = "failed";  // the function that gave no answer, if one did
inline constexpr char kStatus[] = "status";  // its status: "0x0402 the device was not found"

}  // namespace device

// A controller whose information was read.
struct Controller {
  ControllerAddress address = {};
  framework::Product product{0};
  std::unique_ptr<std::uint8_t[]> information = {};  // the pages stand in it
  void* page0 = nullptr;
  void* page1 = nullptr;
};

// What a function answered instead of what it was asked for.
struct Refused {
  const char* function;
  std::uint32_t status;
};

class Discovery {
 public:
  // Neither is owned.
  Discovery(const LookingFunctions& zorapi, const Step& step) : zorapi_(zorapi), step_(step) {}

  // The discovery list, found as the worker finds it. Raises Failure where there is none.
  std::vector<framework::ListedDevice> list() const;
  // Reads the controller of the device as the worker does; nothing where it refuses.
  std::optional<Controller> read(const framework::ListedDevice& listed, Refused& refused) const;

  // All devices: an array of dictionaries with the keys above.
  platform::Value devices() const;

 private:
  platform::Value describe(const framework::ListedDevice& listed) const;
  const char* attachmentOf(const Controller& controller, Refused& refused) const;

  const LookingFunctions& zorapi_;
  const Step& step_;
};

// How a controller of this product is updated: one of the three of device::kUpdate.
const char* wayOf(const framework::Product& product);

// "0x4301"
std::string identifierText(const framework::Product& product);

}  // namespace kelvane::console
