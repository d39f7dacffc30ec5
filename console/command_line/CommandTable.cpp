#include "console/command_line/CommandTable.h"

#include <algorithm>
#include <stdexcept>

#include "console/command_line/completion/CompletionCommand.h"
#include "console/command_line/completion/ValuesCommand.h"
#include "console/commands/Check.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Devices.h"
#include "console/commands/Explain.h"
#include "console/commands/Jobs.h"
#include "console/commands/OnlineUpdate.h"
#include "console/commands/Remove.h"
#include "console/commands/Report.h"
#include "console/commands/Retry.h"
#include "console/commands/ShowLog.h"
#include "console/commands/UpdateFw.h"
#include "console/commands/UpdateSw.h"

namespace kelvane::console {
namespace {

constexpr char kHelpOption[] = "--help";
constexpr char kVersionOption[] = "--version";

constexpr char kFooter[] =
    "Exit status: 0 success, 1 the job failed or check has findings, 2 bad usage,\n"
    "3 the worker could not be started or died, 4 the job file is damaged or cannot be read\n"
    "or written, or the log cannot be rotated, 5 not found, 6 another job is running,\n"
    "7 not confirmed, 8 the framework gives no answer, 70 internal error, 130 interrupted\n"
    "(a worker that was started goes on).";

std::vector<Command> allCommands() {
  return {devicesCommand(),  queryCommand(),  downloadCommand(),   updateSwCommand(),
          updateFwCommand(), retryCommand(),  watchCommand(),      listCommand(),
          showCommand(),     removeCommand(), logCommand(),        checkCommand(),
          explainCommand(),  reportCommand(), completionCommand(), valuesCommand()};
}

Option helpFlag() {
  return {.names = {"-h", kHelpOption},
          .kind = ValueKind::none,
          .description = "Print this help message and exit"};
}

Option versionFlag() {
  return {.names = {kVersionOption}, .kind = ValueKind::none, .description = "Show the version"};
}

// As it stands before the sub-command, which may do without it.
Option beforeCommand(Option option) {
  option.required = false;
  return option;
}

bool isNamed(const Option& option, const char* name) {
  return std::count(option.names.begin(), option.names.end(), name) != 0;
}

CommandTable makeTable() {
  CommandTable table{.name = "kelvane-console",
                     .version = KELVANE_VERSION,
                     .description = "Submits jobs to the enclosure worker and follows them.",
                     .footer = kFooter,
                     .options = {helpFlag(), versionFlag(), beforeCommand(sharedOption()),
                                 beforeCommand(bundleOption())},
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

bool isHelp(const Option& option) { return isNamed(option, kHelpOption); }

bool isVersion(const Option& option) { return isNamed(option, kVersionOption); }

}  // namespace kelvane::console
