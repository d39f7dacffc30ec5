// The sub-command devices: which controllers the bundle's framework finds.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/display/Screen.h"
#include "platform/Value.h"

namespace kelvane::console {

struct DevicesOptions {
  std::string bundle;
  std::string sharedFolder;  // empty: only the bundle's own worker is looked for
};

// Shows the devices as a table, with what is wrong with them; for machines as one list. Returns the
// exit code. Raises Failure where a worker runs or the framework gives no answer.
int devices(const DevicesOptions& options, const Screen& screen);

// Shows these devices, which the framework in the library has told; the exit code.
int showDevices(const platform::Value& all, const std::string& library, const Screen& screen);

// Raises Failure (kBusy) where a worker runs in the shared folder, if one is given, or one of the
// bundle's anywhere: it may be flashing the controllers that are to be asked.
void requireNoWorker(const std::string& bundle, const std::string& sharedFolder);

Command devicesCommand();

}  // namespace kelvane::console
