// The command line: reads the arguments as the table of the sub-commands says, and runs one.
#pragma once

#include "console/command_line/CommandTable.h"

namespace kelvane::console {

class CommandLine {
 public:
  explicit CommandLine(const CommandTable& table = commandTable()) : table_(table) {}

  // Runs the sub-command that the arguments ask for; the exit code. Bad usage and help are told on
  // standard error and standard output. Raises what the sub-command raises, and Failure (bad usage)
  // where an option that it needs is given nowhere, or one has two values: it may stand before the
  // sub-command, too, and the environment stands in for it.
  int run(int argc, const char* const* argv) const;

 private:
  const CommandTable& table_;
};

}  // namespace kelvane::console
