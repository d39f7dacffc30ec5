#include "tests/fuzz/MemoryDisk.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/Exception.h"
#include "platform/File.h"

namespace kelvane::fuzz {
namespace {

MemoryDisk* current = nullptr;

constexpr std::size_t kLongestPath = 4095;
constexpr std::size_t kLongestName = 255;

// The path without ".", ".." and superfluous slashes; the root is empty. Nothing where it is too
// long, as for the system.
std::optional<std::string> plain(const std::string& path) {
  if (path.size() > kLongestPath) return std::nullopt;
  std::string made;
  for (std::size_t start = 0; start <= path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string name = path.substr(start, end - start);
    start = end + 1;
    if (name.size() > kLongestName) return std::nullopt;
    if (name == "..") {
      made.erase(std::min(made.rfind('/'), made.size()));
    } else if (!name.empty() && name != ".") {
      made.append("/").append(name);
    }
  }
  return made;
}

std::string above(const std::string& path) { return path.substr(0, path.rfind('/')); }

bool isBelow(const std::string& path, const std::string& folder) {
  return path.starts_with(folder) && path.size() > folder.size() && path[folder.size()] == '/';
}

}  // namespace

MemoryDisk::MemoryDisk() {
  current = this;
  nodes_[""] = {.isFolder = true};
}

MemoryDisk::~MemoryDisk() { current = nullptr; }

void MemoryDisk::put(const std::string& path, const std::string& bytes) {
  makeFolder(above(plain(path).value_or("")));
  write(path, bytes);
}

void MemoryDisk::remove(const std::string& path) {
  const auto entry = plain(path);
  if (!entry) return;
  std::erase_if(nodes_, [&entry](const auto& node) {
    return !node.first.empty() && (node.first == *entry || isBelow(node.first, *entry));
  });
}

std::optional<std::string> MemoryDisk::bytesOf(const std::string& path) const {
  const Node* node = find(path);
  if (node == nullptr || node->isFolder) return std::nullopt;
  return node->bytes;
}

const MemoryDisk::Node* MemoryDisk::find(const std::string& path) const {
  const auto entry = plain(path);
  if (!entry || path.empty()) return nullptr;
  const auto found = nodes_.find(*entry);
  return found == nodes_.end() ? nullptr : &found->second;
}

MemoryDisk::Node* MemoryDisk::find(const std::string& path) {
  return const_cast<Node*>(std::as_const(*this).find(path));
}

bool MemoryDisk::makeFolder(const std::string& path) {
  const auto entry = plain(path);
  if (!entry) return false;
  for (std::size_t end = 0; end < entry->size();) {
    end = std::min(entry->find('/', end + 1), entry->size());
    Node& level = nodes_.try_emplace(entry->substr(0, end), Node{.isFolder = true}).first->second;
    if (!level.isFolder) return false;
  }
  return true;
}

bool MemoryDisk::write(const std::string& path, std::string_view bytes) {
  const auto entry = plain(path);
  if (!entry || entry->empty()) return false;
  const auto folder = nodes_.find(above(*entry));
  if (folder == nodes_.end() || !folder->second.isFolder) return false;
  Node& node = nodes_[*entry];
  if (node.isFolder) return false;
  node.bytes = bytes;
  return true;
}

bool MemoryDisk::copy(const std::string& from, const std::string& to) {
  const auto source = plain(from);
  const auto target = plain(to);
  if (!source || !target || nodes_.count(*source) == 0) return false;
  const auto folder = nodes_.find(above(*target));
  if (folder == nodes_.end() || !folder->second.isFolder) return false;
  Nodes copies;
  for (const auto& [path, node] : nodes_) {
    if (path == *source || isBelow(path, *source)) {
      copies[*target + path.substr(source->size())] = node;
    }
  }
  for (auto& [path, node] : copies) nodes_.insert_or_assign(path, std::move(node));
  return true;
}

std::vector<std::string> MemoryDisk::namesIn(const std::string& path) const {
  std::vector<std::string> names;
  const auto folder = plain(path);
  if (!folder) return names;
  for (const auto& [entry, node] : nodes_) {
    if (isBelow(entry, *folder) && above(entry) == *folder) {
      names.push_back(entry.substr(folder->size() + 1));
    }
  }
  return names;
}

}  // namespace kelvane::fuzz

