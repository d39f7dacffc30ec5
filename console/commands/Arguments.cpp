#include "console/commands/Arguments.h"

#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "console/job/ExitCode.h"
#include "contract/Paths.h"
#include "platform/File.h"
#include "platform/Utf8.h"

namespace kelvane::console {

void requireText(const std::string& text, const std::string& what) {
  if (text.empty()) throw Failure(kBadUsage, what + " is missing");
  if (!platform::isUtf8(text)) throw Failure(kBadUsage, what + " is not UTF-8: " + text);
}

std::size_t countIn(const std::string& text, const std::string& option) {
  std::size_t count = 0;
  const auto [rest, failed] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (failed != std::errc() || rest != text.data() + text.size()) {
    throw Failure(kBadUsage, option + " " + text + " is no whole number");
  }
  return count;
}

std::string withoutSlashAtEnd(std::string folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::string asPrefix(const std::string& folder) {
  requireText(folder, "the shared folder");
  return folder.back() == '/' ? folder : folder + "/";
}

std::string existingShared(const std::string& folder) {
  std::string prefix = asPrefix(folder);
  if (!platform::isFolder(prefix)) {
    const bool isThere = platform::exists(withoutSlashAtEnd(folder));
    throw Failure(kBadUsage,
                  "the shared folder " + folder + (isThere ? " is no folder" : " does not exist"));
  }
  return prefix;
}

std::string workersShared(const std::string& folder) {
  std::string prefix = existingShared(folder);
  for (const char* part : paths::kBelowSharedFolder) {
    const bool isFile = part != std::string_view(paths::kDownloadArea);
    const std::string path = prefix + part;
    if (platform::isFolder(isFile ? platform::withoutLastComponent(path) : path)) return prefix;
  }
  throw Failure(kBadUsage, folder +
                               " is no folder shared with the worker: neither a folder for "
                               "the job file is in it nor one for the log, the settings or "
                               "downloads");
}

std::string absolutePath(const std::string& path, const std::string& what) {
  requireText(path, "the " + what);
  std::error_code failed;
  const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
  if (failed) throw Failure(kBadUsage, what + " " + path + ": " + failed.message());
  requireText(absolute.string(), "the " + what + "'s folder");
  return absolute.string();
}

std::string existingPath(const std::string& path, const std::string& what) {
  std::string absolute = absolutePath(path, what);
  if (!platform::exists(absolute)) {
    throw Failure(kBadUsage, what + " " + path + " does not exist");
  }
  return absolute;
}

}  // namespace kelvane::console
