// Loaded before the worker's libraries: its sleeps end at once and are written down, and every
// version of the job file that takes the place of an earlier one is kept.
//   KELVANE_TEST_SLEEPS    file that gets a line of seconds for each sleep
//   KELVANE_TEST_WRITES    file that gets a line for each fsync and each rename, with their paths
//   KELVANE_TEST_VERSIONS  folder that gets the versions, as 0001.json and so on

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

extern "C" {
unsigned int sleep(unsigned int seconds);
int rename(const char* from, const char* to) noexcept;
int fsync(int file);
}

namespace {

// The next function of that name after this library's own.
template <typename Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void note(const char* variable, const std::string& line) {
  const char* path = std::getenv(variable);
  if (path == nullptr) return;
  const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  ::dprintf(file, "%s\n", line.c_str());
  ::close(file);
}

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
  note("KELVANE_TEST_SLEEPS", std::to_string(seconds));
  return 0;
}

int fsync(int file) {
  std::error_code unknown;
  const std::filesystem::path path =
      std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), unknown);
  note("KELVANE_TEST_WRITES", "fsync " + path.string());
  static const auto next = real<int(int)>("fsync");
  return next(file);
}

int rename(const char* from, const char* to) noexcept {
  note("KELVANE_TEST_WRITES", std::string("rename ") + from + " " + to);
  static const auto next = real<int(const char*, const char*)>("rename");
  const int result = next(from, to);
  if (result == 0) keepVersion(to);
  return result;
}
