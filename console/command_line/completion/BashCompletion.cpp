// The completion script for bash, versions 3.2 and later.

#include "console/command_line/completion/Completion.h"
#include "console/command_line/completion/ValuesCommand.h"
#include "console/display/ShellQuoting.h"
#include "console/display/Words.h"

namespace kelvane::console {
namespace {

// "--option=value" reaches the function as three words; "WWN=IMAGE" does too, and the image is a
// file.
constexpr char kBashBeginning[] =
    R"(# Completion of kelvane-console in bash, made by "kelvane-console completion bash".

_kelvane_console_reply() {
  local line
  COMPREPLY=()
  while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen "$@" -- "$word")
}

_kelvane_console_paths() {
  compopt -o filenames 2>/dev/null
  _kelvane_console_reply "$@"
}

# What the console knows of; with more than one to choose from, each with what it is. The users of
# the keys that put in one after the other (37, 42) get the values alone.
_kelvane_console_values() {
  local value about program=${COMP_WORDS[0]} values=() told=()
  if [[ $program == '~/'* ]]; then program=$HOME${program:1}; fi
  while IFS=$'\t' read -r value about; do
    [[ $value == "$word"* ]] || continue
    printf -v value %q "$value"
    values+=("$value") told+=("$value  $about")
  done < <("$program" values "$1" -- "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null)
  COMPREPLY=("${values[@]}")
  if [[ ${#values[@]} -gt 1 && $COMP_TYPE != 37 && $COMP_TYPE != 42 ]]; then
    COMPREPLY=("${told[@]}")
  fi
}

_kelvane_console() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command='' assigned='' i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
)";

constexpr char kBashAfterCommands[] = R"(    esac
  done
  if [[ $word == = ]]; then
    word='' assigned=yes
  elif [[ $before == = && COMP_CWORD -gt 2 ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]} assigned=yes
  fi
  COMPREPLY=()
  case "$command $before" in
)";

constexpr char kAfterValues[] = R"(  esac
  case $command in
)";

constexpr char kBashEnd[] = R"(  esac
}
complete -F _kelvane_console kelvane-console
)";

std::string replyFor(const Option& option) {
  switch (option.kind) {
    case ValueKind::folder:
      return "_kelvane_console_paths -d";
    case ValueKind::file:
      return "_kelvane_console_paths -f";
    case ValueKind::choice:
      return "_kelvane_console_reply -W " + shellQuoted(joined(option.choices, " "));
    case ValueKind::logId:
    case ValueKind::product:
      return std::string("_kelvane_console_values ").append(askedFor(option.kind));
    case ValueKind::none:
    case ValueKind::text:
    case ValueKind::assignedFile:
      break;
  }
  return ":";
}

// The case that completes an option's value; nothing for a flag.
std::string valueCase(const std::string& command, const Option& option) {
  if (option.kind == ValueKind::none) return {};
  const std::string before = command + " ";
  std::vector<std::string> patterns;
  for (const std::string& name : option.names) patterns.push_back(shellQuoted(before + name));
  return "    " + joined(patterns, "|") + ") " + replyFor(option) + "; return ;;\n";
}

std::string valueCases(const CommandTable& table) {
  std::string cases;
  for (const Option& option : table.options) cases += valueCase("", option);
  for (const Command& command : table.commands) {
    for (const Option& option : command.options) cases += valueCase(command.name, option);
  }
  return cases;
}

std::vector<std::string> namesOf(const std::vector<Option>& options) {
  std::vector<std::string> names;
  for (const Option& option : options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::vector<std::string> commandNames(const CommandTable& table) {
  std::vector<std::string> names;
  for (const Command& command : table.commands) names.push_back(command.name);
  return names;
}

// What a word that is no option is completed to, as the first argument says. All arguments of a
// sub-command are of one kind.
std::string argumentReply(const Command& command) {
  if (command.arguments.empty()) return {};
  const Option& argument = command.arguments.front();
  if (argument.kind == ValueKind::assignedFile) {
    return "[[ $assigned ]] && { _kelvane_console_paths -f; return; }; ";
  }
  const std::string reply = replyFor(argument);
  return reply == ":" ? "" : "[[ $word != -* ]] && { " + reply + "; return; }; ";
}

std::string wordCase(const std::string& name, const Command& command,
                     const std::vector<std::string>& words) {
  return "    " + name + ") " + argumentReply(command) + "_kelvane_console_reply -W " +
         shellQuoted(joined(words, " ")) + " ;;\n";
}

std::string wordCases(const CommandTable& table) {
  std::vector<std::string> first = commandNames(table);
  const std::vector<std::string> options = namesOf(table.options);
  first.insert(first.end(), options.begin(), options.end());
  std::string cases = wordCase("''", {}, first);
  for (const Command& command : table.commands) {
    cases += wordCase(command.name, command, namesOf(command.options));
  }
  return cases;
}

}  // namespace

std::string bashCompletion(const CommandTable& table) {
  return kBashBeginning + ("      " + joined(commandNames(table), "|")) +
         ") command=${COMP_WORDS[i]}; break ;;\n" + kBashAfterCommands + valueCases(table) +
         kAfterValues + wordCases(table) + kBashEnd;
}

}  // namespace kelvane::console
