// The sub-command remove: takes jobs out of the job file.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"

namespace kelvane::console {

struct RemoveOptions {
  std::string sharedFolder;
  std::vector<std::string> logIds;
  bool finished = false;  // all jobs in state FREE, instead of those named
  std::string keep;       // of these, so many of the last ones stay: a whole number, or empty
};

// Removes the jobs, all records of one log id, with what was kept of their workers' standard error,
// and shows which; the other records stay as they are. Returns the exit code. Raises Failure, and
// removes nothing, where a named job is not there, a worker runs, or the file cannot be written.
int removeJobs(const RemoveOptions& options, const Surroundings& surroundings);

Command removeCommand();

}  // namespace kelvane::console
