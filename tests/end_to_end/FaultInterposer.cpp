// Loaded before the worker's libraries: calls of the worker's own, not of its children, fail.
//   KELVANE_FAULT_INTERRUPT  the number, from 1, of the call that a signal interrupts
//   KELVANE_FAULT_REFUSE     the name of the call that the disk refuses
//   KELVANE_FAULT_TIMES      how often it does; always, where that is not set
//   KELVANE_FAULT_DONE       file that gets a line with the name of each call that failed

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/end_to_end/NextFunction.h"

namespace {

bool isTheWorker() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).filename() == "Kelvane";
}

const char* faultOf(const char* variable) {
  static const bool isMeant = isTheWorker();
  return isMeant ? std::getenv(variable) : nullptr;
}

void noteCall(const char* name) {
  static const auto nextOpen = kelvane::test::nextFunction<int(const char*, int, ...)>("open");
  static const auto nextWrite =
      kelvane::test::nextFunction<ssize_t(int, const void*, std::size_t)>("write");
  static const auto nextClose = kelvane::test::nextFunction<int(int)>("close");
  const std::string line = std::string(name) + "\n";
  const int file =
      nextOpen(std::getenv("KELVANE_FAULT_DONE"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (nextWrite(file, line.data(), line.size()) < 0) std::abort();
  nextClose(file);
}

bool isRefusedStill() {
  static int refusals = 0;
  const char* times = faultOf("KELVANE_FAULT_TIMES");
  return times == nullptr || ++refusals <= std::atoi(times);
}

// Whether this call is to fail; errno then tells how.
bool fails(const char* name) {
  static int calls = 0;
  ++calls;
  const char* interrupted = faultOf("KELVANE_FAULT_INTERRUPT");
  const char* refused = faultOf("KELVANE_FAULT_REFUSE");
  const bool isInterrupted = interrupted != nullptr && std::atoi(interrupted) == calls;
  const bool isRefused = refused != nullptr && std::strcmp(refused, name) == 0 && isRefusedStill();
  if (!isInterrupted && !isRefused) return false;
  noteCall(name);
  errno = isInterrupted ? EINTR : EPERM;
  return true;
}

// The third or fourth argument of open and openat.
mode_t modeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

// Each call by its own name, with its arguments' types and names.
#define FAULTY(Result, name, types, ...)                                       \
  extern "C" Result name types;                                                \
  Result name types {                                                          \
    static const auto next = kelvane::test::nextFunction<Result types>(#name); \
    if (fails(#name)) return -1;                                               \
    return next(__VA_ARGS__);                                                  \
  }
#define FAULTY_NOEXCEPT(Result, name, types, ...)                              \
  extern "C" Result name types noexcept;                                       \
  Result name types noexcept {                                                 \
    static const auto next = kelvane::test::nextFunction<Result types>(#name); \
    if (fails(#name)) return -1;                                               \
    return next(__VA_ARGS__);                                                  \
  }

extern "C" int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  static const auto next = kelvane::test::nextFunction<int(const char*, int, ...)>("open");
  return fails("open") ? -1 : next(path, flags, mode);
}

extern "C" int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  static const auto next = kelvane::test::nextFunction<int(int, const char*, int, ...)>("openat");
  return fails("openat") ? -1 : next(folder, path, flags, mode);
}

// Interrupted, the file is closed all the same.
extern "C" int close(int file) {
  static const auto next = kelvane::test::nextFunction<int(int)>("close");
  const int result = next(file);
  return fails("close") ? -1 : result;
}

FAULTY(int, mkostemp, (char* path, int flags), path, flags)
FAULTY(ssize_t, read, (int file, void* bytes, std::size_t size), file, bytes, size)
FAULTY(ssize_t, write, (int file, const void* bytes, std::size_t size), file, bytes, size)
FAULTY(ssize_t, writev, (int file, const iovec* pieces, int count), file, pieces, count)
FAULTY(int, fsync, (int file), file)
FAULTY(ssize_t, copy_file_range,
       (int from, off64_t* fromOffset, int to, off64_t* toOffset, std::size_t size,
        unsigned int flags),
       from, fromOffset, to, toOffset, size, flags)
FAULTY(pid_t, waitpid, (pid_t process, int* status, int options), process, status, options)
FAULTY_NOEXCEPT(ssize_t, sendfile, (int to, int from, off_t* offset, std::size_t size), to, from,
                offset, size)
FAULTY_NOEXCEPT(int, fchmod, (int file, mode_t mode), file, mode)
FAULTY_NOEXCEPT(int, fchown, (int file, uid_t owner, gid_t group), file, owner, group)
FAULTY_NOEXCEPT(int, syncfs, (int file), file)
FAULTY_NOEXCEPT(int, ftruncate, (int file, off_t size), file, size)
FAULTY_NOEXCEPT(int, rename, (const char* from, const char* to), from, to)
FAULTY_NOEXCEPT(int, mkdirat, (int folder, const char* path, mode_t mode), folder, path, mode)
FAULTY_NOEXCEPT(int, unlinkat, (int folder, const char* path, int flags), folder, path, flags)
FAULTY_NOEXCEPT(int, symlinkat, (const char* target, int folder, const char* path), target, folder,
                path)
FAULTY_NOEXCEPT(int, futimens, (int file, const timespec* times), file, times)
FAULTY_NOEXCEPT(int, utimensat, (int folder, const char* path, const timespec* times, int flags),
                folder, path, times, flags)
