// A question to a framework: it is loaded and asked in a process of its own, so that one that hangs
// or crashes takes nothing along.
#pragma once

#include <functional>
#include <string>

#include "platform/Value.h"
#include "zorapi/Discovery.h"

namespace kelvane::console {

#define KELVANE_LOOKING_FUNCTIONS(FUNCTION) \
  KELVANE_DISCOVERY_FUNCTIONS(FUNCTION)     \
  FUNCTION(zr_getCurrentDeviceInterface)    \
  FUNCTION(zr_mac_checkUSBFWVersion)        \
  FUNCTION(zr_getFDLImageInfo)              \
  FUNCTION(zr_getCPLDImageInfo)             \
  FUNCTION(zr_getUSBImageInfo)              \
  FUNCTION(getErrorDescription)

// The framework's functions that only look: none of them opens a flash process or changes anything
// in a controller.
struct LookingFunctions : framework::DiscoveryFunctions {
  decltype(&::zr_getCurrentDeviceInterface) zr_getCurrentDeviceInterface;
  decltype(&::zr_mac_checkUSBFWVersion) zr_mac_checkUSBFWVersion;
  decltype(&::zr_getFDLImageInfo) zr_getFDLImageInfo;
  decltype(&::zr_getCPLDImageInfo) zr_getCPLDImageInfo;
  decltype(&::zr_getUSBImageInfo) zr_getUSBImageInfo;
  decltype(&::getErrorDescription) getErrorDescription;
};

// Says what comes next, such as "discovering the controllers": where the framework does not come
// back from it, the user is told.
using Step = std::function<void(const std::string&)>;

// What is asked; its answer. Raises Failure where the framework gives none.
using Question = std::function<platform::Value(const LookingFunctions&, const Step&)>;

// The answer of the framework in this library. Raises Failure: kNoAnswer where it cannot be
// loaded, hangs, crashes or refuses, with what it said on standard error.
platform::Value askFramework(const std::string& library, const Question& question);

// A status as it is shown: "0x0402 the device was not found".
std::string statusText(const LookingFunctions& zorapi, std::uint32_t status);

}  // namespace kelvane::console
