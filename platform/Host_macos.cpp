#include <array>
#include <cstdint>

#include <copyfile.h>
#include <mach-o/dyld.h>
#include <sys/stat.h>
#include <sys/sysctl.h>
#include <unistd.h>

#include "platform/Host.h"

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

timespec modificationTime(const std::string& path) {
  struct stat entry = {};
  ::lstat(path.c_str(), &entry);
  return entry.st_mtimespec;
}

bool copyContents(const std::string& from, const std::string& to) {
  if (::copyfile(from.c_str(), to.c_str(), nullptr, COPYFILE_DATA | COPYFILE_EXCL) != 0) {
    return false;
  }
  return ::chmod(to.c_str(), 0600) == 0;
}

void closeOtherFiles(posix_spawn_file_actions_t* actions, posix_spawnattr_t* attributes,
                     short flags) {
  ::posix_spawn_file_actions_addinherit_np(actions, STDERR_FILENO);
  ::posix_spawnattr_setflags(attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // namespace kelvane::platform::native
