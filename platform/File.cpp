#include "platform/File.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Exception.h"
#include "platform/Native.h"
#include "platform/Restarted.h"
#include "platform/WriteAll.h"

namespace kelvane::platform {
namespace {

[[noreturn]] void raise(const char* action, const std::string& path) {
  const int cause = errno;
  throw Exception(std::string(action) + " " + path + ": " + std::strerror(cause));
}

// Never waits for whoever is at the other end of a pipe; no terminal becomes the worker's own.
Descriptor openFile(const std::string& path, int flags) {
  if (canBePath(path)) {
    return Descriptor(restarted(
        [&] { return ::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666); }));
  }
  errno = ENOENT;
  return Descriptor(-1);
}

// What is left of the pieces behind the bytes that were written.
void skipWritten(std::vector<iovec>& pieces, std::size_t written) {
  auto piece = pieces.begin();
  for (; piece != pieces.end() && written >= piece->iov_len; ++piece) written -= piece->iov_len;
  pieces.erase(pieces.begin(), piece);
  if (pieces.empty()) return;
  pieces.front().iov_base = static_cast<char*>(pieces.front().iov_base) + written;
  pieces.front().iov_len -= written;
}

bool writePieces(int file, std::vector<iovec> pieces) {
  constexpr std::size_t kMostPieces = 1024;  // what every system takes
  while (!pieces.empty()) {
    const auto count = static_cast<int>(std::min(pieces.size(), kMostPieces));
    const ssize_t written = restarted([&] { return ::writev(file, pieces.data(), count); });
    if (written < 0) return false;
    skipWritten(pieces, static_cast<std::size_t>(written));
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
  return restarted([&] { return ::fchmod(file, 0666 & ~mask); }) == 0;
}

// Takes over the old file's owner, where allowed, and its permission bits; a new file gets the
// default ones. Nothing that is no file is to be replaced.
bool takeOverAttributes(int file, const std::string& oldPath) {
  struct stat old = {};
  if (::stat(oldPath.c_str(), &old) != 0) return errno == ENOENT && takeDefaultPermissions(file);
  struct stat fresh = {};
  if (!S_ISREG(old.st_mode) || ::fstat(file, &fresh) != 0) return false;
  if (old.st_uid != fresh.st_uid || old.st_gid != fresh.st_gid) {
    [[maybe_unused]] const int allowed =
        restarted([&] { return ::fchown(file, old.st_uid, old.st_gid); });
  }
  return restarted([&] { return ::fchmod(file, old.st_mode & 07777); }) == 0;
}

// A new file beside the replaced one, under a name of its own: one made of the old file's could be
// longer than names can be. `path` becomes its path.
Descriptor makeTemporary(const std::string& folder, std::string& path) {
  return Descriptor(restarted([&] {
    path = folder + "/" + kReplacementPrefix + "XXXXXX";
    return ::mkostemp(path.data(), O_CLOEXEC);
  }));
}

bool fillTemporary(Descriptor& file, const std::string& replaced, std::string_view bytes) {
  const bool filled = writeAll(file.number(), bytes) &&
                      takeOverAttributes(file.number(), replaced) &&
                      native::synchronise(file.number());
  return file.close() && filled;
}

// At most so many bytes into the room; returns how many, none at the end of the file.
std::size_t readSome(const Descriptor& file, const std::string& path, char* room,
                     std::size_t size) {
  const ssize_t got =
      restarted([&] { return ::read(file.number(), room, std::min(size, kMostAtOnce)); });
  if (got < 0) raise("read", path);
  return static_cast<std::size_t>(got);
}

// Returns whether the file holds just the known bytes; where it does not, `bytes` becomes what was
// read of it till then. Each piece is compared while it is in the processor's cache.
bool readKnown(const Descriptor& file, const std::string& path, std::string_view known,
               std::string& bytes) {
  constexpr std::size_t kPiece = std::size_t{256} * 1024;
  // Room for one byte more than there should be: the last reading tells the end.
  std::string piece(std::min(known.size() + 1, kPiece), '\0');
  for (std::size_t same = 0;;) {
    const std::size_t got = readSome(file, path, piece.data(), piece.size());
    const std::string_view fresh(piece.data(), got);
    if (got == 0 && same == known.size()) return true;
    if (got == 0 || known.substr(same, got) != fresh) {
      bytes.append(known.substr(0, same)).append(fresh);
      return false;
    }
    same += got;
  }
}

// Adds what has not been read yet of a file that should have so many bytes.
void readRest(const Descriptor& file, const std::string& path, std::size_t size,
              std::string& bytes) {
  std::size_t filled = bytes.size();
  bytes.resize(std::max(size, filled) + 1);
  for (;;) {
    const std::size_t got = readSome(file, path, bytes.data() + filled, bytes.size() - filled);
    filled += got;
    if (got == 0) break;
    if (filled == bytes.size()) bytes.resize(2 * bytes.size());
  }
  bytes.resize(filled);
}

}  // namespace

bool canBePath(std::string_view text) { return text.find('\0') == std::string_view::npos; }

bool exists(const std::string& path) {
  struct stat entry = {};
  return canBePath(path) && ::stat(path.c_str(), &entry) == 0;
}

bool isFolder(const std::string& path) {
  struct stat entry = {};
  return canBePath(path) && ::stat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode);
}

