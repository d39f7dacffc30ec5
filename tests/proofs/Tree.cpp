#include "tests/proofs/Tree.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

std::string readBytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Entry entryAt(const fs::directory_entry& found) {
  if (found.is_symlink()) return {Entry::Kind::link, 0, fs::read_symlink(found.path()).string()};
  const auto mode = static_cast<unsigned>(found.status().permissions());
  if (found.is_directory()) return {Entry::Kind::folder, mode, ""};
  return {Entry::Kind::file, mode, readBytes(found.path())};
}

void make(const std::string& path, const Entry& entry) {
  switch (entry.kind) {
    case Entry::Kind::link:
      return fs::create_symlink(entry.bytes, path);
    case Entry::Kind::folder:
      fs::create_directory(path);
      break;
    case Entry::Kind::file:
      std::ofstream(path, std::ios::binary) << entry.bytes;
      break;
  }
  ::chmod(path.c_str(), entry.mode);
}

}  // namespace

Tree treeOf(const std::string& folder) {
  Tree tree;
  for (const auto& found : fs::recursive_directory_iterator(folder)) {
    tree[found.path().string().substr(folder.size() + 1)] = entryAt(found);
  }
  return tree;
}

void putBack(const Tree& tree, const std::string& folder) {
  const Tree present = treeOf(folder);
  for (const auto& [path, entry] : present) {
    const auto wanted = tree.find(path);
    if (wanted == tree.end() || wanted->second != entry) fs::remove_all(folder + "/" + path);
  }
  for (const auto& [path, entry] : tree) {
    const std::string whole = folder + "/" + path;
    if (!fs::exists(fs::symlink_status(whole))) make(whole, entry);
  }
}

Tree subtree(const Tree& tree, const std::string& path) {
  Tree found;
  for (const auto& [name, entry] : tree) {
    if (isBelow(name, path)) found[name.substr(path.size())] = entry;
  }
  return found;
}

std::string bytesOf(const Tree& tree, const std::string& path) {
  const auto found = tree.find(path);
  return found == tree.end() ? std::string() : found->second.bytes;
}

std::string difference(const Tree& expected, const Tree& seen) {
  for (const auto& [path, entry] : expected) {
    const auto found = seen.find(path);
    if (found == seen.end()) return path + " is missing";
    if (!(found->second == entry)) return path + " is another";
  }
  for (const auto& [path, entry] : seen) {
    if (!expected.contains(path)) return path + " is too much";
  }
  return {};
}

bool isBelow(std::string_view path, std::string_view folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace kelvane::proofs
