// ZORAPI, the controller framework: its functions by name, and the status codes that the worker
// tests or produces. How the functions are called is laid down by the worker's zorapi.h.
#pragma once

#include <cstdint>

// Name, code.
#define KELVANE_ZOR_STATUSES(STATUS)                                                           \
  STATUS(kZorSuccess, 0x0000)                                                                  \
  STATUS(kZorOutOfMemory, 0x0101)         /* no controller information buffer was to be had */ \
  STATUS(kZorUsbNothingToDo, 0x0105)      /* USB calls: as good as success */                  \
  STATUS(kZorDeviceNotFound, 0x0402)      /* no job, no input parameters, or no such WWN */    \
  STATUS(kZorThunderbolt, 0x4027)         /* USB calls: attached by Thunderbolt */             \
  STATUS(kZorFlashProcessRunning, 0x8050) /* another flash process is running */               \
  STATUS(kZorFlashFailed, 0x8054)         /* the progress record reported a failed flash */    \
  STATUS(kZorUnsupportedProduct, 0x8055)  /* the product has no standard flash path */         \
  STATUS(kZorCpldFlashAccepted, 0x8058)   /* zr_flashCPLDBin: exactly as success */

enum ZorStatus : std::uint32_t {
#define KELVANE_ZOR_ENUMERATOR(name, code) name = (code),
  KELVANE_ZOR_STATUSES(KELVANE_ZOR_ENUMERATOR)
#undef KELVANE_ZOR_ENUMERATOR
};

namespace kelvane::framework {

struct NamedStatus {
  std::uint32_t code;
  const char* name;
};

inline constexpr NamedStatus kStatuses[] = {
#define KELVANE_ZOR_NAMED(name, code) {code, #name},
    KELVANE_ZOR_STATUSES(KELVANE_ZOR_NAMED)
#undef KELVANE_ZOR_NAMED
};

struct Function {
  const char* name;
  bool hasStatus = true;  // whether it returns one
};

// Every function that the worker calls, in zorapi.h's order.
inline constexpr Function kFunctions[] = {
    {"zr_initialize"},
    {"zr_discover"},
    {"zr_getNumberOfHBA"},
    {"zr_getNumberOfSubsystem"},
    {"zr_getSubsystemInfo"},
    {"decod_getStringWWN", false},
    {"zr_getControllerInfo"},
    {"decod_locateBufferCtrlInfo"},
    {"zr_getCurrentDeviceInterface"},
    {"getErrorDescription", false},
    {"zr_getFDLImageInfo"},
    {"zr_getCPLDImageInfo"},
    {"zr_getUSBImageInfo"},
    {"zr_initializeFlashProcess"},
    {"zr_checkFlashImage"},
    {"zr_transferFlashImage"},
    {"zr_verifyFlashImage"},
    {"zr_flashImageEx"},
    {"zr_getFlashProgress"},
    {"zr_finalizeFlashProcess"},
    {"zr_checkQVXFFlashImage"},
    {"zr_transferQVXFFlashImage"},
    {"zr_analyzeQVXFImage"},
    {"zr_flashQVXFImage"},
    {"zr_getFlashQVXFImageStatus"},
    {"zr_finializeQVXFImage"},
    {"zr_initializeCPLDProcess"},
    {"zr_flashCPLDBin"},
    {"zr_getCPLDProgress"},
    {"zr_finalizeCPLDProcess"},
    {"zr_mac_checkUSBFWVersion"},
    {"zr_mac_getNVRAM"},
    {"zr_mac_flashUSBFWbin"},
    {"zr_mac_setNVRAM"},
    {"zr_mac_flashNVRAM"},
};

}  // namespace kelvane::framework
