#include "simulators/support/Files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/Exception.h"
#include "platform/File.h"

namespace kelvane::simulator {

using platform::Exception;

namespace fs = std::filesystem;

bool isEntryName(std::string_view text) {
  return !text.empty() && text != "." && text != ".." &&
         text.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

std::vector<std::string> filesBelow(const std::string& path) {
  std::error_code failed;
  const fs::file_type type = fs::symlink_status(path, failed).type();
  if (type == fs::file_type::regular) return {path};
  if (type == fs::file_type::symlink) return {};
  std::vector<std::string> found;
  fs::recursive_directory_iterator entry(path, failed);
  for (; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
    if (entry->symlink_status(failed).type() == fs::file_type::regular) {
      found.push_back(entry->path().string());
    }
  }
  if (failed) throw Exception("list " + path + ": " + failed.message());
  std::sort(found.begin(), found.end());
  return found;
}

void makeFolder(const std::string& path) {
  std::error_code failed;
  fs::create_directories(path, failed);
  if (failed) throw Exception("make folder " + path + ": " + failed.message());
}

void writeFile(const std::string& path, std::string_view bytes) {
  if (!platform::replaceFile(path, bytes)) throw Exception("write " + path + ": cannot be written");
}

void copyEntry(const std::string& from, const std::string& to) {
  if (platform::copyTree(from, to)) return;
  throw Exception("copy " + from + " to " + to + ": not all of it can be copied");
}

}  // namespace kelvane::simulator
