// ZORAPI, the controller framework, as a library in the bundle.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "console/checks/Finding.h"

namespace kelvane::console {

// Every function that the worker calls.
inline constexpr const char* kFrameworkFunctions[] = {
    "zr_initialize",
    "zr_discover",
    "zr_getNumberOfHBA",
    "zr_getNumberOfSubsystem",
    "zr_getSubsystemInfo",
    "decod_getStringWWN",
    "zr_getControllerInfo",
    "decod_locateBufferCtrlInfo",
    "zr_getCurrentDeviceInterface",
    "getErrorDescription",
    "zr_getFDLImageInfo",
    "zr_getCPLDImageInfo",
    "zr_getUSBImageInfo",
    "zr_initializeFlashProcess",
    "zr_checkFlashImage",
    "zr_transferFlashImage",
    "zr_verifyFlashImage",
    "zr_flashImageEx",
    "zr_getFlashProgress",
    "zr_finalizeFlashProcess",
    "zr_checkQVXFFlashImage",
    "zr_transferQVXFFlashImage",
    "zr_analyzeQVXFImage",
    "zr_flashQVXFImage",
    "zr_getFlashQVXFImageStatus",
    "zr_finializeQVXFImage",
    "zr_initializeCPLDProcess",
    "zr_flashCPLDBin",
    "zr_getCPLDProgress",
    "zr_finalizeCPLDProcess",
    "zr_mac_checkUSBFWVersion",
    "zr_mac_getNVRAM",
    "zr_mac_flashUSBFWbin",
    "zr_mac_setNVRAM",
    "zr_mac_flashNVRAM",
};

// What came of loading a library in a process of its own, where it can do no harm.
struct LibraryTrial {
  std::string fault;                 // why it could not be loaded; empty where it could
  std::vector<std::string> missing;  // the functions that it has not
};
LibraryTrial tryLibrary(const std::string& path);

// The names that the framework may have in the bundle's folder for it, the usual one first. One
// source file for each system.
std::span<const char* const> frameworkLibraries();

// The framework's path in the bundle; where none is there the one that it should have.
std::string frameworkPath(const std::string& bundle);

// There, loadable, complete.
Findings frameworkFindings(const std::string& path);

}  // namespace kelvane::console
