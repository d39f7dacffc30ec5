#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Native.h"
#include "platform/Restarted.h"
#include "platform/WriteAll.h"

namespace kelvane::platform::native {
namespace {

constexpr std::size_t kSmall = 65536;  // bytes

// A small file passes through the process in one step, which is faster than asking the disk where
// it has holes.
bool copySmall(int from, int to, std::size_t size) {
  std::array<char, kSmall> block;
  while (size > 0) {
    const ssize_t got = restarted([&] { return ::read(from, block.data(), size); });
    if (got <= 0) return false;
    const auto count = static_cast<std::size_t>(got);
    if (!writeAll(to, {block.data(), count})) return false;
    size -= count;
  }
  return true;
}

// Both files stand at the same place. Between two disks, and where a disk cannot share what it
// holds, the bytes go through the kernel's buffers.
bool copyBytes(int from, int to, off_t count) {
  while (count > 0) {
    const auto wanted = static_cast<std::size_t>(count);
    ssize_t copied =
        restarted([&] { return ::copy_file_range(from, nullptr, to, nullptr, wanted, 0); });
    if (copied < 0) copied = restarted([&] { return ::sendfile(to, from, nullptr, wanted); });
    if (copied <= 0) return false;
    count -= copied;
  }
  return true;
}

// The end of the data that starts at or behind `position`, which moves to its start; `size` where
// the rest is a hole. Where the disk does not tell, all is data.
off_t nextData(int file, off_t& position, off_t size) {
  const off_t data = ::lseek(file, position, SEEK_DATA);
  if (data >= 0) position = data;
  if (data < 0 && errno == ENXIO) position = size;
  const off_t hole = ::lseek(file, position, SEEK_HOLE);
  return hole < 0 ? size : std::min(hole, size);
}

}  // namespace

std::string systemVersionText() {
  struct utsname names = {};
  return ::uname(&names) == 0 ? std::string(names.release) : std::string();
}

std::string executablePath() {
  std::array<char, PATH_MAX> path;
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  return {path.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

const int kForSearch = O_PATH;

timespec modificationTime(const struct stat& entry) { return entry.st_mtim; }

bool copyContents(int from, int to, off_t size) {
  if (size <= static_cast<off_t>(kSmall))
    return copySmall(from, to, static_cast<std::size_t>(size));
  if (restarted([&] { return ::ftruncate(to, size); }) != 0) return false;
  for (off_t position = 0; position < size;) {
    const off_t end = nextData(from, position, size);
    if (::lseek(from, position, SEEK_SET) < 0 || ::lseek(to, position, SEEK_SET) < 0) return false;
    if (!copyBytes(from, to, end - position)) return false;
    position = end;
  }
  return true;
}

bool synchronise(int file) {
  return restarted([&] { return ::fsync(file); }) == 0;
}

bool synchroniseTree(const std::string& path) {
  const Descriptor entry(
      restarted([&] { return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
  // The whole disk at once: a tree file by file takes far longer.
  return entry.isOpen() && restarted([&] { return ::syncfs(entry.number()); }) == 0;
}

void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags) {
  ::posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1);
  ::posix_spawnattr_setflags(attributes, flags);
}

}  // namespace kelvane::platform::native
