#include <array>
#include <cstdint>

#include <copyfile.h>
#include <fcntl.h>
#include <fts.h>
#include <mach-o/dyld.h>
#include <sys/sysctl.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Native.h"
#include "platform/Restarted.h"

namespace kelvane::platform::native {

std::string systemVersionText() {
  std::array<char, 64> text = {};
  std::size_t size = text.size() - 1;
  return ::sysctlbyname("kern.osproductversion", text.data(), &size, nullptr, 0) == 0
             ? std::string(text.data())
             : std::string();
}

std::string executablePath() {
  std::uint32_t size = 0;
  ::_NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (::_NSGetExecutablePath(path.data(), &size) != 0) return {};
  return path.c_str();  // without the terminator and what follows it
}

const int kForSearch = O_SEARCH;

timespec modificationTime(const struct stat& entry) { return entry.st_mtimespec; }

bool copyContents(int from, int to, off_t /*size*/) {
  return restarted([&] {  // from the start again, as a part may have been copied
           ::lseek(from, 0, SEEK_SET);
           ::lseek(to, 0, SEEK_SET);
           return ::fcopyfile(from, to, nullptr, COPYFILE_DATA);
         }) == 0;
}

// fsync leaves the bytes in the drive's own buffer; disks that cannot empty it have only fsync.
bool synchronise(int file) {
  if (restarted([&] { return ::fcntl(file, F_FULLFSYNC); }) != -1) return true;
  return restarted([&] { return ::fsync(file); }) == 0;
}

bool synchroniseTree(const std::string& path) {
  std::string root = path;
  std::array<char*, 2> roots = {root.data(), nullptr};
  FTS* walk = ::fts_open(roots.data(), FTS_PHYSICAL | FTS_COMFOLLOW | FTS_NOCHDIR, nullptr);
  if (walk == nullptr) return false;
  // Every file goes to the drive; the drive's buffer is then emptied once.
  while (const FTSENT* entry = ::fts_read(walk)) {
    if (entry->fts_info != FTS_F && entry->fts_info != FTS_DP) continue;
    const Descriptor file(
        restarted([&] { return ::open(entry->fts_accpath, O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
    if (file.isOpen()) restarted([&] { return ::fsync(file.number()); });
  }
  ::fts_close(walk);
  const Descriptor top(
      restarted([&] { return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
  return top.isOpen() && synchronise(top.number());
}

void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags) {
  const bool hasStandardError = ::fcntl(STDERR_FILENO, F_GETFD) != -1;
  if (hasStandardError) ::posix_spawn_file_actions_addinherit_np(actions, STDERR_FILENO);
  ::posix_spawnattr_setflags(attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // namespace kelvane::platform::native
