#include "simulators/engine/TargetFolder.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "simulators/support/Files.h"

namespace kelvane::simulator {

using platform::Exception;

namespace fs = std::filesystem;

namespace {

void check(const std::error_code& failed, const char* action, const std::string& path) {
  if (failed) throw Exception(std::string(action) + " " + path + ": " + failed.message());
}

// Whether a rename failed because of what has the new name.
bool isInTheWay(const std::error_code& failed) {
  return failed == std::errc::is_a_directory || failed == std::errc::not_a_directory ||
         failed == std::errc::directory_not_empty || failed == std::errc::file_exists;
}

// Hidden, and of this process alone.
std::string temporaryName(const char* purpose) {
  return ".engine-" + std::to_string(::getpid()) + "-" + purpose;
}

}  // namespace

TargetFolder::TargetFolder(std::string path) : path_(std::move(path)) { makeFolder(path_); }

void TargetFolder::put(const std::string& name,
                       const std::function<void(const std::string&)>& write) const {
  const std::string fresh = *this / temporaryName("new");
  platform::removeTree(fresh);
  try {
    write(fresh);
    moveIntoPlace(fresh, name);
  } catch (const Exception&) {
    platform::removeTree(fresh);
    throw;
  }
}

// A file replaces a file in one step. Where a folder is on either side, the old entry has to step
// aside first.
void TargetFolder::moveIntoPlace(const std::string& fresh, const std::string& name) const {
  const std::string place = *this / name;
  std::error_code failed;
  fs::rename(fresh, place, failed);
  if (isInTheWay(failed)) {
    const std::string old = *this / temporaryName("old");
    fs::rename(place, old, failed);
    if (!failed) fs::rename(fresh, place, failed);
    platform::removeTree(old);
  }
  check(failed, "replace", place);
}

void TargetFolder::cut(const std::string& path, unsigned percent) {
  const std::vector<std::string> files = filesBelow(path);
  std::uint64_t total = 0;
  for (const std::string& file : files) total += platform::fileSize(file);
  std::uint64_t left = total * percent / 100;
  for (const std::string& file : files) {
    const std::uint64_t size = platform::fileSize(file);
    std::error_code failed;
    if (left == 0 && file != path) fs::remove(file, failed);
    if (left < size && (left > 0 || file == path)) fs::resize_file(file, left, failed);
    check(failed, "cut", file);
    left -= std::min(left, size);
  }
}

}  // namespace kelvane::simulator
