#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kelvane::test {

namespace fs = std::filesystem;

TempFolder::TempFolder(const std::string& suffix, const std::string& root)
    : path_(root + "kelvane-test-XXXXXX") {
  if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the test");
  if (suffix.empty()) return;
  fs::rename(path_, path_ + suffix);
  path_ += suffix;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TempFolder::write(const std::string& name, const std::string& bytes) const {
  const fs::path path = *this / name;
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
  return path.string();
}

std::string TempFolder::read(const std::string& name) const {
  std::ifstream file(*this / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> TempFolder::names(const std::string& folder) const {
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator(*this / folder)) {
    found.push_back(entry.path().filename().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace kelvane::test
