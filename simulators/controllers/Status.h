// The simulated framework's own status codes, beside those of zorapi.h, and the texts of all.
#pragma once

#include <cstdint>

#include "zorapi/zorapi.h"

namespace kelvane::simulator {

enum SimulatedStatus : std::uint32_t {
  kStatusInvalidParameter = 0x0001,    // an argument breaks the contract
  kStatusInternal = 0x0002,            // the simulator itself failed; stderr tells why
  kStatusNotInitialised = 0x0103,      // a call before zr_initialize
  kStatusNotDiscovered = 0x0104,       // a call before a successful zr_discover
  kStatusFleetUnusable = 0x0106,       // zr_discover: the fleet file; stderr tells why
  kStatusUnsupportedCommand = 0x0401,  // never given by itself, for faults to play
  kStatusUnknownAddress = 0x0403,      // no controller has this address
  kStatusCpldUpToDate = 0x8051,        // also where the image has no CPLD part
  kStatusImageUnreadable = 0x8052,     // missing, unreadable, too large, not a regular file
  kStatusImageDamaged = 0x8053,        // not an image, cut short, a wrong checksum
  kStatusImageOtherProduct = 0x8056,
  kStatusImageOtherKind = 0x8057,  // a standard image on the QVXF path, or the other way
  kStatusNoFlashProcess = 0x8059,
  kStatusNotTransferred = 0x805A,
  kStatusNotAnalysed = 0x805B,
  kStatusNoFlashStarted = 0x805C,
  kStatusBridgeNotChecked = 0x805D,  // bridge firmware before its version check
  kStatusNvramNotPrepared = 0x805E,
};

// A constant text for every code; one generic text for those without their own.
const char* describeStatus(std::uint32_t status);

}  // namespace kelvane::simulator
