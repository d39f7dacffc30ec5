// The USB bridge of a controller on the standard path: its own firmware and NVRAM.
#pragma once

#include <cstdint>

#include "zorapi/zorapi.h"

namespace kelvane {

// Brings the bridge to the firmware of the entry's image, where the controller is attached through
// the bridge, is not reached by Thunderbolt, and has another version. `usb` is the record as the
// image filled it, or all zero; `nvram` is all zero. Returns the status that becomes the job's: 0
// unless the interface query or one of the flash calls failed. Raises where the log does.
std::uint32_t updateUsbBridge(ControllerAddress address, FlashParm& flash, UsbParm& usb,
                              UsbNvram& nvram);

}  // namespace kelvane