namespace kelvane::platform {
namespace {

using fuzz::current;
using fuzz::MemoryDisk;

const MemoryDisk::Node* nodeAt(const std::string& path) {
  return canBePath(path) ? current->find(path) : nullptr;
}

bool isFile(const std::string& path) {
  const MemoryDisk::Node* node = nodeAt(path);
  return node != nullptr && !node->isFolder;
}

std::string besideAs(const std::string& path, const char* prefix) {
  const std::size_t start = path.rfind('/') + 1;
  return path.substr(0, start).append(prefix).append(path.substr(start));
}

}  // namespace

bool canBePath(std::string_view text) { return text.find('\0') == std::string_view::npos; }

bool exists(const std::string& path) { return nodeAt(path) != nullptr; }

bool isFolder(const std::string& path) { return exists(path) && nodeAt(path)->isFolder; }

std::uint64_t fileSize(const std::string& path) {
  if (!exists(path)) return 0;
  return std::max<std::uint64_t>(nodeAt(path)->bytes.size(), current->pretendedSize);
}

bool renamePath(const std::string& from, const std::string& to) {
  if (!exists(from) || !canBePath(to) || !current->copy(from, to)) return false;
  current->remove(from);
  return true;
}

bool movePath(const std::string& from, const std::string& to) { return renamePath(from, to); }

bool createEmptyFile(const std::string& path) {
  return canBePath(path) && current->write(path, "");
}

std::vector<std::string> listFolder(const std::string& path) {
  return isFolder(path) ? current->namesIn(path) : std::vector<std::string>();
}

bool makeFolders(const std::string& path) {
  return canBePath(path) && !path.empty() && current->makeFolder(path);
}

bool removeTree(const std::string& path) {
  if (!canBePath(path)) return false;
  current->remove(path);
  return true;
}

bool discardTree(const std::string& path) { return removeTree(path); }

std::optional<std::string> stageCopy(const std::string& from, const std::string& to) {
  if (!exists(from) || !canBePath(to) || exists(to)) return std::nullopt;
  std::string staged = besideAs(to, kArrivingPrefix);
  removeTree(staged);
  if (!current->copy(from, staged)) return std::nullopt;
  return staged;
}

bool publishCopy(const std::string& staged, const std::string& to) {
  if (!exists(to) && renamePath(staged, to)) return true;
  removeTree(staged);
  return false;
}

bool copyTree(const std::string& from, const std::string& to) {
  const std::optional<std::string> staged = stageCopy(from, to);
  return staged && publishCopy(*staged, to);
}

bool synchroniseTree(const std::string& path) { return exists(path); }
bool synchroniseFolder(const std::string& path) { return isFolder(path); }

std::string readFile(const std::string& path) {
  if (!isFile(path)) throw Exception("open " + path + ": No such file or directory");
  return nodeAt(path)->bytes;
}

std::optional<std::string> readFileUnlessKnown(const std::string& path, std::string_view known) {
  std::string bytes = readFile(path);
  if (bytes == known) return std::nullopt;
  return bytes;
}

bool replaceFile(const std::string& path, std::string_view bytes) {
  if (!canBePath(path)) return false;
  if (current->onReplace) current->onReplace(path, bytes);
  return current->write(path, bytes);
}

bool replaceFile(const std::string& path, std::string_view bytes,
                 const std::function<bool()>& mayReplace) {
  return mayReplace() && replaceFile(path, bytes);
}

// A file that is there counts as open; its descriptor has a number that no file has.
FileEnd::FileEnd(std::string path)
    : path_(std::move(path)), file_(isFile(path_) ? std::numeric_limits<int>::max() : -1) {}

void FileEnd::append(std::string_view text) {
  if (current->onAppend) current->onAppend(path_, text);
  current->find(path_)->bytes += text;
}

void FileEnd::append(const std::vector<std::string_view>& pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  append(text);
}

std::string withoutLastComponent(const std::string& path) {
  const std::size_t end = path.find_last_not_of('/');
  const std::size_t slash = path.rfind('/', end == std::string::npos ? 0 : end);
  if (slash == std::string::npos) return "";
  return path.substr(0, slash == 0 ? 1 : slash);
}

}  // namespace kelvane::platform
