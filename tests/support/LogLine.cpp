#include "tests/support/LogLine.h"

#include <sstream>

namespace kelvane::test {
namespace {

// Takes `before`, and then a field up to `end`, off the front of the text.
bool takeField(std::string& text, const std::string& before, const std::string& end,
               std::string& field) {
  if (text.rfind(before, 0) != 0) return false;
  const std::size_t length = text.find(end, before.size());
  if (length == std::string::npos) return false;
  field = text.substr(before.size(), length - before.size());
  text.erase(0, length + end.size());
  return true;
}

bool isTime(const std::string& text) {
  return text.size() == 8 && text.find_first_not_of("0123456789:") == std::string::npos;
}

}  // namespace

std::optional<LogLine> parseLogLine(const std::string& text) {
  std::string rest = text;
  LogLine line;
  const bool isLine =
      takeField(rest, "[", "] ", line.time) && isTime(line.time) &&
      takeField(rest, "[", "]", line.file) && takeField(rest, "[", "]", line.line) &&
      takeField(rest, "[", "]", line.function) && takeField(rest, "[", "] ", line.level);
  if (!isLine) return {};
  line.message = rest;
  return line;
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace kelvane::test
