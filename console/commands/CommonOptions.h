// The options and arguments that many sub-commands have.
#pragma once

#include <string>

#include "console/commands/Command.h"

namespace kelvane::console {

inline constexpr char kSharedOption[] = "--shared";
inline constexpr char kBundleOption[] = "--bundle";
inline constexpr char kJsonOption[] = "--json";

inline constexpr char kYesFlag[] = "--yes";

inline constexpr char kLogIdArgument[] = "log_id";

Option sharedOption();
Option bundleOption();
Option yesFlag();
Option jsonFlag(const std::string& description = "Show JSON for machines");

}  // namespace kelvane::console
