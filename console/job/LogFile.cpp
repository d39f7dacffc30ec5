#include "console/job/LogFile.h"

#include <optional>

#include "console/job/ExitCode.h"
#include "contract/Paths.h"
#include "platform/Exception.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kTimeForm = "[dd:dd:dd] [";

bool startsWithTime(std::string_view line) {
  if (line.size() < kTimeForm.size()) return false;
  for (std::size_t i = 0; i < kTimeForm.size(); ++i) {
    const bool isDigit = line[i] >= '0' && line[i] <= '9';
    if (kTimeForm[i] == 'd' ? !isDigit : line[i] != kTimeForm[i]) return false;
  }
  return true;
}

// Takes the text in the brackets that the line starts with off it.
std::optional<std::string> takeField(std::string_view& line) {
  const std::size_t end = line.find(']');
  if (line.substr(0, 1) != "[" || end == std::string_view::npos) return std::nullopt;
  std::string field(line.substr(1, end - 1));
  line.remove_prefix(end + 1);
  return field;
}

// Nothing where the line is no entry's first.
std::optional<LogEntry> parseFirstLine(std::string_view line) {
  if (!startsWithTime(line)) return std::nullopt;
  LogEntry entry;
  entry.time = line.substr(1, 8);
  line.remove_prefix(kTimeForm.size() - 1);
  for (std::string* field : {&entry.file, &entry.line, &entry.function, &entry.level}) {
    std::optional<std::string> text = takeField(line);
    if (!text) return std::nullopt;
    *field = *std::move(text);
  }
  if (!line.empty()) line.remove_prefix(1);  // the blank
  entry.message = line;
  return entry;
}

void append(std::vector<LogEntry>& entries, std::string_view line) {
  if (std::optional<LogEntry> first = parseFirstLine(line)) {
    entries.push_back(*std::move(first));
  } else if (entries.empty()) {
    entries.emplace_back().message = line;
  } else {
    entries.back().message += '\n';
    entries.back().message += line;
  }
}

}  // namespace

std::vector<LogEntry> parseLog(std::string_view text) {
  std::vector<LogEntry> entries;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    append(entries, text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  for (LogEntry& entry : entries) {
    entry.message.erase(entry.message.find_last_not_of('\n') + 1);
  }
  return entries;
}

bool beginsEntry(std::string_view line) { return parseFirstLine(line).has_value(); }

std::string logPath(const std::string& sharedFolder) { return sharedFolder + paths::kLog; }

std::string readLog(const std::string& sharedFolder) { return readLogAt(logPath(sharedFolder)); }

std::string readLogAt(const std::string& path) {
  if (!platform::exists(path)) {
    throw Failure(kNotFound,
                  path + " does not exist: the worker never creates it, and logs nothing");
  }
  try {
    return platform::readFile(path);
  } catch (const platform::Exception& unreadable) {
    throw Failure(kNotFound, unreadable.what());
  }
}

}  // namespace kelvane::console
