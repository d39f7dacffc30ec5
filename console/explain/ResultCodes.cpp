#include "console/explain/ResultCodes.h"

#include <algorithm>
#include <iterator>

#include <strings.h>

#include "contract/Framework.h"
#include "contract/JobFile.h"

namespace kelvane::console {
namespace {

constexpr ResultCode kResultCodes[] = {
    {kZorSuccess, "kZorSuccess", job::kNoError,
     "The job is done. updateSW and getOnlineUpdateData end so in any case.", "nobody",
     "After updateSW look whether the application is there, after getOnlineUpdateData whether "
     "there is an output, after updateFW with a standard image whether cpld_percentage is 100.",
     false},
    {kZorOutOfMemory, "kZorOutOfMemory", "out of memory",
     "There was no memory to read a controller's information, or the framework lacked it in "
     "another step.",
     "user", "Close other programs or restart the computer.", true},
    {job::kFileNotFound, "kFileNotFound", job::kFileNotFoundText,
     "After a download a package is not where it belongs: the update engine did not bring it, or "
     "under another name.",
     "user",
     "Check the network, the service's address and the free space. If it stays, send the log and "
     "the job file to support.",
     true},
    {kZorUsbNothingToDo, "kZorUsbNothingToDo", "nothing to do",
     "A step had nothing to do. The USB bridge's flash takes this for success, so that as a result "
     "it comes from another step.",
     "support", "Find the job's last step in the log.", false},
    {kZorDeviceNotFound, "kZorDeviceNotFound", "the device was not found",
     "No controller has the WWN of an entry, or the job had no input parameters. The controllers "
     "after it were not started.",
     "user", "Switch the enclosure on, check its cable and the WWN, letter by letter.", true},
    {kZorThunderbolt, "kZorThunderbolt", "the controller is attached by Thunderbolt",
     "A step cannot be done over Thunderbolt. The USB bridge's update is left out for this without "
     "failing, so that as a result it comes from another step.",
     "support", "Find the job's last step in the log.", false},
    {kZorFlashProcessRunning, "kZorFlashProcessRunning", "another flash process is running",
     "The controller is being flashed already, for another program or for a job whose worker died.",
     "user",
     "Leave the enclosure powered, close other programs that update it, and wait some minutes.",
     true},
    {kZorFlashFailed, "kZorFlashFailed", "the flash failed",
     "The controller told that the flash of its firmware has failed.", "user",
     "Leave the enclosure powered and update it again. If it fails again, ask support before "
     "switching it off.",
     true},
    {kZorUnsupportedProduct, "kZorUnsupportedProduct", "the product is not supported",
     "The worker knows no way to update the firmware of this controller's product. Its CPLD may "
     "have been flashed.",
     "support", "Find the product identifier in the log, after ci_ProductID.", false},
    {kZorCpldFlashAccepted, "kZorCpldFlashAccepted", "the CPLD flash was accepted",
     "The start of a CPLD flash takes this for success, so that as a result it comes from another "
     "step.",
     "support", "Find the job's last step in the log.", false},
};

}  // namespace

std::span<const ResultCode> resultCodes() { return kResultCodes; }

const ResultCode* findResultCode(std::int64_t code) {
  const auto* found = std::find_if(std::begin(kResultCodes), std::end(kResultCodes),
                                   [code](const ResultCode& known) { return known.code == code; });
  return found == std::end(kResultCodes) ? nullptr : found;
}

const ResultCode* findResultCodeNamed(const std::string& name) {
  const auto* found = std::find_if(
      std::begin(kResultCodes), std::end(kResultCodes),
      [&name](const ResultCode& known) { return ::strcasecmp(known.name, name.c_str()) == 0; });
  return found == std::end(kResultCodes) ? nullptr : found;
}

}  // namespace kelvane::console
