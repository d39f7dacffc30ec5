// The processes that run on this system.
#pragma once

#include <string>
#include <vector>

namespace kelvane::platform {

struct RunningProcess {
  long id = 0;
  std::vector<std::string> arguments;  // the first is how it was called
  std::string currentFolder;           // empty where the system does not tell
};

// Those of which the system tells the arguments. One source file for each system.
std::vector<RunningProcess> runningProcesses();

}  // namespace kelvane::platform
