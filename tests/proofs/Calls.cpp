#include "tests/proofs/Calls.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/Descriptor.h"

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

using Errors = std::vector<int>;

// What a disk can answer to whoever changes something on it.
Errors diskErrors(Errors more) {
  more.insert(more.end(), {EIO, EACCES, ENOSPC, EDQUOT, ENOMEM});
  return more;
}

std::vector<CallKind> makeKinds() {
  return {
      {SYS_openat, "openat", true, -1, diskErrors({EMFILE, EINTR})},
      {SYS_open, "open", true, -1, diskErrors({EMFILE, EINTR})},
      {SYS_close, "close", false, -1, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_read, "read", false, 2, {EIO, ENOMEM, EINTR}},
      {SYS_pread64, "pread64", false, 2, {EIO, ENOMEM, EINTR}},
      {SYS_write, "write", true, 2, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_pwrite64, "pwrite64", true, 2, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_writev, "writev", true, 2, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_copy_file_range, "copy_file_range", true, 4, {EIO, ENOSPC, EDQUOT, EXDEV, EINTR}},
      {SYS_sendfile, "sendfile", true, 3, {EIO, ENOMEM, EINTR}},
      {SYS_ioctl, "ioctl", true, -1, {}},  // cp's, of a copy that shares the disk's blocks
      {SYS_ftruncate, "ftruncate", true, -1, {EIO, ENOSPC, EINTR}},
      {SYS_lseek, "lseek", false, -1, {EINVAL}},
      {SYS_fsync, "fsync", true, -1, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_fdatasync, "fdatasync", true, -1, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_syncfs, "syncfs", true, -1, {EIO, ENOSPC, EDQUOT, EINTR}},
      {SYS_rename, "rename", true, -1, diskErrors({EINTR})},
      {SYS_renameat, "renameat", true, -1, diskErrors({EINTR})},
      {SYS_renameat2, "renameat2", true, -1, diskErrors({EINTR})},
      {SYS_unlink, "unlink", true, -1, {EIO, EACCES, ENOMEM}},
      {SYS_unlinkat, "unlinkat", true, -1, {EIO, EACCES, ENOMEM, EINTR}},
      {SYS_rmdir, "rmdir", true, -1, {EIO, EACCES, ENOMEM}},
      {SYS_mkdir, "mkdir", true, -1, diskErrors({})},
      {SYS_mkdirat, "mkdirat", true, -1, diskErrors({EINTR})},
      {SYS_symlink, "symlink", true, -1, diskErrors({})},
      {SYS_symlinkat, "symlinkat", true, -1, diskErrors({EINTR})},
      {SYS_fchmod, "fchmod", true, -1, {EIO, EACCES, EINTR}},
      {SYS_fchmodat, "fchmodat", true, -1, {EIO, EACCES}},
      {SYS_fchown, "fchown", true, -1, {EIO, EACCES, EDQUOT, EINTR}},
      {SYS_utimensat, "utimensat", true, -1, {EIO, EACCES, EINTR}},
      {SYS_newfstatat, "newfstatat", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_stat, "stat", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_lstat, "lstat", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_fstat, "fstat", false, -1, {EIO, ENOMEM}},
      {SYS_statx, "statx", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_getdents64, "getdents64", false, -1, {EIO, ENOMEM}},
      {SYS_readlink, "readlink", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_readlinkat, "readlinkat", false, -1, {EIO, EACCES, ENOMEM}},
      {SYS_fcntl, "fcntl", false, -1, {EMFILE}},
      {SYS_dup2, "dup2", false, -1, {EMFILE}},
      {SYS_pipe2, "pipe2", true, -1, {EMFILE, ENOMEM}},
      {SYS_pipe, "pipe", true, -1, {EMFILE, ENOMEM}},
      {SYS_clone, "clone", true, -1, {EAGAIN, ENOMEM}},
      {SYS_clone3, "clone3", true, -1, {EAGAIN, ENOMEM}},
      {SYS_vfork, "vfork", true, -1, {EAGAIN, ENOMEM}},
      {SYS_execve, "execve", true, -1, {EIO, EACCES, ENOMEM}},
      {SYS_wait4, "wait4", false, -1, {EINTR}},
      {SYS_kill, "kill", true, -1, {EPERM}},
      {SYS_mmap, "mmap", false, -1, {ENOMEM}},
      {SYS_clock_nanosleep, "clock_nanosleep", false, -1, {EINTR}},
      {SYS_rt_sigaction, "rt_sigaction", false, -1, {}},
      {SYS_exit_group, "exit_group", false, -1, {}},
  };
}

std::string whereLinkLeads(const std::string& link) {
  std::error_code gone;
  return fs::read_symlink(link, gone).string();
}

int flagsOf(const Call& call) {
  return static_cast<int>(call.arguments[call.number == SYS_openat ? 2 : 1]);
}

bool opensToRead(const Call& call) {
  if (call.number != SYS_openat && call.number != SYS_open) return false;
  return (flagsOf(call) & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) == 0;
}

// Only what makes something can find no room for it.
bool needsRoom(int error) { return error == ENOSPC || error == EDQUOT; }

}  // namespace

const std::vector<CallKind>& callKinds() {
  static const std::vector<CallKind> kinds = makeKinds();
  return kinds;
}

