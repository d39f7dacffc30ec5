// Loaded before the worker's libraries: its sleeps end at once and are written down, and every
// version of the job file that takes the place of an earlier one is kept.
//   KELVANE_TEST_SLEEPS    file that gets a line of seconds for each sleep
//   KELVANE_TEST_VERSIONS  folder that gets the versions, as 0001.json and so on

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

extern "C" {
unsigned int sleep(unsigned int seconds);
int rename(const char* from, const char* to) noexcept;
}

namespace {

bool isJobFile(const char* path) {
  const char* name = std::strrchr(path, '/');
  return name != nullptr && std::strcmp(name, "/BGPLog.json") == 0;
}

void keepVersion(const char* path) {
  static int number = 0;
  const char* folder = std::getenv("KELVANE_TEST_VERSIONS");
  if (folder == nullptr || !isJobFile(path)) return;
  std::array<char, 32> name = {};
  std::snprintf(name.data(), name.size(), "%04d.json", ++number);
  std::error_code failed;
  std::filesystem::copy_file(path, std::filesystem::path(folder) / name.data(), failed);
  if (failed) std::abort();
}

}  // namespace

unsigned int sleep(unsigned int seconds) {
  if (const char* path = std::getenv("KELVANE_TEST_SLEEPS")) {
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ::dprintf(file, "%u\n", seconds);
    ::close(file);
  }
  return 0;
}

int rename(const char* from, const char* to) noexcept {
  using Rename = int (*)(const char*, const char*);
  static const auto real = reinterpret_cast<Rename>(::dlsym(RTLD_NEXT, "rename"));
  const int result = real(from, to);
  if (result == 0) keepVersion(to);
  return result;
}
