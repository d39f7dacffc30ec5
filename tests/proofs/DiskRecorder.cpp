#include "tests/proofs/DiskRecorder.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kelvane::proofs {
namespace {

std::string fileOf(const Call& call, const char* what, std::uint64_t number) {
  return "/proc/" + std::to_string(call.process) + "/" + what + "/" +
         std::to_string(static_cast<int>(number));
}

// Where the process reads or writes next in the file.
std::size_t positionIn(const Call& call, std::uint64_t file) {
  std::ifstream told(fileOf(call, "fdinfo", file));
  std::string label;
  std::size_t position = 0;
  told >> label >> position;
  return position;
}

std::string bytesAt(const std::string& path, std::size_t offset, std::size_t size) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes(size, '\0');
  file.seekg(static_cast<std::streamoff>(offset));
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  if (!file) throw std::runtime_error("what was written cannot be read: " + path);
  return bytes;
}

}  // namespace

std::string DiskRecorder::below(const std::string& path) const {
  return isBelow(path, folder_) && path.size() > folder_.size() ? path.substr(folder_.size() + 1)
                                                                : "";
}

Decision DiskRecorder::before(const Call& call) {
  if (isSleep(call)) return {.kind = Decision::Kind::answer};
  if (!isSynchronisation(call)) {
    return {.kind =
                below(changedPath(call)).empty() ? Decision::Kind::proceed : Decision::Kind::watch};
  }
  const std::string path = pathOfFile(call.process, call.arguments[0]);
  if (!isBelow(path, folder_)) return {};
  if (call.number == SYS_syncfs) {
    disk_.synchroniseAll();
  } else {
    disk_.synchronise(below(path));
  }
  changed_(below(path), call);
  return {.kind = Decision::Kind::answer};
}

void DiskRecorder::after(const Call& call, long result) {
  const std::string path = below(changedPath(call));
  if (result < 0 || path.empty()) return;
  if (writes(call) ? takeBytes(call, path, result) : takeName(call, path)) changed_(path, call);
}

bool DiskRecorder::takeBytes(const Call& call, const std::string& path, long result) {
  if (!disk_.exists(path)) return false;  // a pipe
  const std::uint64_t file = writtenFile(call);
  if (call.number == SYS_ftruncate) {
    disk_.resize(path, call.arguments[1]);
    return true;
  }
  const auto size = static_cast<std::size_t>(result);
  const std::size_t offset =
      call.number == SYS_pwrite64 ? call.arguments[3] : positionIn(call, file) - size;
  disk_.write(path, offset, bytesAt(fileOf(call, "fd", file), offset, size));
  return true;
}

bool DiskRecorder::takeName(const Call& call, const std::string& path) {
  if (isRename(call)) {
    disk_.rename(below(sourceOf(call)), path);
    return true;
  }
  switch (call.number) {
    case SYS_mkdir:
    case SYS_mkdirat:
      disk_.makeFolder(path);
      return true;
    case SYS_symlink:
    case SYS_symlinkat:
      disk_.makeLink(path, textOf(call, 0));
      return true;
    case SYS_open:
    case SYS_openat:
      break;
    default:
      disk_.remove(path);
      return true;
  }
  const auto flags = static_cast<int>(call.arguments[call.number == SYS_openat ? 2 : 1]);
  const bool isThere = disk_.exists(path);
  if (isThere && (flags & O_TRUNC) != 0) {
    disk_.resize(path, 0);
    return true;
  }
  if (isThere || (flags & O_CREAT) == 0) return false;
  disk_.makeFile(path);
  return true;
}

}  // namespace kelvane::proofs
