// Child processes that are none: posix_spawn() and what goes with it are replaced for the whole
// program (-Wl,--wrap in CMakeLists.txt). Pipes are real, and so is all that the platform does
// with them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelvane::fuzz {

struct Programs {
  // Only one at a time.
  Programs();
  ~Programs();
  Programs(const Programs&) = delete;
  Programs& operator=(const Programs&) = delete;

  // What the program does, and what it writes, of which a pipe's room is kept; nothing where it
  // cannot be started. `argv[0]` is its path.
  std::function<std::optional<std::string>(const std::vector<std::string>& argv)> run;
  // Whether a program still runs when its output has ended; it ends when it is told to.
  bool outlivesItsOutput = false;

  int started = 0;
  int reaped = 0;
};

}  // namespace kelvane::fuzz
