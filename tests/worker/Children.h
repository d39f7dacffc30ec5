// What becomes of the programs that are started: posix_spawn(), waitpid() and kill() are replaced
// for the whole program, and do what they do.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kelvane::test {

struct Children {
  // Only one at a time.
  Children();
  ~Children();
  Children(const Children&) = delete;
  Children& operator=(const Children&) = delete;

  // Whether a program counts as running, when it is asked for, until it is told to end.
  bool outliveTheirOutput = false;
  // "start /bin/rm", "end /bin/rm" where it is told to, "reap /bin/rm", in their order.
  std::vector<std::string> events;
  // Told of each event when it is written down.
  std::function<void(const std::string& event)> onEvent;

  std::map<pid_t, std::string> running;  // by their paths
};

}  // namespace kelvane::test
