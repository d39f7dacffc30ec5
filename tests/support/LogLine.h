// The worker's log, taken apart.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelvane::test {

// "[time] [file][line][function][level] message"; of a message over several lines the first.
struct LogLine {
  std::string time;
  std::string file;
  std::string line;
  std::string function;
  std::string level;
  std::string message;
};

// Nothing where the text is no first line of a message.
std::optional<LogLine> parseLogLine(const std::string& text);

std::vector<std::string> splitLines(const std::string& text);

}  // namespace kelvane::test
