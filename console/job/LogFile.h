// The worker's log, as the console reads it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvane::console {

// One entry: a line "[time] [file][line][function][level] message" and the lines that go on with
// it.
struct LogEntry {
  std::string time;  // "14:03:07"
  std::string file;
  std::string line;
  std::string function;
  std::string level;    // "debug", "error"
  std::string message;  // with line feeds where it goes on over several lines, none at its end
};

// The entries of the log's text, in their order. What stands before the first entry is one whose
// other fields are empty.
std::vector<LogEntry> parseLog(std::string_view text);

// Whether the line is an entry's first.
bool beginsEntry(std::string_view line);

// The log's path below the shared folder, which ends with "/".
std::string logPath(const std::string& sharedFolder);

// The log's text. Raises Failure where it is not there (kNotFound) or cannot be read.
std::string readLog(const std::string& sharedFolder);
// The same of a log that stands anywhere.
std::string readLogAt(const std::string& path);

}  // namespace kelvane::console
