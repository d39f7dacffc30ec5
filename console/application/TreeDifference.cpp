#include "console/application/TreeDifference.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>

#include "platform/File.h"

namespace kelvane::console {

namespace fs = std::filesystem;

namespace {

bool mayBeExecuted(const fs::file_status& status) {
  return (status.permissions() & fs::perms::owner_exec) != fs::perms::none;
}

// Both have to be readable.
bool haveTheSameBytes(const fs::path& one, const fs::path& other) {
  std::ifstream left(one, std::ios::binary);
  std::ifstream right(other, std::ios::binary);
  if (!left || !right) return false;
  std::array<char, 65536> leftBlock{};
  std::array<char, 65536> rightBlock{};
  for (;;) {
    left.read(leftBlock.data(), leftBlock.size());
    right.read(rightBlock.data(), rightBlock.size());
    if (left.bad() || right.bad() || left.gcount() != right.gcount()) return false;
    if (!std::equal(leftBlock.begin(), leftBlock.begin() + left.gcount(), rightBlock.begin())) {
      return false;
    }
    if (left.eof()) return right.eof();
  }
}

class Comparison {
 public:
  Comparison(const fs::path& original, const fs::path& copy) : original_(original), copy_(copy) {}

  TreeDifferences run() {
    takeFolder("");
    return found_;
  }

 private:
  // `place` is the path below both trees.
  void take(const fs::path& place) {
    std::error_code untold;
    const fs::file_status left = fs::symlink_status(original_ / place, untold);
    const fs::file_status right = fs::symlink_status(copy_ / place, untold);
    if (!fs::exists(right)) {
      add(place, "is missing");
    } else if (!fs::exists(left)) {
      add(place, "is left over");
    } else if (left.type() != right.type()) {
      add(place, "is of another kind");
    } else if (fs::is_directory(left)) {
      takeFolder(place);
    } else if (!areEqual(place, left, right)) {
      add(place, "differs");
    }
  }

  void takeFolder(const fs::path& place) {
    std::set<std::string> names;
    for (const fs::path& tree : {original_, copy_}) {
      for (const std::string& name : platform::listFolder((tree / place).string())) {
        names.insert(name);
      }
    }
    for (const std::string& name : names) take(place / name);
  }

  bool areEqual(const fs::path& place, const fs::file_status& left,
                const fs::file_status& right) const {
    std::error_code untold;
    if (fs::is_symlink(left)) {
      return fs::read_symlink(original_ / place, untold) == fs::read_symlink(copy_ / place, untold);
    }
    if (!fs::is_regular_file(left)) return true;  // a pipe, a socket: its kind is all there is
    return mayBeExecuted(left) == mayBeExecuted(right) &&
           fs::file_size(original_ / place, untold) == fs::file_size(copy_ / place, untold) &&
           haveTheSameBytes(original_ / place, copy_ / place);
  }

  void add(const fs::path& place, const char* what) {
    ++found_.count;
    if (found_.first.size() < kMostDifferencesTold) {
      found_.first.push_back(place.string() + " " + what);
    }
  }

  fs::path original_;
  fs::path copy_;
  TreeDifferences found_;
};

}  // namespace

TreeDifferences treeDifferences(const std::string& original, const std::string& copy) {
  return Comparison(original, copy).run();
}

}  // namespace kelvane::console
