// The completion script for fish.

#include "console/command_line/completion/Completion.h"
#include "console/command_line/completion/ValuesCommand.h"
#include "console/display/ShellQuoting.h"
#include "console/display/Words.h"

namespace kelvane::console {
namespace {

constexpr char kFishBeginning[] =
    R"(# Completion of kelvane-console in fish, made by "kelvane-console completion fish".

complete -c kelvane-console -f

function __kelvane_console_values
  set -l typed (commandline -opc)
  set -l program (string replace -r '^~/' "$HOME/" -- $typed[1])
  command $program values $argv[1] -- $typed[2..-1] 2>/dev/null
end
)";

// Behind an option's value no sub-command may stand yet.
std::string beforeCommand(const CommandTable& table) {
  std::string condition = "not __fish_seen_subcommand_from";
  for (const Command& command : table.commands) condition.append(" ").append(command.name);
  return condition;
}

std::string insideOf(const Command& command) {
  return "__fish_seen_subcommand_from " + command.name;
}

std::string line(const std::string& condition, const std::string& rest) {
  return "complete -c kelvane-console -n " + shellQuoted(condition) + rest + "\n";
}

// What a value is completed to.
std::string words(const Option& option) {
  switch (option.kind) {
    case ValueKind::folder:
      return " -a '(__fish_complete_directories (commandline -ct))'";
    case ValueKind::file:
      return " -F";
    case ValueKind::choice:
      return " -a " + shellQuoted(joined(option.choices, " "));
    case ValueKind::logId:
    case ValueKind::product:
      return std::string(" -k -a '(__kelvane_console_values ")
          .append(askedFor(option.kind))
          .append(")'");
    case ValueKind::none:
    case ValueKind::text:
    case ValueKind::assignedFile:
      break;
  }
  return {};
}

std::string nameFlags(const Option& option) {
  std::string flags;
  for (const std::string& name : option.names) {
    const bool isLong = name.rfind("--", 0) == 0;
    flags += isLong ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return flags;
}

// Files are offered for a value, too, unless they are ruled out.
std::string valueFlag(const Option& option) {
  if (option.kind == ValueKind::none) return {};
  return option.kind == ValueKind::file ? " -r" : " -x";
}

std::string optionLine(const std::string& condition, const Option& option) {
  return line(condition, nameFlags(option) + valueFlag(option) + words(option) + " -d " +
                             shellQuoted(option.description));
}

std::string commandLines(const Command& command) {
  std::string lines;
  for (const Option& option : command.options) {
    lines += optionLine(insideOf(command), option);
  }
  for (const Option& argument : command.arguments) {
    const std::string values = words(argument);
    if (!values.empty()) lines += line(insideOf(command), values);
  }
  return lines;
}

}  // namespace

std::string fishCompletion(const CommandTable& table) {
  std::string script = kFishBeginning;
  const std::string before = beforeCommand(table);
  for (const Option& option : table.options) script += optionLine(before, option);
  for (const Command& command : table.commands) {
    script += line(before, " -a " + command.name + " -d " + shellQuoted(command.description));
  }
  for (const Command& command : table.commands) script += commandLines(command);
  return script;
}

}  // namespace kelvane::console
