#include "tests/tools/Script.h"

#include <filesystem>

#include "tests/support/LogLine.h"

namespace kelvane::tools {

namespace fs = std::filesystem;

test::Ended runScript(const std::string& name, const std::vector<std::string>& arguments) {
  std::vector<std::string> argv = {KELVANE_SOURCES "tools/" + name};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return test::runProgram(argv, KELVANE_SOURCES);
}

std::string lastLine(const std::string& text) {
  const std::vector<std::string> lines = test::splitLines(text);
  return lines.empty() ? "" : lines.back();
}

std::string writeProgram(const test::TempFolder& folder, const std::string& name,
                         const std::string& text) {
  std::string path = folder.write(name, "#!/bin/sh\n" + text);
  fs::permissions(path, fs::perms::owner_all);
  return path;
}

void copyTools(const test::TempFolder& folder) {
  fs::copy(KELVANE_SOURCES "tools", folder / "tools", fs::copy_options::recursive);
}

}  // namespace kelvane::tools
