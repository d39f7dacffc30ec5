#include "tests/installation/InstalledTree.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "tests/installation/Elf.h"
#include "tests/support/Program.h"

namespace kelvane::test {

namespace fs = std::filesystem;

namespace {

void install(const std::string& prefix, const std::vector<std::string>& options) {
  std::vector<std::string> argv = {KELVANE_CMAKE, "--install", KELVANE_BUILD, "--prefix", prefix};
  argv.insert(argv.end(), options.begin(), options.end());
  const Ended installed = runProgram(argv, "/");
  if (installed.exitStatus != 0) throw std::runtime_error(installed.err);
}

}  // namespace

void installComponent(const std::string& component, const std::string& prefix) {
  install(prefix, {"--component", component});
}

void installPlainly(const std::string& prefix) { install(prefix, {}); }

std::vector<std::string> filesBelow(const std::string& folder) {
  std::vector<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_directory() && !entry.is_symlink()) continue;
    found.push_back(entry.path().lexically_relative(folder).string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<std::string> binariesBelow(const std::string& folder) {
  std::vector<std::string> found = filesBelow(folder);
  std::erase_if(found, [&](const std::string& name) {
    const std::string path = folder + "/" + name;
    return fs::is_symlink(path) || !isElf(path);
  });
  return found;
}

}  // namespace kelvane::test
