#include "console/command_line/completion/Completion.h"

#include <map>

namespace kelvane::console {
namespace {

using Script = std::string (*)(const CommandShape&);

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

std::string completionScript(const std::string& shell, const CommandShape& app) {
  return scripts().at(shell)(app);
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : separator) + word;
  return all;
}

}  // namespace kelvane::console
