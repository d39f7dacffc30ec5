// Libraries in ZORAPI's place that are none: what they are is chosen by a definition.
//
// INCOMPLETE: it lacks zr_discover; what it has says that all is well, and it talks when loaded.
// SIGNAL: loading it raises that signal; it has all functions, or it would not be loaded so far.
// DISCOVERY_SIGNAL: zr_discover complains and raises that signal.

#include <csignal>
#include <cstdint>
#include <cstdio>

namespace {

struct Start {
  Start() {
#ifdef SIGNAL
    std::signal(SIGNAL, SIG_DFL);
    std::raise(SIGNAL);
#elif !defined(DISCOVERY_SIGNAL)
    std::puts("the framework greets");
    std::fflush(stdout);
#endif
  }
};

const Start start;

}  // namespace

#define STUB(name)      \
  std::uint32_t name(); \
  std::uint32_t name() { return 0; }

extern "C" {
#ifdef DISCOVERY_SIGNAL
std::uint32_t zr_discover();
std::uint32_t zr_discover() {
  std::fputs("the framework complains\n", stderr);
  std::signal(DISCOVERY_SIGNAL, SIG_DFL);
  std::raise(DISCOVERY_SIGNAL);
  return 0;
}
#elif !defined(INCOMPLETE)
STUB(zr_discover)
#endif
STUB(zr_initialize)
STUB(zr_getNumberOfHBA)
STUB(zr_getNumberOfSubsystem)
STUB(zr_getSubsystemInfo)
STUB(decod_getStringWWN)
STUB(zr_getControllerInfo)
STUB(decod_locateBufferCtrlInfo)
STUB(zr_getCurrentDeviceInterface)
STUB(getErrorDescription)
STUB(zr_getFDLImageInfo)
STUB(zr_getCPLDImageInfo)
STUB(zr_getUSBImageInfo)
STUB(zr_initializeFlashProcess)
STUB(zr_checkFlashImage)
STUB(zr_transferFlashImage)
STUB(zr_verifyFlashImage)
STUB(zr_flashImageEx)
STUB(zr_getFlashProgress)
STUB(zr_finalizeFlashProcess)
STUB(zr_checkQVXFFlashImage)
STUB(zr_transferQVXFFlashImage)
STUB(zr_analyzeQVXFImage)
STUB(zr_flashQVXFImage)
STUB(zr_getFlashQVXFImageStatus)
STUB(zr_finializeQVXFImage)
STUB(zr_initializeCPLDProcess)
STUB(zr_flashCPLDBin)
STUB(zr_getCPLDProgress)
STUB(zr_finalizeCPLDProcess)
STUB(zr_mac_checkUSBFWVersion)
STUB(zr_mac_getNVRAM)
STUB(zr_mac_flashUSBFWbin)
STUB(zr_mac_setNVRAM)
STUB(zr_mac_flashNVRAM)
}
