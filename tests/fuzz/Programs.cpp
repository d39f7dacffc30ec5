#include "tests/fuzz/Programs.h"

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <spawn.h>
#include <sys/types.h>
#include <unistd.h>

#include "tests/fuzz/Law.h"

extern "C" {
int __real_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to);
int __wrap_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to);
int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const argv[], char* const envp[]);
pid_t __real_waitpid(pid_t process, int* status, int options);
pid_t __wrap_waitpid(pid_t process, int* status, int options);
int __real_kill(pid_t process, int signal);
int __wrap_kill(pid_t process, int signal);
}

namespace kelvane::fuzz {
namespace {

Programs* standIn = nullptr;
int standardOutput = -1;  // of the next program
bool isRunning = false;

constexpr pid_t kProcess = 0x7FFFFFFF;  // no system gives a process that number
constexpr std::size_t kPipe = 65536;

int start(const std::vector<std::string>& argv) {
  require(standIn->reaped == standIn->started, "a program is ended before another is started",
          argv[0]);
  const auto output = standIn->run ? standIn->run(argv) : std::nullopt;
  if (!output) return ENOENT;
  ++standIn->started;
  isRunning = standIn->outlivesItsOutput;
  const std::size_t size = std::min(output->size(), kPipe);
  const ssize_t written = ::write(standardOutput, output->data(), size);
  require(written == static_cast<ssize_t>(size), "the pipe takes what a program writes");
  return 0;
}

pid_t reap() {
  if (isRunning) return 0;
  ++standIn->reaped;
  return kProcess;
}

int terminate(int signal) {
  require(isRunning && signal == SIGTERM, "a program that still runs is told to end");
  isRunning = false;
  return 0;
}

}  // namespace

Programs::Programs() {
  standIn = this;
  isRunning = false;
}
Programs::~Programs() { standIn = nullptr; }

}  // namespace kelvane::fuzz

using kelvane::fuzz::kProcess;

int __wrap_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to) {
  if (to == STDOUT_FILENO) kelvane::fuzz::standardOutput = from;
  return __real_posix_spawn_file_actions_adddup2(actions, from, to);
}

int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t*,
                       const posix_spawnattr_t*, char* const argv[], char* const*) {
  std::vector<std::string> arguments = {path};
  for (char* const* argument = argv + 1; *argument != nullptr; ++argument) {
    arguments.emplace_back(*argument);
  }
  *process = kProcess;
  return kelvane::fuzz::start(arguments);
}

pid_t __wrap_waitpid(pid_t process, int* status, int options) {
  return process == kProcess ? kelvane::fuzz::reap() : __real_waitpid(process, status, options);
}

int __wrap_kill(pid_t process, int signal) {
  return process == kProcess ? kelvane::fuzz::terminate(signal) : __real_kill(process, signal);
}
