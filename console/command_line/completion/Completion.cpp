#include "console/command_line/completion/Completion.h"

#include <map>

namespace kelvane::console {
namespace {

using Script = std::string (*)(const CommandTable&);

const std::map<std::string, Script>& scripts() {
  static const std::map<std::string, Script> all = {
      {"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}};
  return all;
}

}  // namespace

std::vector<std::string> completionShells() {
  std::vector<std::string> shells;
  for (const auto& [shell, script] : scripts()) shells.push_back(shell);
  return shells;
}

std::string completionScript(const std::string& shell, const CommandTable& table) {
  return scripts().at(shell)(table);
}

}  // namespace kelvane::console
