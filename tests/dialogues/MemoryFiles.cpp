#include "tests/dialogues/MemoryFiles.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "platform/Exception.h"
#include "platform/File.h"
#include "tests/dialogues/Oracle.h"
#include "tests/support/LogLine.h"

namespace kelvane::dialogues {
namespace {

MemoryFiles* current = nullptr;

void note(std::string event) {
  if (current->tell) current->tell(std::move(event));
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isBelowShared(const std::string& path, const std::string& name) {
  return path == kShared + name;
}

// What the log's line tells; a line that is none as it stands.
std::string eventOf(const std::string& text) {
  const std::size_t size = text.size();
  const auto line = test::parseLogLine(text.substr(0, size - 1));
  if (!line || text[size - 1] != '\n' || line->time != "14:03:07" ||
      !endsWith(line->file, ".cpp") ||
      line->line.find_first_not_of("0123456789") != std::string::npos) {
    return "odd line: " + text;
  }
  std::string event = "log ";
  event.append(line->function).append(line->level == "debug" ? ": " : " " + line->level + ": ");
  return event.append(line->message);
}

}  // namespace

MemoryFiles::MemoryFiles() { current = this; }
MemoryFiles::~MemoryFiles() { current = nullptr; }

}  // namespace kelvane::dialogues

namespace kelvane::platform {
namespace {

using dialogues::current;

[[noreturn]] void refuse(const char* what) {
  throw std::logic_error(std::string(what) + ": nothing that a firmware job does");
}

}  // namespace

// --- what a firmware job does

bool canBePath(std::string_view text) { return text.find('\0') == std::string_view::npos; }

bool exists(const std::string& path) {
  return dialogues::isBelowShared(path, "utility/command/BGPLog.json");
}

std::optional<std::string> readFileUnlessKnown(const std::string& path, std::string_view known) {
  if (dialogues::isBelowShared(path, "utility/command/BGPLog.json")) {
    dialogues::note("read");
    if (current->jobFile == known) return std::nullopt;
    return current->jobFile;
  }
  if (path == "/A/B.app/Contents/Resources/Config/setting.json") return "{}";
  throw Exception("open " + path + ": No such file or directory");
}

std::string readFile(const std::string& path) {
  return readFileUnlessKnown(path, {}).value_or(std::string());
}

bool replaceFile(const std::string& path, std::string_view bytes) {
  if (!dialogues::isBelowShared(path, "utility/command/BGPLog.json")) refuse("another file");
  current->jobFile = bytes;
  dialogues::note("write " + current->jobFile);
  return true;
}

// The log counts as open; its descriptor has a number that no file has.
FileEnd::FileEnd(std::string path)
    : path_(std::move(path)),
      file_(dialogues::isBelowShared(path_, "utility/logs/TarselVistrelUtility.txt")
                ? std::numeric_limits<int>::max()
                : -1) {}

void FileEnd::append(std::string_view text) {
  dialogues::note(dialogues::eventOf(std::string(text)));
}

void FileEnd::append(const std::vector<std::string_view>& pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  append(text);
}

std::string withoutLastComponent(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

// --- what it does not

bool isFolder(const std::string&) { refuse("isFolder"); }
std::uint64_t fileSize(const std::string&) { refuse("fileSize"); }
bool renamePath(const std::string&, const std::string&) { refuse("renamePath"); }
bool movePath(const std::string&, const std::string&) { refuse("movePath"); }
bool createEmptyFile(const std::string&) { refuse("createEmptyFile"); }
bool replaceFile(const std::string&, std::string_view, const std::function<bool()>&) {
  refuse("replaceFile with a question");
}
bool synchroniseTree(const std::string&) { refuse("synchroniseTree"); }
bool synchroniseFolder(const std::string&) { refuse("synchroniseFolder"); }

}  // namespace kelvane::platform
