#include "tests/installation/Elf.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/support/LogLine.h"
#include "tests/support/Program.h"

namespace kelvane::testing {
namespace {

// What stands in brackets in the lines of the dynamic section with this tag, such as "(NEEDED)".
std::vector<std::string> dynamicEntries(const std::string& path, const std::string& tag) {
  const Ended read =
      runProgram({KELVANE_READELF, "--dynamic", "--wide", path}, "/", {{"LC_ALL", "C"}});
  if (read.exitStatus != 0 || !read.err.empty()) throw std::runtime_error(path + ": " + read.err);
  std::vector<std::string> found;
  for (const std::string& line : splitLines(read.out)) {
    if (line.find(tag) == std::string::npos) continue;
    const std::size_t start = line.find('[') + 1;
    found.push_back(line.substr(start, line.rfind(']') - start));
  }
  return found;
}

bool isOneOf(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool isElf(const std::string& path) {
  std::string start(4, '\0');
  std::ifstream(path, std::ios::binary).read(start.data(), 4);
  return start ==
         "\x7f"
         "ELF";
}

std::vector<std::string> neededLibraries(const std::string& path) {
  return dynamicEntries(path, "(NEEDED)");
}

std::string libraryName(const std::string& path) { return dynamicEntries(path, "(SONAME)").at(0); }

std::vector<std::string> runPaths(const std::string& path) {
  std::vector<std::string> found = dynamicEntries(path, "(RUNPATH)");
  for (const std::string& old : dynamicEntries(path, "(RPATH)")) found.push_back(old);
  return found;
}

std::map<std::string, std::string> loadedLibraries(const std::string& program) {
  const Ended traced =
      runProgram({program}, "/", {{"LD_TRACE_LOADED_OBJECTS", "1"}, {"LD_LIBRARY_PATH", ""}});
  std::map<std::string, std::string> found;
  for (const std::string& line : splitLines(traced.out)) {
    const std::size_t arrow = line.find(" => ");
    if (arrow == std::string::npos) continue;  // the loader itself
    const std::size_t name = line.find_first_not_of("\t ");
    const std::size_t path = arrow + 4;
    const std::string place = line.substr(path, line.rfind(" (") - path);
    const bool isFound = !place.empty() && place.front() == '/';
    found[line.substr(name, arrow - name)] =
        isFound ? std::filesystem::canonical(place).string() : "";
  }
  if (found.empty()) throw std::runtime_error(program + ": " + traced.out + traced.err);
  return found;
}

bool isSystemRuntime(const std::string& library) {
  return isOneOf({"libc.so.6", "libm.so.6", "libgcc_s.so.1", "libstdc++.so.6"}, library) ||
         library.rfind("ld-linux", 0) == 0;
}

bool isSanitizer(const std::string& library) {
#ifdef __SANITIZE_ADDRESS__
  return isOneOf({"libasan.so.8", "libubsan.so.1"}, library);
#else
  return library.empty();  // of no library
#endif
}

}  // namespace kelvane::testing
