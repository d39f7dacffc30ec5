#include "console/job/JobFileLock.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>

#include "console/job/ExitCode.h"
#include "platform/File.h"
#include "platform/Restarted.h"

namespace kelvane::console {
namespace {

[[noreturn]] void refuse(const std::string& path, int cause) {
  throw Failure(kJobFileFailed,
                "the job file cannot be locked: " + path + ": " + std::strerror(cause));
}

// Not written, so that whoever may read the folder's files can lock it, too. No child has it.
platform::Descriptor openLock(const std::string& jobFile) {
  platform::makeFolders(platform::withoutLastComponent(jobFile));
  const std::string path = lockPath(jobFile);
  constexpr int kFlags = O_RDONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  platform::Descriptor file(
      platform::restarted([&] { return ::open(path.c_str(), kFlags, 0666); }));
  if (!file.isOpen()) refuse(path, errno);
  return file;
}

}  // namespace

std::string lockPath(const std::string& jobFile) {
  std::error_code untold;
  const std::string target = std::filesystem::weakly_canonical(jobFile, untold).string();
  return (untold ? jobFile : target) + ".lock";
}

JobFileLock::JobFileLock(const std::string& jobFile, Clock& clock,
                         const std::function<void()>& tellWaiting)
    : file_(openLock(jobFile)) {
  const std::chrono::milliseconds start = clock.now();
  bool isToTell = static_cast<bool>(tellWaiting);
  while (::flock(file_.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) refuse(lockPath(jobFile), errno);
    const std::chrono::milliseconds waited = clock.now() - start;
    if (isToTell && waited >= kLockTold) {
      tellWaiting();
      isToTell = false;
    }
    if (waited > kLockPatience) {
      throw Failure(kBusy, "another program keeps the job file locked (" + lockPath(jobFile) +
                               "); nothing was changed");
    }
    if (!clock.wait(kLockInterval)) {
      throw Failure(kInterrupted, "interrupted; nothing was changed");
    }
  }
}

}  // namespace kelvane::console
