// A folder with all that is in it, in memory: to look at, to compare, to put back.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace kelvane::proofs {

struct Entry {
  enum class Kind { file, folder, link };
  Kind kind = Kind::file;
  unsigned mode = 0;  // permission bits; 0 of links
  std::string bytes;  // of a file; where a link leads

  bool operator==(const Entry&) const = default;
};

// By their paths, without the folder's own.
using Tree = std::map<std::string, Entry>;

Tree treeOf(const std::string& folder);
// Makes the folder hold just that.
void putBack(const Tree& tree, const std::string& folder);

// What is below the entry of that path, with itself as "".
Tree subtree(const Tree& tree, const std::string& path);
// The bytes of the file; empty where there is none.
std::string bytesOf(const Tree& tree, const std::string& path);
// The first path at which they differ; empty where they do not.
std::string difference(const Tree& expected, const Tree& seen);

bool isBelow(std::string_view path, std::string_view folder);

}  // namespace kelvane::proofs
