#include "tests/installation/Elf.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/LogLine.h"
#include "tests/support/Program.h"

namespace kelvane::test {
namespace {

// What readelf says of the file with these options, line by line.
std::vector<std::string> linesOf(const std::string& path, const std::vector<std::string>& options) {
  std::vector<std::string> argv = {KELVANE_READELF, "--wide"};
  argv.insert(argv.end(), options.begin(), options.end());
  argv.push_back(path);
  const Ended read = runProgram(argv, "/", {{"LC_ALL", "C"}});
  if (read.exitStatus != 0 || !read.err.empty()) throw std::runtime_error(path + ": " + read.err);
  return splitLines(read.out);
}

bool hasLineWith(const std::vector<std::string>& lines, const std::vector<std::string>& words) {
  return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
    return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
      return line.find(word) != std::string::npos;
    });
  });
}

// What stands in brackets in the lines of the dynamic section with this tag, such as "(NEEDED)".
std::vector<std::string> dynamicEntries(const std::string& path, const std::string& tag) {
  std::vector<std::string> found;
  for (const std::string& line : linesOf(path, {"--dynamic"})) {
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

std::set<std::string> definedSymbols(const std::string& path) {
  std::set<std::string> found;
  for (const std::string& line : linesOf(path, {"--symbols"})) {
    std::istringstream columns(line);
    std::string number, value, size, type, binding, visibility, section, name;
    columns >> number >> value >> size >> type >> binding >> visibility >> section >> name;
    if (columns && section != "UND") found.insert(name);
  }
  return found;
}

Hardening hardeningOf(const std::string& path) {
  const std::vector<std::string> segments = linesOf(path, {"--segments"});
  const std::vector<std::string> dynamic = linesOf(path, {"--dynamic"});
  const std::vector<std::string> imported = linesOf(path, {"--dyn-syms"});
  Hardening found;
  found.positionIndependent = hasLineWith(linesOf(path, {"--file-header"}), {"Type:", "DYN"});
  found.readOnlyRelocations = hasLineWith(segments, {"GNU_RELRO"});
  found.immediateBinding = hasLineWith(dynamic, {"(FLAGS_1)", "NOW"});
  found.stackWithoutCode = hasLineWith(segments, {"GNU_STACK", " RW "});
  found.stackProtector = hasLineWith(imported, {" UND __stack_chk_fail"});
  found.fortified = hasLineWith(imported, {" UND __", "_chk@"});
  found.controlFlow = hasLineWith(linesOf(path, {"--notes"}), {"x86 feature:", "IBT", "SHSTK"});
  return found;
}

bool isSystemRuntime(const std::string& library) {
  return isOneOf({"libc.so.6", "libm.so.6", "libgcc_s.so.1", "libstdc++.so.6"}, library) ||
         library.rfind("ld-linux", 0) == 0;
}

}  // namespace kelvane::test
