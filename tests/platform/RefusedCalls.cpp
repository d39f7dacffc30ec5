#include "tests/platform/RefusedCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <sys/utsname.h>

namespace kelvane::test {
namespace {

std::vector<RefusedCall*> refused;
std::optional<unsigned char> toldKind;

}  // namespace

RefusedCall::RefusedCall(std::string function, int n, int cause, long result)
    : function_(std::move(function)), n_(n), cause_(cause), result_(result) {
  refused.push_back(this);
}

RefusedCall::~RefusedCall() {
  refused.erase(std::remove(refused.begin(), refused.end(), this), refused.end());
}

bool RefusedCall::refuses(const char* function, long& result) {
  for (RefusedCall* call : refused) {
    if (call->function_ != function || call->n_ <= 0 || --call->n_ > 0) continue;
    result = call->cause_ == 0 ? call->result_ : -1;
    if (call->cause_ != 0) errno = call->cause_;
    return true;
  }
  return false;
}

ToldKinds::ToldKinds(unsigned char kind) { toldKind = kind; }
ToldKinds::~ToldKinds() { toldKind.reset(); }

}  // namespace kelvane::test

// The names of functions that take or give places in a file: where an address has 32 bits, these
// are for files of any size.
#if __SIZEOF_POINTER__ == 4
#define KELVANE_LARGE "64"
#else
#define KELVANE_LARGE
#endif

// A function whose calls can be refused: its type, its name, its parameters, what it is called
// with; and what the linker calls it.
#define KELVANE_REFUSABLE(Type, name, parameters, arguments) \
  KELVANE_REFUSABLE_AS(Type, name, #name, parameters, arguments)
#define KELVANE_REFUSABLE_LARGE(Type, name, parameters, arguments) \
  KELVANE_REFUSABLE_AS(Type, name, #name KELVANE_LARGE, parameters, arguments)
#define KELVANE_REFUSABLE_AS(Type, name, symbol, parameters, arguments) \
  extern "C" Type __real_##name parameters __asm__("__real_" symbol);   \
  extern "C" Type __wrap_##name parameters __asm__("__wrap_" symbol);   \
  Type __wrap_##name parameters {                                       \
    long result = 0;                                                    \
    if (kelvane::test::RefusedCall::refuses(#name, result)) {           \
      return static_cast<Type>(result);                                 \
    }                                                                   \
    return __real_##name arguments;                                     \
  }

KELVANE_REFUSABLE_LARGE(int, stat, (const char* path, struct stat* entry), (path, entry))
KELVANE_REFUSABLE_LARGE(int, fstat, (int file, struct stat* entry), (file, entry))
KELVANE_REFUSABLE(int, fchmod, (int file, mode_t mode), (file, mode))
KELVANE_REFUSABLE(int, uname, (utsname * names), (names))
KELVANE_REFUSABLE_LARGE(off_t, lseek, (int file, off_t offset, int from), (file, offset, from))
KELVANE_REFUSABLE(ssize_t, read, (int file, void* room, std::size_t size), (file, room, size))
KELVANE_REFUSABLE(ssize_t, write, (int file, const void* bytes, std::size_t size),
                  (file, bytes, size))
KELVANE_REFUSABLE(ssize_t, writev, (int file, const iovec* pieces, int count),
                  (file, pieces, count))
KELVANE_REFUSABLE_LARGE(ssize_t, sendfile, (int to, int from, off_t* offset, std::size_t size),
                        (to, from, offset, size))
KELVANE_REFUSABLE(ssize_t, copy_file_range,
                  (int from, off_t* fromOffset, int to, off_t* toOffset, std::size_t size,
                   unsigned flags),
                  (from, fromOffset, to, toOffset, size, flags))
KELVANE_REFUSABLE(int, symlinkat, (const char* target, int folder, const char* name),
                  (target, folder, name))
KELVANE_REFUSABLE(ssize_t, readlinkat, (int folder, const char* name, char* room, std::size_t size),
                  (folder, name, room, size))
KELVANE_REFUSABLE(int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags))

// The same as an optimising compiler calls them, with the room that there is.
extern "C" {
ssize_t __wrap___read_chk(int file, void* room, std::size_t size, std::size_t all);
ssize_t __wrap___readlinkat_chk(int folder, const char* name, char* room, std::size_t size,
                                std::size_t all);
int __real_close(int file);
int __wrap_close(int file);
int __real_openat(int folder, const char* name, int flags,
                  ...) __asm__("__real_openat" KELVANE_LARGE);
int __wrap_openat(int folder, const char* name, int flags,
                  ...) __asm__("__wrap_openat" KELVANE_LARGE);
DIR* __real_fdopendir(int file);
DIR* __wrap_fdopendir(int file);
dirent* __real_readdir(DIR* folder) __asm__("__real_readdir" KELVANE_LARGE);
dirent* __wrap_readdir(DIR* folder) __asm__("__wrap_readdir" KELVANE_LARGE);
}

ssize_t __wrap___read_chk(int file, void* room, std::size_t size, std::size_t /*all*/) {
  return __wrap_read(file, room, size);
}

ssize_t __wrap___readlinkat_chk(int folder, const char* name, char* room, std::size_t size,
                                std::size_t /*all*/) {
  return __wrap_readlinkat(folder, name, room, size);
}

int __wrap_close(int file) {
  const int status = __real_close(file);
  long result = 0;
  return kelvane::test::RefusedCall::refuses("close", result) ? static_cast<int>(result) : status;
}

int __wrap_openat(int folder, const char* name, int flags, ...) {
  long result = 0;
  if (kelvane::test::RefusedCall::refuses("openat", result)) return static_cast<int>(result);
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return __real_openat(folder, name, flags, mode);
}

DIR* __wrap_fdopendir(int file) {
  long result = 0;
  return kelvane::test::RefusedCall::refuses("fdopendir", result) ? nullptr
                                                                  : __real_fdopendir(file);
}

dirent* __wrap_readdir(DIR* folder) {
  long result = 0;
  if (kelvane::test::RefusedCall::refuses("readdir", result)) return nullptr;
  dirent* entry = __real_readdir(folder);
  if (entry != nullptr && kelvane::test::toldKind) entry->d_type = *kelvane::test::toldKind;
  return entry;
}
