// measure PROGRAM [ARGUMENT...]: runs it, and prints what it and its children took: the CPU's time
// as user and system, the wall clock's, all in seconds, and the peak of its memory in KiB. Small
// itself: a process begins with its starter's peak.

#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double now() {
  timespec time = {};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  posix_spawn_file_actions_t quiet;
  ::posix_spawn_file_actions_init(&quiet);
  ::posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const double start = now();
  pid_t process = 0;
  const int failure = ::posix_spawn(&process, argv[1], &quiet, nullptr, argv + 1, environ);
  ::posix_spawn_file_actions_destroy(&quiet);
  if (failure != 0) return 127;
  int status = 0;
  rusage used = {};
  if (::wait4(process, &status, 0, &used) != process) return 1;
  std::printf("%.6f %.6f %.6f %ld\n", seconds(used.ru_utime), seconds(used.ru_stime), now() - start,
              used.ru_maxrss);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
