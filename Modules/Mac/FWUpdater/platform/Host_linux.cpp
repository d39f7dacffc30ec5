#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/Host.h"

namespace kelvane::platform::native {

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

void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags) {
  ::posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1);
  ::posix_spawnattr_setflags(attributes, flags);
}

}  // namespace kelvane::platform::native
