#include "tests/worker/Children.h"

#include <csignal>

#include <spawn.h>
#include <sys/wait.h>

extern "C" {
int __real_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const argv[], char* const envp[]);
int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const argv[], char* const envp[]);
pid_t __real_waitpid(pid_t process, int* status, int options);
pid_t __wrap_waitpid(pid_t process, int* status, int options);
int __real_kill(pid_t process, int signal);
int __wrap_kill(pid_t process, int signal);
}

namespace kelvane::test {
namespace {

Children* watching = nullptr;

bool isWatched(pid_t process) {
  return watching != nullptr && watching->running.count(process) == 1;
}

void note(const char* event, pid_t process) {
  watching->events.push_back(std::string(event).append(" ").append(watching->running[process]));
  if (watching->onEvent) watching->onEvent(watching->events.back());
}

// Not before it has ended, which is a moment behind its output's end.
pid_t reap(pid_t process, int* status) {
  if (watching->outliveTheirOutput) return 0;
  const pid_t reaped = __real_waitpid(process, status, 0);
  note("reap", process);
  watching->running.erase(process);
  return reaped;
}

void tellToEnd(pid_t process) {
  note("end", process);
  watching->outliveTheirOutput = false;
}

}  // namespace

Children::Children() { watching = this; }
Children::~Children() { watching = nullptr; }

}  // namespace kelvane::test

namespace test = kelvane::test;

int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const argv[],
                       char* const envp[]) {
  const int cause = __real_posix_spawn(process, path, actions, attributes, argv, envp);
  if (test::watching != nullptr && cause == 0) {
    test::watching->running[*process] = path;
    test::note("start", *process);
  }
  return cause;
}

pid_t __wrap_waitpid(pid_t process, int* status, int options) {
  return test::isWatched(process) ? test::reap(process, status)
                                  : __real_waitpid(process, status, options);
}

int __wrap_kill(pid_t process, int signal) {
  if (test::isWatched(process) && signal == SIGTERM) test::tellToEnd(process);
  return __real_kill(process, signal);
}
