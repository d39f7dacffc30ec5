#include "platform/File.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Exception.h"

namespace kelvane::platform {
namespace {

[[noreturn]] void raise(const char* action, const std::string& path) {
  const int cause = errno;
  throw Exception(std::string(action) + " " + path + ": " + std::strerror(cause));
}

int openFile(const std::string& path, int flags) {
  int number = -1;
  do {
    number = ::open(path.c_str(), flags | O_CLOEXEC);
  } while (number < 0 && errno == EINTR);
  return number;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// Where the path leads when its last component is a symbolic link, also to something that is not
// there; empty where the links go in a circle.
std::string resolvedLinks(const std::string& path) {
  constexpr int kMostLinks = 40;
  std::filesystem::path current = path;
  for (int links = 0; links <= kMostLinks; ++links) {
    std::error_code notALink;
    const std::filesystem::path target = std::filesystem::read_symlink(current, notALink);
    if (notALink) return current.string();
    current = current.parent_path() / target;  // an absolute target replaces the whole
  }
  return {};
}

bool takeDefaultPermissions(int file) {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return ::fchmod(file, 0666 & ~mask) == 0;
}

// Takes over the old file's owner, where allowed, and its permission bits; a new file gets the
// default ones.
bool takeOverAttributes(int file, const std::string& oldPath) {
  struct stat old = {};
  if (::stat(oldPath.c_str(), &old) != 0) return errno == ENOENT && takeDefaultPermissions(file);
  struct stat fresh = {};
  if (::fstat(file, &fresh) != 0) return false;
  if (old.st_uid != fresh.st_uid || old.st_gid != fresh.st_gid) {
    [[maybe_unused]] const int allowed = ::fchown(file, old.st_uid, old.st_gid);
  }
  return ::fchmod(file, old.st_mode & 07777) == 0;
}

// Makes the renaming itself last; the new file is whole without it, so its failure is no one's
// concern.
void synchroniseFolder(const std::string& folder) {
  const Descriptor opened(openFile(folder, O_RDONLY | O_DIRECTORY));
  if (opened.isOpen()) ::fsync(opened.number());
}

bool fillTemporary(Descriptor& file, const std::string& replaced, std::string_view bytes) {
  const bool filled = writeAll(file.number(), bytes) &&
                      takeOverAttributes(file.number(), replaced) && ::fsync(file.number()) == 0;
  return file.close() && filled;
}

}  // namespace

bool exists(const std::string& path) {
  struct stat entry = {};
  return ::stat(path.c_str(), &entry) == 0;
}

bool isFolder(const std::string& path) {
  struct stat entry = {};
  return ::stat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode);
}

std::uint64_t fileSize(const std::string& path) {
  struct stat entry = {};
  return ::stat(path.c_str(), &entry) == 0 ? static_cast<std::uint64_t>(entry.st_size) : 0;
}

bool movePath(const std::string& from, const std::string& to) {
  std::error_code failed;
  std::filesystem::rename(from, to, failed);
  if (failed != std::errc::cross_device_link) return !failed;
  return copyTree(from, to) && removeTree(from);
}

bool createEmptyFile(const std::string& path) {
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  return file.isOpen() && file.close();
}

std::string readFile(const std::string& path) {
  const Descriptor file(openFile(path, O_RDONLY));
  if (!file.isOpen()) raise("open", path);
  struct stat entry = {};
  std::string bytes;
  if (::fstat(file.number(), &entry) == 0 && entry.st_size > 0) {
    bytes.reserve(static_cast<std::size_t>(entry.st_size));
  }
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t got = ::read(file.number(), block.data(), block.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) raise("read", path);
    if (got == 0) return bytes;
    bytes.append(block.data(), static_cast<std::size_t>(got));
  }
}

bool replaceFile(const std::string& path, std::string_view bytes) {
  const std::string replaced = resolvedLinks(path);
  if (replaced.empty()) return false;
  const std::string folder = std::filesystem::path(replaced).parent_path().string();
  // A name of its own, not one made of the old file's, which may be as long as names can be.
  std::string temporary = (folder.empty() ? "." : folder) + "/.replace-XXXXXX";
  Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) return false;
  if (!fillTemporary(file, replaced, bytes) || ::rename(temporary.c_str(), replaced.c_str()) != 0) {
    ::unlink(temporary.c_str());
    return false;
  }
  synchroniseFolder(folder.empty() ? "." : folder);
  return true;
}

void appendToFile(const std::string& path, std::string_view bytes) {
  const Descriptor file(openFile(path, O_WRONLY | O_APPEND | O_NOCTTY));
  if (!file.isOpen()) return;
  if (!writeAll(file.number(), bytes)) raise("write", path);
}

std::string withoutLastComponent(const std::string& path) {
  std::string kept = path;
  while (kept.size() > 1 && kept.back() == '/') kept.pop_back();
  const std::size_t slash = kept.rfind('/');
  if (slash == std::string::npos) return "";
  return kept.substr(0, slash == 0 ? 1 : slash);
}

}  // namespace kelvane::platform
