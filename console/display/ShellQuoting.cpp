#include "console/display/ShellQuoting.h"

namespace kelvane::console {

std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') quoted += "'\\'";
    quoted += character;
  }
  return quoted + "'";
}

std::string asShellWord(const std::string& text) {
  constexpr char kPlain[] =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz/._-+,:@%";
  const bool isPlain = !text.empty() && text.find_first_not_of(kPlain) == std::string::npos;
  return isPlain ? text : shellQuoted(text);
}

std::string consoleCommand(const std::string& subCommand, const std::string& sharedFolder,
                           const std::string& logId) {
  std::string command = "kelvane-console " + subCommand;
  if (!sharedFolder.empty()) command.append(" --shared ").append(asShellWord(sharedFolder));
  return command.append(" ").append(asShellWord(logId));
}

}  // namespace kelvane::console
