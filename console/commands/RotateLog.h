// Rotating the worker's log: log --rotate.
#pragma once

#include <string>

#include "console/commands/Submission.h"

namespace kelvane::console {

struct RotateLogOptions {
  std::string sharedFolder;
};

// Rotates the log by the worker's own module: a log of 100 MiB or more is moved to its lowest free
// generation, and an empty one, with the old one's owner and permissions, takes its place. Shows
// what was done, also where nothing is to do. Returns the exit code. Raises Failure where there is
// no log, where it cannot be moved (it is then as it was), and like takeTurn() where a job runs.
int rotateLog(const RotateLogOptions& options, const Surroundings& surroundings);

}  // namespace kelvane::console