std::uint64_t fileSize(const std::string& path) {
  struct stat entry = {};
  if (!canBePath(path) || ::stat(path.c_str(), &entry) != 0) return 0;
  return static_cast<std::uint64_t>(entry.st_size);
}

bool renamePath(const std::string& from, const std::string& to) {
  if (!canBePath(from) || !canBePath(to)) return false;
  return restarted([&] { return ::rename(from.c_str(), to.c_str()); }) == 0;
}

bool movePath(const std::string& from, const std::string& to) {
  // A path that cannot be renamed as it is none cannot be copied either, whatever errno was.
  return renamePath(from, to) || (errno == EXDEV && copyTree(from, to) && removeTree(from));
}

bool createEmptyFile(const std::string& path) {
  Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
  return file.isOpen() && file.close();
}

std::string readFile(const std::string& path) {
  return readFileUnlessKnown(path, {}).value_or(std::string());
}

std::optional<std::string> readFileUnlessKnown(const std::string& path, std::string_view known) {
  const Descriptor file = openFile(path, O_RDONLY);
  struct stat entry = {};
  if (!file.isOpen() || ::fstat(file.number(), &entry) != 0) raise("open", path);
  if (!S_ISREG(entry.st_mode) && !S_ISDIR(entry.st_mode)) {  // a folder's reading tells its cause
    throw Exception("open " + path + ": not a regular file");
  }
  const auto size = static_cast<std::size_t>(entry.st_size);
  std::string bytes;
  if (size == known.size() && readKnown(file, path, known, bytes)) return std::nullopt;
  readRest(file, path, size, bytes);
  return bytes;
}

bool replaceFile(const std::string& path, std::string_view bytes) {
  return replaceFile(path, bytes, [] { return true; });
}

bool replaceFile(const std::string& path, std::string_view bytes,
                 const std::function<bool()>& mayReplace) {
  if (!canBePath(path)) return false;
  const std::string replaced = resolvedLinks(path);
  if (replaced.empty()) return false;
  const std::filesystem::path above = std::filesystem::path(replaced).parent_path();
  const std::string folder = above.empty() ? "." : above.string();
  std::string temporary;
  Descriptor file = makeTemporary(folder, temporary);
  if (!file.isOpen()) return false;
  if (!fillTemporary(file, replaced, bytes) || !mayReplace() || !renamePath(temporary, replaced)) {
    ::unlink(temporary.c_str());
    return false;
  }
  // Makes the renaming itself last; the new file is whole without it.
  synchroniseFolder(folder);
  return true;
}

FileEnd::FileEnd(std::string path)
    : path_(std::move(path)), file_(openFile(path_, O_WRONLY | O_APPEND)) {
  struct stat entry = {};
  if (file_.isOpen() && (::fstat(file_.number(), &entry) != 0 || !S_ISREG(entry.st_mode))) {
    file_.close();
  }
}

void FileEnd::append(const std::vector<std::string_view>& pieces) {
  std::vector<iovec> all;
  all.reserve(pieces.size());
  for (const std::string_view piece : pieces) {
    if (!piece.empty()) all.push_back({const_cast<char*>(piece.data()), piece.size()});
  }
  if (!writePieces(file_.number(), std::move(all))) raise("write", path_);
}

void FileEnd::append(std::string_view text) {
  if (!writeAll(file_.number(), text)) raise("write", path_);
}

bool synchroniseTree(const std::string& path) {
  return canBePath(path) && native::synchroniseTree(path);
}

bool synchroniseFolder(const std::string& path) {
  const Descriptor folder = openFile(path, O_RDONLY | O_DIRECTORY);
  return folder.isOpen() && native::synchronise(folder.number());
}

std::string withoutLastComponent(const std::string& path) {
  std::string kept = path;
  while (kept.size() > 1 && kept.back() == '/') kept.pop_back();
  const std::size_t slash = kept.rfind('/');
  if (slash == std::string::npos) return "";
  return kept.substr(0, slash == 0 ? 1 : slash);
}

}  // namespace kelvane::platform
