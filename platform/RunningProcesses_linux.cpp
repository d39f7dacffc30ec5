#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "platform/RunningProcesses.h"

namespace kelvane::platform {

namespace fs = std::filesystem;

namespace {

bool isNumber(const std::string& name) {
  return name.find_first_not_of("0123456789") == std::string::npos;
}

// Each argument ends with a NUL byte.
std::vector<std::string> argumentsOf(const fs::path& process) {
  std::ifstream file(process / "cmdline", std::ios::binary);
  std::vector<std::string> arguments;
  for (std::string argument; std::getline(file, argument, '\0');) arguments.push_back(argument);
  return arguments;
}

}  // namespace

std::vector<RunningProcess> runningProcesses() {
  std::vector<RunningProcess> found;
  std::error_code failed;
  fs::directory_iterator entry("/proc", failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    const std::string name = entry->path().filename().string();
    if (!isNumber(name)) continue;
    RunningProcess process;
    process.id = std::stol(name);
    process.arguments = argumentsOf(entry->path());  // none of one that has ended meanwhile
    std::error_code untold;
    process.currentFolder = fs::read_symlink(entry->path() / "cwd", untold).string();
    if (!process.arguments.empty()) found.push_back(process);
  }
  return found;
}

}  // namespace kelvane::platform
