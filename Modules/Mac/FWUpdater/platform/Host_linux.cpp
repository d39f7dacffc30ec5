#include <filesystem>
#include <system_error>

#include <sys/utsname.h>

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

}  // namespace kelvane::platform::native
