// The platform's files in memory: defined in place of platform/File.cpp and platform/FileTree.cpp,
// which the linker then leaves out. A tree of folders and files, without links and permissions,
// that belongs to one run of a target: whatever a job is told to remove, nothing of the machine is
// gone.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane::fuzz {

class MemoryDisk {
 public:
  // Only one at a time.
  MemoryDisk();
  ~MemoryDisk();
  MemoryDisk(const MemoryDisk&) = delete;
  MemoryDisk& operator=(const MemoryDisk&) = delete;

  // A file, with the folders above it.
  void put(const std::string& path, const std::string& bytes);
  void remove(const std::string& path);
  // Nothing where no file is there.
  std::optional<std::string> bytesOf(const std::string& path) const;

  // Whoever is told of a file that is about to be replaced, and of what is appended to one.
  std::function<void(const std::string& path, std::string_view bytes)> onReplace;
  std::function<void(const std::string& path, std::string_view text)> onAppend;

  // What every file says of its size, where that is more.
  std::uint64_t pretendedSize = 0;

  // --- for the platform's functions, whose paths have no NUL character

  struct Node {
    bool isFolder = false;
    std::string bytes = {};
  };
  // By whole paths, from the root on; a relative path is taken from the root.
  using Nodes = std::map<std::string, Node>;
  // Null where nothing is there.
  const Node* find(const std::string& path) const;
  Node* find(const std::string& path);
  // Whether it could be done: something else than a folder may stand above it or in its place.
  bool makeFolder(const std::string& path);
  bool write(const std::string& path, std::string_view bytes);
  // With all below it, also over what is there.
  bool copy(const std::string& from, const std::string& to);
  std::vector<std::string> namesIn(const std::string& path) const;

 private:
  Nodes nodes_;
};

}  // namespace kelvane::fuzz
