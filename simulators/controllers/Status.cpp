#include "simulators/controllers/Status.h"

#include <algorithm>
#include <iterator>

namespace kelvane::simulator {
namespace {

struct Description {
  std::uint32_t status;
  const char* text;
};

constexpr Description kDescriptions[] = {
    {kZorSuccess, "no error"},
    {kStatusInvalidParameter, "invalid parameter"},
    {kStatusInternal, "internal error"},
    {kZorOutOfMemory, "out of memory"},
    {kStatusNotInitialised, "the framework is not initialised"},
    {kStatusNotDiscovered, "the controllers have not been discovered"},
    {kZorUsbNothingToDo, "nothing to do"},
    {kStatusFleetUnusable, "the fleet of simulated controllers cannot be used"},
    {kStatusUnsupportedCommand, ZOR_TEXT_UNSUPPORTED_COMMAND},
    {kZorDeviceNotFound, "the device was not found"},
    {kStatusUnknownAddress, "no controller has this address"},
    {kZorThunderbolt, "the controller is attached by Thunderbolt"},
    {kZorFlashProcessRunning, "another flash process is running"},
    {kStatusCpldUpToDate, ZOR_TEXT_CPLD_UP_TO_DATE},
    {kStatusImageUnreadable, "the firmware image cannot be read"},
    {kStatusImageDamaged, "the firmware image is damaged"},
    {kZorFlashFailed, "the flash failed"},
    {kZorUnsupportedProduct, "the product is not supported"},
    {kStatusImageOtherProduct, "the firmware image is for another product"},
    {kStatusImageOtherKind, "the firmware image is of another kind"},
    {kZorCpldFlashAccepted, "the CPLD flash was accepted"},
    {kStatusNoFlashProcess, "no flash process is open"},
    {kStatusNotTransferred, "no firmware image has been transferred"},
    {kStatusNotAnalysed, "the firmware image has not been analysed"},
    {kStatusNoFlashStarted, "no flash has been started"},
    {kStatusBridgeNotChecked, "the version of the USB bridge has not been checked"},
    {kStatusNvramNotPrepared, "the NVRAM has not been prepared"},
};

}  // namespace

const char* describeStatus(std::uint32_t status) {
  const auto* found =
      std::find_if(std::begin(kDescriptions), std::end(kDescriptions),
                   [status](const Description& known) { return known.status == status; });
  return found == std::end(kDescriptions) ? "unknown error" : found->text;
}

}  // namespace kelvane::simulator
