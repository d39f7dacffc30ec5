#include "firmware/UsbBridge.h"

#include "firmware/UpdateLog.h"
#include "zorapi/Discovery.h"

namespace kelvane {
namespace {

// Firmware, then the NVRAM made to go with it, then the NVRAM written; a failure stops the rest.
// Returns the status of the last call made.
std::uint32_t flashBridge(ControllerAddress address, FlashParm& flash, UsbParm& usb,
                          UsbNvram& nvram) {
  usb.flashRequest = 1;
  UPDATE_LOG("qvxflash start zr_mac_flashUSBFWbin\n");
  std::uint32_t status = zr_mac_flashUSBFWbin(address, 0, &flash, &usb);
  if (status == kZorThunderbolt) status = kZorSuccess;
  if (status != 0) return status;
  status = zr_mac_setNVRAM(address, 0, &flash, &usb, &nvram);
  if (status != 0) return status;
  UPDATE_LOG("qvxflash -u usb start zr_mac_flashNVRAM\n");
  return zr_mac_flashNVRAM(address, 0, &nvram);
}

}  // namespace

std::uint32_t updateUsbBridge(ControllerAddress address, FlashParm& flash, UsbParm& usb,
                              UsbNvram& nvram) {
  DeviceInterfaceInfo interface = {};
  std::uint32_t status = zr_getCurrentDeviceInterface(address, 0, &interface);
  if (status != 0) return status;
  if (!framework::isAttachedByBridge(interface)) return kZorSuccess;

  std::uint32_t updateFlag = 0;
  status = zr_mac_checkUSBFWVersion(address, 0, &usb, &updateFlag);
  if (status == 0) status = zr_mac_getNVRAM(address, 0, &nvram);
  if (status == kZorThunderbolt) {
    UPDATE_LOG("thunderbolt device detected, end _flashUSBFW process");
    return kZorSuccess;
  }
  if (status != 0) {
    UPDATE_LOG("unknown error, end usb fw update process");
    return kZorSuccess;
  }
  if (updateFlag == 0) {
    UPDATE_LOG("usbfwupdatecheck = %d, same usb fw version", 0);
    UPDATE_LOG("same usb fw version, won't flash");
    return kZorSuccess;
  }
  UPDATE_LOG("usbfwupdatecheck = %d, different usb fw version, update usb fw",
             static_cast<std::int32_t>(updateFlag));
  UPDATE_LOG("start _flashUSBFW, flashing Usb fw...");
  status = flashBridge(address, flash, usb, nvram);
  return status == kZorUsbNothingToDo ? kZorSuccess : status;
}

}  // namespace kelvane
