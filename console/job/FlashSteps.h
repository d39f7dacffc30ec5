// A firmware job's controllers, as the log tells of them.
#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "console/job/LogFile.h"

namespace kelvane::console {

// What the worker did with one controller. Lines are as lineOf() makes them, empty where there is
// none.
struct FlashSteps {
  std::string image;    // as the job gives it
  std::string product;  // its identifier, hexadecimal digits
  bool isQvxf = false;  // by the product
  int cpldRetries = 0;
  std::string cpldFault;     // the line that tells why the CPLD was not flashed
  bool hasBegun = false;     // whether anything of a flash was started
  bool hasCpld = false;      // whether that of its CPLD was
  bool hasFirmware = false;  // whether that of its firmware was
  bool isAtImage = false;    // whether the last step looked at the image, before any flash
  bool isFlashed = false;    // whether the controller told the end of its firmware's flash
  std::string fault;         // the line that tells why its firmware was not
  // How far its firmware was when the fault came, in percent; nothing where the log does not tell.
  std::optional<int> firmwareAtFault = {};
  std::string wwn = {};  // as the job gives it
  // Since the first entry: the flash of its CPLD, if one was started, and that of its firmware,
  // which begins where the CPLD is over. Nothing of what is not over.
  std::optional<std::chrono::seconds> begin = {};
  std::optional<std::chrono::seconds> cpldBegin = {};
  std::optional<std::chrono::seconds> cpldEnd = {};
  std::optional<std::chrono::seconds> firmwareEnd = {};
  std::string lastStep;
};

// Of each controller that was found, in the order of the job's input entries.
std::vector<FlashSteps> flashStepsIn(std::span<const LogEntry> entries);

// Whether it tells that a flash, of a CPLD or of firmware, has failed or was not begun.
bool isFlashFault(const LogEntry& entry);

// The entry on one line: "14:03:07 updateFW: Flash Error".
std::string lineOf(const LogEntry& entry);

// The percentage of the controller's firmware that the worker wrote last before it wrote that the
// flash had ended; nothing where the log does not tell.
std::optional<int> firmwareBeforeTheEnd(std::span<const LogEntry> entries, const std::string& logId,
                                        const std::string& wwn);

}  // namespace kelvane::console
