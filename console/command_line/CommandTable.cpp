#include "console/command_line/CommandTable.h"

#include <algorithm>
#include <stdexcept>

#include "console/command_line/completion/CompletionCommand.h"
#include "console/commands/Check.h"
#include "console/commands/Explain.h"
#include "console/commands/Jobs.h"
#include "console/commands/OnlineUpdate.h"
#include "console/commands/ShowLog.h"
#include "console/commands/UpdateFw.h"
#include "console/commands/UpdateSw.h"

namespace kelvane::console {
namespace {

constexpr char kHelpOption[] = "--help";

constexpr char kFooter[] =
    "Exit status: 0 success, 1 the job failed or check has findings, 2 bad usage,\n"
    "3 the worker could not be started or died, 4 the job file is damaged or cannot be read\n"
    "or written, 5 not found, 70 internal error, 130 interrupted (the worker goes on).";

std::vector<Command> allCommands() {
  return {queryCommand(), downloadCommand(), updateSwCommand(),  updateFwCommand(),
          watchCommand(), listCommand(),     showCommand(),      logCommand(),
          checkCommand(), explainCommand(),  completionCommand()};
}

Option helpFlag() {
  return {.names = {"-h", kHelpOption},
          .kind = ValueKind::none,
          .description = "Print this help message and exit"};
}

CommandTable makeTable() {
  CommandTable table{.name = "kelvane-console",
                     .description = "Submits jobs to the enclosure worker and follows them.",
                     .footer = kFooter,
                     .options = {helpFlag()},
                     .commands = allCommands()};
  for (Command& command : table.commands) {
    command.options.insert(command.options.begin(), helpFlag());
  }
  return table;
}

}  // namespace

const CommandTable& commandTable() {
  static const CommandTable table = makeTable();
  return table;
}

const Command& commandNamed(const std::string& name, const CommandTable& table) {
  for (const Command& command : table.commands) {
    if (command.name == name) return command;
  }
  throw std::out_of_range("there is no sub-command " + name);
}

bool isHelp(const Option& option) {
  return std::count(option.names.begin(), option.names.end(), kHelpOption) != 0;
}

}  // namespace kelvane::console
