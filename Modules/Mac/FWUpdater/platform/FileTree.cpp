// Folders and whole trees of files.

#include <filesystem>
#include <system_error>

#include "platform/File.h"

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

bool copyEntry(const fs::path& from, const fs::path& to) {
  std::error_code failed;
  const fs::file_type type = fs::symlink_status(from, failed).type();
  if (type == fs::file_type::directory) return copyFolder(from, to);
  if (type == fs::file_type::symlink) {
    fs::copy_symlink(from, to, failed);
    return !failed;
  }
  if (type != fs::file_type::regular) return false;
  return fs::copy_file(from, to, failed) && takeOver(from, to);
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
  std::error_code failed;
  fs::remove_all(path, failed);
  return !failed;
}

bool copyTree(const std::string& from, const std::string& to) {
  std::error_code failed;
  if (fs::exists(fs::symlink_status(to, failed))) return false;
  return copyEntry(from, to);
}

}  // namespace kelvane::platform
