#include "tests/dialogues/MemoryFiles.h"

#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/Exception.h"
#include "platform/File.h"
#include "tests/dialogues/Oracle.h"

namespace kelvane::dialogues {
namespace {

MemoryFiles* current = nullptr;

void note(std::string event) {
  if (current->tell) current->tell(std::move(event));
}

bool isBelowShared(const std::string& path, const std::string& name) {
  return path == kShared + name;
}

// Takes what stands in brackets off the front of the text.
std::string_view takeField(std::string_view& text) {
  const std::size_t end = text.find(']');
  if (text.empty() || text[0] != '[' || end == std::string_view::npos) return {};
  const std::string_view field = text.substr(1, end - 1);
  text.remove_prefix(end + 1);
  return field;
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// What the log's line tells; a line that is none as it stands.
std::string eventOf(std::string_view text) {
  std::string_view rest = text;
  const bool isTimed = takeField(rest) == "14:03:07" && !rest.empty() && rest[0] == ' ';
  if (isTimed) rest.remove_prefix(1);
  const bool isPlaced = takeField(rest).ends_with(".cpp") && isNumber(takeField(rest));
  const std::string_view function = takeField(rest);
  const std::string_view level = takeField(rest);
  std::string event;
  event.reserve(text.size());
  if (!isTimed || !isPlaced || !rest.starts_with(' ') || !rest.ends_with('\n')) {
    return event.append("odd line: ").append(text);
  }
  event.append("log ").append(function);
  if (level != "debug") event.append(" ").append(level);
  return event.append(": ").append(rest.substr(1, rest.size() - 2));
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

void FileEnd::append(std::string_view text) { dialogues::note(dialogues::eventOf(text)); }

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
