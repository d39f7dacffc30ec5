#include "Files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/Exception.h"

namespace kelvane::simulator {

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
  if (failed) throw platform::Exception("list " + path + ": " + failed.message());
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace kelvane::simulator
