// Folders and whole trees of files.

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/File.h"
#include "platform/FreeMemory.h"
#include "platform/Native.h"
#include "platform/Restarted.h"

namespace kelvane::platform {
namespace {

enum class Kind { file, folder, link, other };

struct Entry {
  std::string name;
  Kind kind;
};

Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return Kind::file;
  if (S_ISDIR(mode)) return Kind::folder;
  return S_ISLNK(mode) ? Kind::link : Kind::other;
}

// Of the entry itself, also of a link.
std::optional<Kind> kindOf(int folder, const char* name) {
  struct stat entry = {};
  if (::fstatat(folder, name, &entry, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  return kindOf(entry.st_mode);
}

bool entryExists(const std::string& path) { return kindOf(AT_FDCWD, path.c_str()).has_value(); }

// What the folder told of the entry, or what the entry itself tells where that is nothing.
Kind kindOf(int folder, const dirent& entry) {
  switch (entry.d_type) {
    case DT_REG:
      return Kind::file;
    case DT_DIR:
      return Kind::folder;
    case DT_LNK:
      return Kind::link;
    case DT_UNKNOWN:
      return kindOf(folder, entry.d_name).value_or(Kind::other);
    default:
      return Kind::other;
  }
}

// Never through a link in the last place, so that nothing outside a tree is reached from it.
Descriptor openFolder(int above, const char* name) {
  return Descriptor(restarted([&] {
    return ::openat(above, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  }));
}

Descriptor openForSearch(int above, const char* name) {
  return Descriptor(restarted(
      [&] { return ::openat(above, name, native::kForSearch | O_DIRECTORY | O_CLOEXEC); }));
}

bool makeFolder(int above, const char* name) {
  return restarted([&] { return ::mkdirat(above, name, 0777); }) == 0;
}

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

// The entries of an open folder in the system's order, without "." and ".."; those before the
// first that cannot be read, where `failed` tells of one.
std::vector<Entry> entriesOf(Descriptor folder, bool& failed) {
  std::vector<Entry> entries;
  const std::unique_ptr<DIR, CloseFolder> listing(::fdopendir(folder.number()));
  failed = listing == nullptr;
  if (failed) return entries;
  const int number = folder.release();
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(listing.get());
    if (entry == nullptr && errno == EINTR) continue;
    failed = entry == nullptr && errno != 0;
    if (entry == nullptr) return entries;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") entries.push_back({entry->d_name, kindOf(number, *entry)});
  }
}

Descriptor copyOf(const Descriptor& file) {
  return Descriptor(restarted([&] { return ::fcntl(file.number(), F_DUPFD_CLOEXEC, 0); }));
}

// --- removing

bool removeEntry(int folder, const Entry& entry);

void removeContents(int above, const char* name) {
  const Descriptor folder = openFolder(above, name);
  if (!folder.isOpen()) return;
  bool failed = false;
  for (const Entry& entry : entriesOf(copyOf(folder), failed)) removeEntry(folder.number(), entry);
}

// A folder that could not be emptied stays by itself.
bool removeEntry(int folder, const Entry& entry) {
  const char* name = entry.name.c_str();
  const bool isFolder = entry.kind == Kind::folder;
  if (isFolder) removeContents(folder, name);
  const int flags = isFolder ? AT_REMOVEDIR : 0;
  return restarted([&] { return ::unlinkat(folder, name, flags); }) == 0 || errno == ENOENT;
}

// The path of the entry that is meant: a slash at the end would lead through a link, and a folder
// cannot be removed by the names "." and "..", which it has inside itself. Empty where there is
// none.
std::string entryPath(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const std::string_view last = std::string_view(path).substr(path.rfind('/') + 1);
  if (last != "." && last != "..") return path;
  const std::unique_ptr<char, FreeMemory> whole(::realpath(path.c_str(), nullptr));
  return whole == nullptr ? std::string() : std::string(whole.get());
}

// --- copying

// Times and permissions, as far as the disk takes them: one without them holds the bytes all the
// same. Times first, as permissions may be what forbids setting them.
void takeOver(int file, const struct stat& original) {
  const timespec times[2] = {{0, UTIME_OMIT}, native::modificationTime(original)};
  restarted([&] { return ::futimens(file, times); });
  restarted([&] { return ::fchmod(file, original.st_mode & 07777); });
}

// Names in two folders: where an entry is copied from, and to.
struct Way {
  int fromFolder;
  const char* from;
  int toFolder;
  const char* to;
};

bool copyFile(const Way& way) {
  const Descriptor source(restarted([&] {
    return ::openat(way.fromFolder, way.from, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  }));
  struct stat original = {};
  if (!source.isOpen() || ::fstat(source.number(), &original) != 0) return false;
  Descriptor target(restarted([&] {
    return ::openat(way.toFolder, way.to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  }));
  if (!target.isOpen()) return false;
  if (!native::copyContents(source.number(), target.number(), original.st_size)) return false;
  takeOver(target.number(), original);
  return target.close();
}

bool copyLink(const Way& way) {
  std::string target(PATH_MAX, '\0');
  const ssize_t length = ::readlinkat(way.fromFolder, way.from, target.data(), target.size());
  if (length < 0 || length == static_cast<ssize_t>(target.size())) return false;
  target.resize(static_cast<std::size_t>(length));
  if (restarted([&] { return ::symlinkat(target.c_str(), way.toFolder, way.to); }) != 0) {
    return false;
  }
  struct stat original = {};
  ::fstatat(way.fromFolder, way.from, &original, AT_SYMLINK_NOFOLLOW);
  const timespec time = native::modificationTime(original);
  const timespec times[2] = {time, time};
  restarted([&] { return ::utimensat(way.toFolder, way.to, times, AT_SYMLINK_NOFOLLOW); });
  return true;
}

bool copyNonFolder(const Way& way, Kind kind) {
  return kind == Kind::link ? copyLink(way) : copyFile(way);
}

std::string pathOf(const std::string& folder, const std::string& name) {
  std::string path = folder;
  path += '/';
  path += name;
  return path;
}

// One copy of a tree. Folders get their own permissions and times last of all, so that they can be
// filled, and removed again where the copy fails.
class TreeCopy {
 public:
  // Whether all is there; a failure leaves what has been made.
  bool make(const std::string& from, const std::string& to) {
    const std::optional<Kind> kind = kindOf(AT_FDCWD, from.c_str());
    if (!kind || *kind == Kind::other) return false;
    if (*kind != Kind::folder) {
      return copyNonFolder({AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str()}, *kind);
    }
    if (!copyFolder(from, to)) return false;
    takeOverFolders();
    return true;
  }

 private:
  struct Folder {
    std::string path;
    struct stat original;
  };

  bool copyFolder(const std::string& from, const std::string& to) {
    std::vector<std::string> below;
    if (!copyOneLevel(from, to, below)) return false;
    for (const std::string& name : below) {
      if (!copyFolder(pathOf(from, name), pathOf(to, name))) return false;
    }
    return true;
  }

  // Makes the folder and copies what it holds, but for its folders, whose names it gives. No file
  // stays open below, however deep a tree goes.
  bool copyOneLevel(const std::string& from, const std::string& to,
                    std::vector<std::string>& below) {
    const Descriptor source = openFolder(AT_FDCWD, from.c_str());
    struct stat original = {};
    if (!source.isOpen() || ::fstat(source.number(), &original) != 0) return false;
    if (isTheCopyItself(original) || !makeFolder(AT_FDCWD, to.c_str())) return false;
    folders_.push_back({to, original});
    const Descriptor target = openFolder(AT_FDCWD, to.c_str());
    if (!target.isOpen()) return false;
    if (folders_.size() == 1 && ::fstat(target.number(), &copy_) != 0) return false;
    bool failed = false;
    for (Entry& entry : entriesOf(copyOf(source), failed)) {
      const char* name = entry.name.c_str();
      if (entry.kind == Kind::folder) {
        below.push_back(std::move(entry.name));
      } else if (entry.kind != Kind::other &&
                 !copyNonFolder({source.number(), name, target.number(), name}, entry.kind)) {
        return false;
      }
    }
    return !failed;
  }

  // A folder that is copied into itself would never end.
  bool isTheCopyItself(const struct stat& folder) const {
    return !folders_.empty() && folder.st_dev == copy_.st_dev && folder.st_ino == copy_.st_ino;
  }

  void takeOverFolders() const {
    for (auto folder = folders_.rbegin(); folder != folders_.rend(); ++folder) {
      const Descriptor opened = openFolder(AT_FDCWD, folder->path.c_str());
      if (opened.isOpen()) takeOver(opened.number(), folder->original);
    }
  }

  std::vector<Folder> folders_;  // those made, a folder before what is below it
  struct stat copy_ = {};        // the first of them
};

// A hidden name in the same folder, for what is not to be seen in part. The same for the same path,
// so that what a kill left there is replaced by the next attempt; another for every other.
std::string hiddenBeside(const std::string& path, const char* prefix) {
  constexpr std::size_t kLongest = 200;  // of 255 bytes
  const std::size_t start = path.rfind('/') + 1;
  std::string name = path.substr(start);
  if (name.size() > kLongest) {
    const std::size_t whole = std::hash<std::string>()(name);
    std::size_t length = kLongest;
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80U) --length;
    name.resize(length);
    name.append("-").append(std::to_string(whole));
  }
  return path.substr(0, start) + prefix + name;
}

// How much of the path is there already, in whole levels.
std::size_t existingPart(const std::string& path) {
  std::size_t end = path.size();
  while (end > 0 && (end >= PATH_MAX || !isFolder(path.substr(0, end)))) {
    const std::size_t slash = path.rfind('/', end - 1);
    end = slash == std::string::npos ? 0 : slash;
  }
  return end;
}

}  // namespace

std::vector<std::string> listFolder(const std::string& path) {
  std::vector<std::string> names;
  if (!canBePath(path)) return names;
  Descriptor folder(
      restarted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!folder.isOpen()) return names;
  bool failed = false;
  std::vector<Entry> entries = entriesOf(std::move(folder), failed);
  for (Entry& entry : entries) names.push_back(std::move(entry.name));
  return names;
}

bool makeFolders(const std::string& path) {
  if (!canBePath(path) || path.empty()) return false;
  std::size_t start = existingPart(path);
  const std::string top = path.front() == '/' ? "/" : ".";
  Descriptor folder = openForSearch(AT_FDCWD, (start == 0 ? top : path.substr(0, start)).c_str());
  // From level to level, as the whole path would have to be walked anew for each of them.
  while (start < path.size()) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    if (end >= PATH_MAX) return false;
    if (end > start) {
      const std::string level = path.substr(start, end - start);
      makeFolder(folder.number(), level.c_str());
      folder = openForSearch(folder.number(), level.c_str());
    }
    start = end + 1;
  }
  return folder.isOpen();
}

bool removeTree(const std::string& path) {
  if (!canBePath(path)) return false;
  const std::string entry = entryPath(path);
  if (entry.empty()) return !exists(path);
  const std::optional<Kind> kind = kindOf(AT_FDCWD, entry.c_str());
  if (!kind) return errno == ENOENT || errno == ENOTDIR;
  return removeEntry(AT_FDCWD, {entry, *kind});
}

bool discardTree(const std::string& path) {
  const std::string hidden = hiddenBeside(path, kLeavingPrefix);
  removeTree(hidden);
  return removeTree(renamePath(path, hidden) ? hidden : path);
}

std::optional<std::string> stageCopy(const std::string& from, const std::string& to) {
  if (!canBePath(from) || !canBePath(to) || entryExists(to)) return std::nullopt;
  std::string staged = hiddenBeside(to, kArrivingPrefix);
  removeTree(staged);
  if (TreeCopy().make(from, staged)) return staged;
  removeTree(staged);
  return std::nullopt;
}

bool publishCopy(const std::string& staged, const std::string& to) {
  if (!entryExists(to) && renamePath(staged, to)) return true;
  removeTree(staged);
  return false;
}

bool copyTree(const std::string& from, const std::string& to) {
  const std::optional<std::string> staged = stageCopy(from, to);
  return staged && publishCopy(*staged, to);
}

}  // namespace kelvane::platform
