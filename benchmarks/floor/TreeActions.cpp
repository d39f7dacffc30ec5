// Whole trees: copied and removed.

#include <array>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "benchmarks/floor/Actions.h"
#include "benchmarks/floor/Fail.h"

namespace kelvane::floor {
namespace {

int openFolder(int above, const char* name) {
  return checked(::openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC), name);
}

// Calls `action(name, isFolder)` for each entry of the open folder, which stays open.
template <typename Action>
void forEachEntry(int folder, Action action) {
  DIR* listing = ::fdopendir(checked(::fcntl(folder, F_DUPFD_CLOEXEC, 0), "fcntl"));
  if (listing == nullptr) fail("fdopendir");
  while (const dirent* entry = ::readdir(listing)) {
    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
    action(entry->d_name, entry->d_type == DT_DIR);
  }
  ::closedir(listing);
}

void takeOver(int file, const struct stat& original, const char* name) {
  const timespec times[2] = {{0, UTIME_OMIT}, original.st_mtim};
  checked(::futimens(file, times), name);
  checked(::fchmod(file, original.st_mode & 07777), name);
}

// What is small passes through the program; the rest is the kernel's to copy.
void copyContents(int from, int to, off_t size, const char* name) {
  static std::array<char, 65536> block;
  const bool isSmall = size <= static_cast<off_t>(block.size());
  while (size > 0) {
    ssize_t copied = 0;
    if (isSmall) {
      const ssize_t got = checked(::read(from, block.data(), block.size()), name);
      copied = checked(::write(to, block.data(), static_cast<std::size_t>(got)), name);
    } else {
      const auto wanted = static_cast<std::size_t>(size);
      copied = checked(::copy_file_range(from, nullptr, to, nullptr, wanted, 0), name);
    }
    if (copied == 0) return;
    size -= copied;
  }
}

void copyFile(int fromFolder, int toFolder, const char* from, const char* to) {
  const int source = checked(::openat(fromFolder, from, O_RDONLY | O_NOFOLLOW | O_CLOEXEC), from);
  struct stat original = {};
  checked(::fstat(source, &original), from);
  const int target =
      checked(::openat(toFolder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600), to);
  copyContents(source, target, original.st_size, to);
  takeOver(target, original, to);
  ::close(source);
  checked(::close(target), to);
}

void copyFolder(int fromAbove, int toAbove, const char* from, const char* to) {
  const int source = openFolder(fromAbove, from);
  struct stat original = {};
  checked(::fstat(source, &original), from);
  checked(::mkdirat(toAbove, to, 0777), to);
  const int target = openFolder(toAbove, to);
  forEachEntry(source, [&](const char* name, bool isFolder) {
    isFolder ? copyFolder(source, target, name, name) : copyFile(source, target, name, name);
  });
  takeOver(target, original, to);
  ::close(source);
  ::close(target);
}

void removeEntry(int above, const char* name, bool isFolder) {
  if (isFolder) {
    const int folder = openFolder(above, name);
    forEachEntry(folder, [&](const char* below, bool isBelowFolder) {
      removeEntry(folder, below, isBelowFolder);
    });
    ::close(folder);
  }
  checked(::unlinkat(above, name, isFolder ? AT_REMOVEDIR : 0), name);
}

bool isFolder(const std::string& path) {
  struct stat entry = {};
  checked(::stat(path.c_str(), &entry), path);
  return S_ISDIR(entry.st_mode);
}

}  // namespace

void copyTree(const std::string& from, const std::string& to) {
  const auto copy = isFolder(from) ? copyFolder : copyFile;
  copy(AT_FDCWD, AT_FDCWD, from.c_str(), to.c_str());
}

void removeTree(const std::string& path) { removeEntry(AT_FDCWD, path.c_str(), isFolder(path)); }

void renamePath(const std::string& from, const std::string& to) {
  checked(::rename(from.c_str(), to.c_str()), to);
}

void makeFolder(const std::string& path) { checked(::mkdir(path.c_str(), 0777), path); }

void synchroniseDisk(const std::string& path) {
  const int entry = checked(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
  checked(::syncfs(entry), path);
  ::close(entry);
}

void synchroniseFolder(const std::string& path) {
  const int folder = openFolder(AT_FDCWD, path.c_str());
  checked(::fsync(folder), path);
  ::close(folder);
}

}  // namespace kelvane::floor
