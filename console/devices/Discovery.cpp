#include "console/devices/Discovery.h"

#include "console/job/ExitCode.h"
#include "platform/Text.h"

namespace kelvane::console {

using framework::ListedDevice;
using framework::Product;
using platform::Value;

const char* wayOf(const Product& product) {
  if (product.isQvxf()) return device::kQvxf;
  return product.isStandard() ? device::kStandard : device::kNone;
}

std::string identifierText(const Product& product) {
  const std::string digits = platform::format("%x", product.identifier());
  return "0x" + std::string(4 - digits.size(), '0') + digits;
}

std::vector<ListedDevice> Discovery::list() const {
  step_("discovering the controllers");
  framework::DeviceCounts counts;
  const std::uint32_t status = framework::startDiscovery(zorapi_, counts);
  std::vector<ListedDevice> devices;
  framework::listDevices(zorapi_, counts, [&](const ListedDevice& listed) {
    devices.push_back(listed);
    step_("discovering the controllers (" + std::to_string(devices.size()) + " so far)");
  });
  if (devices.empty() && status != 0) {
    throw Failure(kNoAnswer, "discovering the controllers fails: " + statusText(zorapi_, status));
  }
  return devices;
}

std::optional<Controller> Discovery::read(const ListedDevice& listed, Refused& refused) const {
  step_("asking the controller " + listed.wwn);
  Controller controller{.address = framework::addressOf(listed.id)};
  controller.information = std::make_unique<std::uint8_t[]>(ZOR_CONTROLLER_INFO_SIZE);
  void* information = controller.information.get();
  refused = {"zr_getControllerInfo",
             framework::readControllerInfo(zorapi_, controller.address, information)};
  if (refused.status != 0) return std::nullopt;
  refused = {"decod_locateBufferCtrlInfo",
             framework::locatePage(zorapi_, information, 0, controller.page0)};
  if (refused.status != 0) return std::nullopt;
  refused.status = framework::locatePage(zorapi_, information, 1, controller.page1);
  if (refused.status != 0) return std::nullopt;
  controller.product = Product(framework::productIdentifier(controller.page0));
  return controller;
}

// Thunderbolt shows itself only to who asks for the bridge's version. The record without an image,
// which the worker too hands over where an image has no part for the bridge, asks for nothing else.
const char* Discovery::attachmentOf(const Controller& controller, Refused& refused) const {
  DeviceInterfaceInfo interface = {};
  refused = {"zr_getCurrentDeviceInterface",
             zorapi_.zr_getCurrentDeviceInterface(controller.address, 0, &interface)};
  if (refused.status != 0) return nullptr;
  if (!framework::isAttachedByBridge(interface)) return device::kOther;
  if (!controller.product.isStandard()) return device::kBridge;
  UsbParm usb = {};
  std::uint32_t updateFlag = 0;
  const bool isThunderbolt =
      zorapi_.zr_mac_checkUSBFWVersion(controller.address, 0, &usb, &updateFlag) == kZorThunderbolt;
  return isThunderbolt ? device::kThunderbolt : device::kBridge;
}

Value Discovery::describe(const ListedDevice& listed) const {
  Value described = Value::dictionary(
      {{device::kDeviceId, Value::integer(listed.id)},
       {device::kListedAs, listed.isSubsystem ? device::kSubsystem : device::kAdapter}});
  Refused refused{"zr_getSubsystemInfo", listed.status};
  if (refused.status == 0) {
    described.set(device::kWwn, listed.wwn);
    if (const std::optional<Controller> controller = read(listed, refused)) {
      described.set(device::kProductId, identifierText(controller->product));
      described.set(device::kUpdate, wayOf(controller->product));
      const char* attachment = attachmentOf(*controller, refused);
      if (attachment != nullptr) described.set(device::kAttached, attachment);
    }
  }
  if (refused.status != 0) {
    described.set(device::kFailed, refused.function);
    described.set(device::kStatus, statusText(zorapi_, refused.status));
  }
  return described;
}

Value Discovery::devices() const {
  Value all = Value::array();
  for (const ListedDevice& listed : list()) all.append(describe(listed));
  return all;
}

}  // namespace kelvane::console
