#include "tests/support/SystemCallKiller.h"

#include <csignal>
#include <stdexcept>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelvane::test {
namespace {

[[noreturn]] void runTraced(const std::function<void()>& action) {
  ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  ::raise(SIGSTOP);
  action();
  ::_exit(0);
}

// Waits for the child's next stop; false where it has ended.
bool nextStop(pid_t child) {
  int status = 0;
  if (::waitpid(child, &status, 0) != child) throw std::runtime_error("the child is lost");
  return WIFSTOPPED(status);
}

}  // namespace

bool killedBeforeSystemCall(int n, const std::function<void()>& action) {
  const pid_t child = ::fork();
  if (child == 0) runTraced(action);
  if (!nextStop(child)) throw std::runtime_error("the child could not be traced");
  // Every call stops twice, on its way in and on its way out.
  for (int stop = 0; stop < 2 * n - 1; ++stop) {
    if (::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0) {
      throw std::runtime_error("the child could not be continued");
    }
    if (!nextStop(child)) return false;
  }
  ::kill(child, SIGKILL);
  while (nextStop(child)) ::ptrace(PTRACE_CONT, child, nullptr, nullptr);
  return true;
}

}  // namespace kelvane::test
