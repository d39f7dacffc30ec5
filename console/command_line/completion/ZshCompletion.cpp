// The completion script for zsh.

#include "console/command_line/completion/Completion.h"
#include "console/display/ShellQuoting.h"

namespace kelvane::console {
namespace {

constexpr char kBeginning[] =
    R"(#compdef kelvane-console
# Completion of kelvane-console in zsh, made by "kelvane-console completion zsh".

_kelvane_console() {
  local context state state_descr line
  typeset -A opt_args
  _arguments -C \
)";

constexpr char kCommands[] = R"(    '1:command:->command' \
    '*::argument:->argument' && return
  case $state in
    command)
      local -a commands=(
)";

constexpr char kAfterCommands[] = R"(      )
      _describe command commands ;;
    argument)
      case $line[1] in
)";

constexpr char kEnd[] = R"(      esac ;;
  esac
}

if [[ $funcstack[1] == _kelvane-console ]]; then
  _kelvane_console "$@"
else
  compdef _kelvane_console kelvane-console
fi
)";

// The signs that part a phrase are text where they stand in one of its pieces.
std::string escaped(const std::string& text) {
  std::string safe;
  for (const char character : text) {
    if (character == ':' || character == '[' || character == ']') safe += '\\';
    safe += character;
  }
  return safe;
}

std::string between(const char* opening, const std::string& text, const char* closing) {
  return opening + text + closing;
}

std::string actionFor(const OptionShape& option) {
  switch (kindOf(option)) {
    case ValueKind::folder:
      return "_files -/";
    case ValueKind::file:
      return "_files";
    case ValueKind::assignedFile:
      return "{compset -P \"*=\" && _files}";
    case ValueKind::choice:
      return between("(", joined(option.choices, " "), ")");
    default:
      return " ";
  }
}

// The names of an option that has several: one of them excludes the others.
std::string exclusion(const OptionShape& option) {
  return option.names.size() > 1 ? between("(", joined(option.names, " "), ")") : std::string();
}

// What follows an option's name.
std::string explanation(const OptionShape& option) {
  std::string text = between("[", escaped(option.description), "]");
  if (kindOf(option) == ValueKind::none) return text;
  return text + ":" + escaped(option.valueName) + ":" + actionFor(option);
}

// One phrase for each of the option's names.
std::string optionPhrases(const OptionShape& option, const std::string& indent) {
  const bool takesValue = kindOf(option) != ValueKind::none;
  std::string all;
  for (const std::string& name : option.names) {
    std::string phrase = exclusion(option);
    phrase += name;
    if (takesValue && name.rfind("--", 0) == 0) phrase += "=";
    phrase += explanation(option);
    all += indent;
    all += shellQuoted(phrase);
    all += " \\\n";
  }
  return all;
}

std::string argumentPhrase(const OptionShape& argument, std::size_t position,
                           const std::string& indent) {
  std::string place = argument.repeated ? "*" : std::to_string(position);
  if (!argument.repeated && !argument.required) place += ":";
  const std::string phrase = place + ":" + escaped(argument.valueName) + ":" + actionFor(argument);
  return indent + shellQuoted(phrase) + " \\\n";
}

std::string commandCase(const CommandShape& command) {
  const std::string indent(12, ' ');
  std::string phrases;
  for (const OptionShape& option : command.options) {
    phrases += optionPhrases(option, indent);
  }
  std::size_t position = 0;
  for (const OptionShape& argument : command.arguments) {
    phrases += argumentPhrase(argument, ++position, indent);
  }
  return "        " + command.name + ")\n          _arguments \\\n" + phrases + indent +
         "&& return ;;\n";
}

}  // namespace

std::string zshCompletion(const CommandShape& app) {
  std::string script = kBeginning;
  for (const OptionShape& option : app.options) script += optionPhrases(option, "    ");
  script += kCommands;
  for (const CommandShape& command : app.commands) {
    script += "        " + shellQuoted(command.name + ":" + escaped(command.description)) + "\n";
  }
  script += kAfterCommands;
  for (const CommandShape& command : app.commands) script += commandCase(command);
  return script + kEnd;
}

}  // namespace kelvane::console
