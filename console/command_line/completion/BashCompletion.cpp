// The completion script for bash, versions 3.2 and later.

#include "console/command_line/completion/Completion.h"
#include "console/display/ShellQuoting.h"

namespace kelvane::console {
namespace {

// "--option=value" reaches the function as three words; "WWN=IMAGE" does too, and the image is a
// file.
constexpr char kBeginning[] =
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

_kelvane_console() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command='' assigned='' i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
)";

constexpr char kAfterCommands[] = R"(    esac
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

constexpr char kEnd[] = R"(  esac
}
complete -F _kelvane_console kelvane-console
)";

std::string replyFor(const OptionShape& option) {
  switch (kindOf(option)) {
    case ValueKind::folder:
      return "_kelvane_console_paths -d";
    case ValueKind::file:
      return "_kelvane_console_paths -f";
    case ValueKind::choice:
      return "_kelvane_console_reply -W " + shellQuoted(joined(option.choices, " "));
    default:
      return ":";
  }
}

// The case that completes an option's value; nothing for a flag.
std::string valueCase(const std::string& command, const OptionShape& option) {
  if (kindOf(option) == ValueKind::none) return {};
  const std::string before = command + " ";
  std::vector<std::string> patterns;
  for (const std::string& name : option.names) patterns.push_back(shellQuoted(before + name));
  return "    " + joined(patterns, "|") + ") " + replyFor(option) + "; return ;;\n";
}

std::string valueCases(const CommandShape& app) {
  std::string cases;
  for (const OptionShape& option : app.options) cases += valueCase("", option);
  for (const CommandShape& command : app.commands) {
    for (const OptionShape& option : command.options) cases += valueCase(command.name, option);
  }
  return cases;
}

std::vector<std::string> optionNames(const CommandShape& command) {
  std::vector<std::string> names;
  for (const OptionShape& option : command.options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::vector<std::string> commandNames(const CommandShape& app) {
  std::vector<std::string> names;
  for (const CommandShape& command : app.commands) names.push_back(command.name);
  return names;
}

// What a word that is no option is completed to, as the first argument says. All arguments of a
// sub-command are of one kind.
std::string argumentReply(const CommandShape& command) {
  if (command.arguments.empty()) return {};
  const OptionShape& argument = command.arguments.front();
  if (kindOf(argument) == ValueKind::assignedFile) {
    return "[[ $assigned ]] && { _kelvane_console_paths -f; return; }; ";
  }
  const std::string reply = replyFor(argument);
  return reply == ":" ? "" : "[[ $word != -* ]] && { " + reply + "; return; }; ";
}

std::string wordCase(const std::string& name, const CommandShape& command,
                     const std::vector<std::string>& words) {
  return "    " + name + ") " + argumentReply(command) + "_kelvane_console_reply -W " +
         shellQuoted(joined(words, " ")) + " ;;\n";
}

std::string wordCases(const CommandShape& app) {
  std::vector<std::string> first = commandNames(app);
  const std::vector<std::string> options = optionNames(app);
  first.insert(first.end(), options.begin(), options.end());
  std::string cases = wordCase("''", {}, first);
  for (const CommandShape& command : app.commands) {
    cases += wordCase(command.name, command, optionNames(command));
  }
  return cases;
}

}  // namespace

std::string bashCompletion(const CommandShape& app) {
  return kBeginning + ("      " + joined(commandNames(app), "|")) +
         ") command=${COMP_WORDS[i]}; break ;;\n" + kAfterCommands + valueCases(app) +
         kAfterValues + wordCases(app) + kEnd;
}

}  // namespace kelvane::console
