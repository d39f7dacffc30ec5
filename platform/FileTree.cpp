// Folders and whole trees of files.

#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/File.h"
#include "platform/Host.h"

namespace kelvane::platform {

namespace fs = std::filesystem;

namespace {

bool copyEntry(const fs::path& from, const fs::path& to);

// Permissions come last, so that a folder that may not be written can be filled.
bool takeOver(const fs::path& from, const fs::path& to) {
  std::error_code failed;
  const fs::perms permissions = fs::status(from, failed).permissions();
  if (!failed) fs::last_write_time(to, fs::last_write_time(from, failed), failed);
  if (!failed) fs::permissions(to, permissions, failed);
  return !failed;
}

bool copyFolder(const fs::path& from, const fs::path& to) {
  std::error_code failed;
  if (!fs::create_directory(to, failed)) return false;
  fs::directory_iterator entry(from, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    if (!copyEntry(entry->path(), to / entry->path().filename())) return false;
  }
  return !failed && takeOver(from, to);
}

bool copyLink(const fs::path& from, const fs::path& to) {
  std::error_code failed;
  fs::copy_symlink(from, to, failed);
  if (failed) return false;
  const timespec time = native::modificationTime(from.string());
  const timespec times[2] = {time, time};
  return ::utimensat(AT_FDCWD, to.c_str(), times, AT_SYMLINK_NOFOLLOW) == 0;
}

// A file that could not be copied to its end is not left behind.
bool copyFile(const fs::path& from, const fs::path& to) {
  if (native::copyContents(from.string(), to.string()) && takeOver(from, to)) return true;
  std::error_code failed;
  fs::remove(to, failed);
  return false;
}

bool copyEntry(const fs::path& from, const fs::path& to) {
  std::error_code failed;
  const fs::file_type type = fs::symlink_status(from, failed).type();
  if (type == fs::file_type::directory) return copyFolder(from, to);
  if (type == fs::file_type::symlink) return copyLink(from, to);
  return type == fs::file_type::regular && copyFile(from, to);
}

}  // namespace

std::vector<std::string> listFolder(const std::string& path) {
  std::vector<std::string> names;
  std::error_code failed;
  fs::directory_iterator entry(path, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

bool makeFolders(const std::string& path) {
  std::error_code failed;
  fs::create_directories(path, failed);
  return !failed;
}

bool removeTree(const std::string& path) {
  // A slash at the end would lead through a link.
  std::string entry = path;
  while (entry.size() > 1 && entry.back() == '/') entry.pop_back();
  std::error_code failed;
  fs::remove_all(entry, failed);
  return !failed;
}

bool copyTree(const std::string& from, const std::string& to) {
  std::error_code failed;
  if (fs::exists(fs::symlink_status(to, failed))) return false;
  return copyEntry(from, to);
}

}  // namespace kelvane::platform
