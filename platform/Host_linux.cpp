#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Host.h"

namespace kelvane::platform::native {
namespace {

// Both files stand at the same place. Between two disks, and where a disk cannot share what it
// holds, the bytes go through the kernel's buffers.
bool copyBytes(int from, int to, off_t count) {
  while (count > 0) {
    const auto wanted = static_cast<std::size_t>(count);
    ssize_t copied = ::copy_file_range(from, nullptr, to, nullptr, wanted, 0);
    if (copied < 0) copied = ::sendfile(to, from, nullptr, wanted);
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
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).string();
}

timespec modificationTime(const std::string& path) {
  struct stat entry = {};
  ::lstat(path.c_str(), &entry);
  return entry.st_mtim;
}

bool copyContents(const std::string& from, const std::string& to) {
  struct stat entry = {};
  const Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source.isOpen() || ::fstat(source.number(), &entry) != 0) return false;
  Descriptor target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!target.isOpen() || ::ftruncate(target.number(), entry.st_size) != 0) return false;
  for (off_t position = 0; position < entry.st_size;) {
    const off_t end = nextData(source.number(), position, entry.st_size);
    if (::lseek(source.number(), position, SEEK_SET) < 0) return false;
    if (::lseek(target.number(), position, SEEK_SET) < 0) return false;
    if (!copyBytes(source.number(), target.number(), end - position)) return false;
    position = end;
  }
  return target.close();
}

void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags) {
  ::posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1);
  ::posix_spawnattr_setflags(attributes, flags);
}

}  // namespace kelvane::platform::native
