#include "console/commands/CommonOptions.h"

namespace kelvane::console {

Option sharedOption() {
  return {.names = {kSharedOption},
          .kind = ValueKind::folder,
          .valueName = "FOLDER",
          .description = "The folder shared with the worker",
          .variable = "KELVANE_SHARED",
          .required = true};
}

Option bundleOption() {
  return {.names = {kBundleOption},
          .kind = ValueKind::folder,
          .valueName = "APP.app",
          .description = "The application bundle that holds the worker",
          .variable = "KELVANE_BUNDLE"};
}

Option yesFlag() {
  return {.names = {kYesFlag},
          .kind = ValueKind::none,
          .description = "Do not ask before an application is removed or a controller flashed"};
}

Option jsonFlag(const std::string& description) {
  return {.names = {kJsonOption}, .kind = ValueKind::none, .description = description};
}

}  // namespace kelvane::console