const CallKind* kindOf(long number) {
  const auto& all = callKinds();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const CallKind& kind) { return kind.number == number; });
  return found == all.end() ? nullptr : &*found;
}

std::vector<long> allCalls() {
  std::vector<long> numbers;
  for (const CallKind& kind : callKinds()) numbers.push_back(kind.number);
  return numbers;
}

bool isPassedOver(long number) {
  static const std::set<long> all = {
      // The loader's and the runtime's, at a program's start.
      SYS_access, SYS_arch_prctl, SYS_futex, SYS_getrandom, SYS_mprotect, SYS_prlimit64, SYS_rseq,
      SYS_set_robust_list, SYS_set_tid_address,
      // What a process asks of itself. Memory that brk refuses is mmap's.
      SYS_brk, SYS_geteuid, SYS_getpid, SYS_munmap, SYS_rt_sigprocmask, SYS_umask, SYS_uname,
      // What a child does before it becomes another program.
      SYS_close_range,
      // How rm and cp look at a disk.
      SYS_fadvise64, SYS_fstatfs, SYS_statfs};
  return all.contains(number);
}

bool isSleep(const Call& call) { return call.number == SYS_clock_nanosleep; }

bool isSynchronisation(const Call& call) {
  return call.number == SYS_fsync || call.number == SYS_fdatasync || call.number == SYS_syncfs;
}

bool isRename(const Call& call) {
  return call.number == SYS_rename || call.number == SYS_renameat || call.number == SYS_renameat2;
}

bool changesSomething(const Call& call) {
  const CallKind* kind = kindOf(call.number);
  return kind != nullptr && kind->changes && !opensToRead(call);
}

bool canGive(const Call& call, int error) {
  const CallKind* kind = kindOf(call.number);
  if (kind == nullptr || (needsRoom(error) && opensToRead(call))) return false;
  const bool isDuplicate = call.number == SYS_fcntl;
  if (isDuplicate && call.arguments[1] != F_DUPFD_CLOEXEC) return false;
  return std::find(kind->errors.begin(), kind->errors.end(), error) != kind->errors.end();
}

std::string textOf(const Call& call, std::size_t argument) {
  constexpr std::size_t kPage = 4096;
  const std::string memory = "/proc/" + std::to_string(call.process) + "/mem";
  const platform::Descriptor file(::open(memory.c_str(), O_RDONLY | O_CLOEXEC));
  std::string text;
  std::uint64_t address = call.arguments[argument];
  while (text.size() < PATH_MAX) {
    std::array<char, kPage> page;
    const std::size_t size = kPage - address % kPage;  // the next page may not be there
    const ssize_t got = ::pread(file.number(), page.data(), size, static_cast<off_t>(address));
    if (got <= 0) return text;
    const auto end = std::find(page.begin(), page.begin() + got, '\0');
    text.append(page.begin(), end);
    if (end != page.begin() + got) return text;
    address += static_cast<std::uint64_t>(got);
  }
  return text;
}

std::string pathOfFile(pid_t process, std::uint64_t file) {
  return whereLinkLeads("/proc/" + std::to_string(process) + "/fd/" +
                        std::to_string(static_cast<int>(file)));
}

std::string pathOf(const Call& call, int folder, std::size_t argument) {
  const fs::path path = textOf(call, argument);
  if (path.is_absolute()) return path.lexically_normal().string();
  const bool isCurrent =
      folder < 0 || static_cast<int>(call.arguments[static_cast<std::size_t>(folder)]) == AT_FDCWD;
  const fs::path above =
      isCurrent ? whereLinkLeads("/proc/" + std::to_string(call.process) + "/cwd")
                : pathOfFile(call.process, call.arguments[static_cast<std::size_t>(folder)]);
  return (above / path).lexically_normal().string();
}

std::string sourceOf(const Call& call) {
  return call.number == SYS_rename ? pathOf(call, -1, 0) : pathOf(call, 0, 1);
}

std::string targetOf(const Call& call) {
  return call.number == SYS_rename ? pathOf(call, -1, 1) : pathOf(call, 2, 3);
}

bool writes(const Call& call) {
  switch (call.number) {
    case SYS_write:
    case SYS_pwrite64:
    case SYS_writev:
    case SYS_copy_file_range:
    case SYS_sendfile:
    case SYS_ftruncate:
      return true;
    default:
      return false;
  }
}

std::uint64_t writtenFile(const Call& call) {
  return call.arguments[call.number == SYS_copy_file_range ? 2 : 0];
}

std::string changedPath(const Call& call) {
  if (writes(call)) return pathOfFile(call.process, writtenFile(call));
  if (isRename(call)) return targetOf(call);
  switch (call.number) {
    case SYS_openat:
    case SYS_mkdirat:
    case SYS_unlinkat:
      return pathOf(call, 0, 1);
    case SYS_symlinkat:
      return pathOf(call, 1, 2);
    case SYS_symlink:
      return pathOf(call, -1, 1);
    case SYS_open:
    case SYS_mkdir:
    case SYS_unlink:
    case SYS_rmdir:
      return pathOf(call, -1, 0);
    default:
      return {};
  }
}

}  // namespace kelvane::proofs
