// The sub-command check: examines a shared folder and a bundle as the worker will see them.
#pragma once

#include <string>

#include "console/checks/Finding.h"
#include "console/checks/RecordChecks.h"
#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct CheckOptions {
  std::string sharedFolder;
  std::string bundle;  // empty: the shared folder alone is examined
  CopyOptions copy = {};
};

// All findings, first those of the shared folder (which ends with "/"), then the bundle's. Nothing
// is changed, and the worker is not started.
Findings findingsOf(const std::string& sharedFolder, const std::string& bundle,
                    const WorkerRuns& workerRuns);

// The same of the shared folder as it is now, or of a copy, which no bundle goes with.
Findings findingsOf(const Places& places, const std::string& bundle);

// Shows the findings, for machines as one list; where there are none, what was looked at. Returns
// the exit code. Raises Failure for a folder that cannot be meant.
int check(const CheckOptions& options, const Screen& screen);

Command checkCommand();

}  // namespace kelvane::console
