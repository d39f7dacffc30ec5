#include "tests/docs/HeaderNames.h"

#include <stdexcept>

#include "tests/docs/Page.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

constexpr char kWorker[] = "Modules/Mac/FWUpdater/Kelvane_mac/";

// The lines between the two, which are whole lines.
std::vector<std::string> linesBetween(const std::string& file, const std::string& first,
                                      const std::string& last) {
  std::vector<std::string> found;
  bool isInside = false;
  for (const std::string& line : testing::splitLines(readSource(kWorker + file))) {
    if (line == last) isInside = false;
    if (isInside) found.push_back(line);
    if (line == first) isInside = true;
  }
  if (found.empty()) throw std::runtime_error(file + " has no \"" + first + "\"");
  return found;
}

// What stands in quotes on these lines, of each line the first.
std::vector<std::string> quotedIn(const std::vector<std::string>& lines) {
  std::vector<std::string> found;
  for (const std::string& line : lines) {
    const std::size_t quote = line.find('"');
    if (quote == std::string::npos) continue;
    found.push_back(line.substr(quote + 1, line.find('"', quote + 1) - quote - 1));
  }
  return found;
}

}  // namespace

std::vector<std::string> constantsOf(const std::string& nameSpace) {
  return quotedIn(
      linesBetween("Kelvane.h", "namespace " + nameSpace + " {", "}  // namespace " + nameSpace));
}

std::vector<std::string> commandNames() {
  return quotedIn(linesBetween("jobs/JobRunner.cpp", "constexpr Command kCommands[] = {", "};"));
}

// A declaration begins its line: a type, the name, and a parenthesis.
std::vector<std::string> frameworkFunctions() {
  std::vector<std::string> found;
  for (const std::string& line :
       linesBetween("zorapi/zorapi.h", "// --- Start and discovery", "}  // extern \"C\"")) {
    const std::size_t parenthesis = line.find('(');
    if (parenthesis == std::string::npos || line[0] == ' ' || line[0] == '/') continue;
    const std::size_t blank = line.rfind(' ', parenthesis);
    found.push_back(line.substr(blank + 1, parenthesis - blank - 1));
  }
  return found;
}

std::map<std::string, std::int64_t> frameworkStatuses() {
  std::map<std::string, std::int64_t> found;
  for (const std::string& line :
       linesBetween("zorapi/zorapi.h", "enum ZorStatus : std::uint32_t {", "};")) {
    const std::size_t sign = line.find(" = ");
    if (sign == std::string::npos) continue;
    found[line.substr(2, sign - 2)] = std::stoll(line.substr(sign + 3), nullptr, 0);
  }
  return found;
}

}  // namespace kelvane::docs
