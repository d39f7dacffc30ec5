// Loaded before the worker's libraries: its sleeps end at once and are written down, and every
// version of the job file that takes the place of an earlier one is kept.
//   KELVANE_TEST_SLEEPS    file that gets a line of seconds for each sleep
//   KELVANE_TEST_WRITES    file that gets a line for each fsync, syncfs, rename and removal of a
//                          folder, with their paths
//   KELVANE_TEST_VERSIONS  folder that gets the versions, as 0001.json and so on
//   KELVANE_TEST_TIME      where the worker's clock stands at its start, in seconds since 1970; its
//                          sleeps alone move it on
//   KELVANE_TEST_KILL      the worker is killed at so many sleeps

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "tests/end_to_end/NextFunction.h"

extern "C" {
unsigned int sleep(unsigned int seconds);
std::time_t time(std::time_t* now) noexcept;
int rename(const char* from, const char* to) noexcept;
int fsync(int file);
int syncfs(int file) noexcept;
int unlinkat(int folder, const char* path, int flags) noexcept;
}

namespace {

void note(const char* variable, const std::string& line) {
  const char* path = std::getenv(variable);
  if (path == nullptr) return;
  int file = -1;
  do {  // another library may have the call interrupted
    file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  } while (file < 0 && errno == EINTR);
  ::dprintf(file, "%s\n", line.c_str());
  ::close(file);
}

std::string pathOf(int file) {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), unknown).string();
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
  do {
    std::filesystem::copy_file(path, std::filesystem::path(folder) / name.data(),
                               std::filesystem::copy_options::overwrite_existing, failed);
  } while (failed == std::errc::interrupted);
  if (failed) std::abort();
}

std::time_t slept = 0;  // seconds

}  // namespace

unsigned int sleep(unsigned int seconds) {
  static int count = 0;
  note("KELVANE_TEST_SLEEPS", std::to_string(seconds));
  slept += static_cast<std::time_t>(seconds);
  const char* last = std::getenv("KELVANE_TEST_KILL");
  if (last != nullptr && ++count == std::atoi(last)) ::raise(SIGKILL);
  return 0;
}

std::time_t time(std::time_t* now) noexcept {
  static const auto next = kelvane::test::nextFunction<std::time_t(std::time_t*)>("time");
  const char* start = std::getenv("KELVANE_TEST_TIME");
  const std::time_t told = start == nullptr ? next(nullptr) : std::atol(start) + slept;
  if (now != nullptr) *now = told;
  return told;
}

int syncfs(int file) noexcept {
  note("KELVANE_TEST_WRITES", "syncfs " + pathOf(file));
  static const auto next = kelvane::test::nextFunction<int(int)>("syncfs");
  return next(file);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  if (flags == AT_REMOVEDIR) {
    const std::string above = folder == AT_FDCWD ? "" : pathOf(folder) + "/";
    note("KELVANE_TEST_WRITES", "rmdir " + above + path);
  }
  static const auto next = kelvane::test::nextFunction<int(int, const char*, int)>("unlinkat");
  return next(folder, path, flags);
}

int fsync(int file) {
  note("KELVANE_TEST_WRITES", "fsync " + pathOf(file));
  static const auto next = kelvane::test::nextFunction<int(int)>("fsync");
  return next(file);
}

int rename(const char* from, const char* to) noexcept {
  note("KELVANE_TEST_WRITES", std::string("rename ") + from + " " + to);
  static const auto next = kelvane::test::nextFunction<int(const char*, const char*)>("rename");
  const int result = next(from, to);
  if (result == 0) keepVersion(to);
  return result;
}
