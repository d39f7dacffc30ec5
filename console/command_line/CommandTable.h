// The table of the sub-commands: one list names them all.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"

namespace kelvane::console {

struct CommandTable {
  std::string name;     // of the program
  std::string version;  // "1.0.0"
  std::string description;
  std::string footer;
  std::vector<Option> options;    // before the sub-command
  std::vector<Command> commands;  // in the order of the help
};

// The console's own. "--help" is the first option of the program and of every sub-command.
const CommandTable& commandTable();

// The sub-command of that name; std::out_of_range where there is none.
const Command& commandNamed(const std::string& name, const CommandTable& table = commandTable());

// Whether it asks for the help, which the command line answers itself.
bool isHelp(const Option& option);

// The same of the program's version.
bool isVersion(const Option& option);

}  // namespace kelvane::console
