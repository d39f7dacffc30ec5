// The sub-command completion: prints what completes the command line.
#pragma once

#include "console/commands/Command.h"

namespace kelvane::console {

Command completionCommand();

}  // namespace kelvane::console
