// One file: read, replaced, appended to.

#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/floor/Actions.h"
#include "benchmarks/floor/Fail.h"

namespace kelvane::floor {
namespace {

void writeWhole(int file, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t written = checked(::write(file, bytes.data(), bytes.size()), path);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::size_t sizeOf(int file, const std::string& path) {
  struct stat entry = {};
  checked(::fstat(file, &entry), path);
  return static_cast<std::size_t>(entry.st_size);
}

void takeOverAttributes(int file, const std::string& path) {
  struct stat old = {};
  checked(::stat(path.c_str(), &old), path);
  checked(::fchmod(file, old.st_mode & 07777), path);
}

}  // namespace

void readWhole(const std::string& path) {
  static std::vector<char> memory;
  const int file = checked(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
  const std::size_t size = sizeOf(file, path);
  if (memory.size() < size) memory.resize(size);
  for (std::size_t length = 0; length < size;) {
    const ssize_t got = checked(::read(file, memory.data() + length, size - length), path);
    if (got == 0) break;
    length += static_cast<std::size_t>(got);
  }
  ::close(file);
}

void replaceFile(const std::string& path, std::string_view bytes) {
  const std::string folder = path.substr(0, path.rfind('/'));
  std::string temporary = folder + "/.floor-XXXXXX";
  const int file = checked(::mkostemp(temporary.data(), O_CLOEXEC), temporary);
  writeWhole(file, bytes, temporary);
  takeOverAttributes(file, path);
  checked(::fsync(file), temporary);
  checked(::close(file), temporary);
  renamePath(temporary, path);
  synchroniseFolder(folder);
}

void appendLine(const std::string& path, std::string_view bytes) {
  const int file = checked(::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC), path);
  writeWhole(file, bytes, path);
  ::close(file);
}

void runProgram(const std::string& path) {
  pid_t process = 0;
  char* arguments[] = {const_cast<char*>(path.c_str()), nullptr};
  errno = ::posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environ);
  if (errno != 0) fail(path);
  int status = 0;
  checked(::waitpid(process, &status, 0), path);
}

std::string_view mappedFile(const std::string& path) {
  const int file = checked(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
  const std::size_t size = sizeOf(file, path);
  if (size == 0) return {};
  const void* memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
  if (memory == MAP_FAILED) fail(path);
  ::close(file);
  return {static_cast<const char*>(memory), size};
}

}  // namespace kelvane::floor
