// The completion script for zsh.

#include "console/command_line/completion/Completion.h"
#include "console/command_line/completion/ValuesCommand.h"
#include "console/display/ShellQuoting.h"
#include "console/display/Words.h"

namespace kelvane::console {
namespace {

constexpr char kZshBeginning[] =
    R"zsh(#compdef kelvane-console
# Completion of kelvane-console in zsh, made by "kelvane-console completion zsh".

_kelvane_console_values() {
  local one
  local -a found
  for one in ${(f)"$(${~program} values $1 -- "${typed[@]}" 2>/dev/null)"}; do
    found+=("${${one%%$'\t'*}//:/\\:}:${one#*$'\t'}")
  done
  _describe -V $1 found
}

_kelvane_console() {
  local context state state_descr line program=${(Q)words[1]}
  local -a typed
  typed=("${(@)words[2,CURRENT-1]}")
  typeset -A opt_args
  _arguments -C -A "-*" \
)zsh";

constexpr char kCommands[] = R"(    '1:command:->command' \
    '*::argument:->argument' && return
  case $state in
    command)
      local -a commands=(
)";

constexpr char kZshAfterCommands[] = R"(      )
      _describe command commands ;;
    argument)
      case $line[1] in
)";

constexpr char kZshEnd[] = R"(      esac ;;
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

std::string actionFor(const Option& option) {
  switch (option.kind) {
    case ValueKind::folder:
      return "_files -/";
    case ValueKind::file:
      return "_files";
    case ValueKind::assignedFile:
      return "{compset -P \"*=\" && _files}";
    case ValueKind::choice:
      return between("(", joined(option.choices, " "), ")");
    case ValueKind::logId:
    case ValueKind::product:
      // Behind a blank, which keeps the words as they are.
      return std::string(" _kelvane_console_values ").append(askedFor(option.kind));
    case ValueKind::none:
    case ValueKind::text:
      break;
  }
  return " ";
}

// The names of an option that has several: one of them excludes the others.
std::string exclusion(const Option& option) {
  return option.names.size() > 1 ? between("(", joined(option.names, " "), ")") : std::string();
}

// What follows an option's name.
std::string explanation(const Option& option) {
  std::string text = between("[", escaped(option.description), "]");
  if (option.kind == ValueKind::none) return text;
  return text + ":" + escaped(option.valueName) + ":" + actionFor(option);
}

// One phrase for each of the option's names.
std::string optionPhrases(const Option& option, const std::string& indent) {
  const bool takesValue = option.kind != ValueKind::none;
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

std::string argumentPhrase(const Option& argument, std::size_t position,
                           const std::string& indent) {
  std::string place = argument.repeated ? "*" : std::to_string(position);
  if (!argument.repeated && !argument.required) place += ":";
  const std::string phrase = place + ":" + escaped(argument.valueName) + ":" + actionFor(argument);
  return indent + shellQuoted(phrase) + " \\\n";
}

std::string commandCase(const Command& command) {
  const std::string indent(12, ' ');
  std::string phrases;
  for (const Option& option : command.options) {
    phrases += optionPhrases(option, indent);
  }
  std::size_t position = 0;
  for (const Option& argument : command.arguments) {
    phrases += argumentPhrase(argument, ++position, indent);
  }
  return "        " + command.name + ")\n          _arguments \\\n" + phrases + indent +
         "&& return ;;\n";
}

}  // namespace

std::string zshCompletion(const CommandTable& table) {
  std::string script = kZshBeginning;
  for (const Option& option : table.options) script += optionPhrases(option, "    ");
  script += kCommands;
  for (const Command& command : table.commands) {
    script += "        " + shellQuoted(command.name + ":" + escaped(command.description)) + "\n";
  }
  script += kZshAfterCommands;
  for (const Command& command : table.commands) script += commandCase(command);
  return script + kZshEnd;
}

}  // namespace kelvane::console
