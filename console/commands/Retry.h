// The sub-command retry: runs a job once more.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"

namespace kelvane::console {

struct RetryOptions {
  JobOptions job;  // its log id is that of the new record
  std::string logId;
  bool yes = false;  // whether the user is not asked before an application is removed
};

// Runs the job with this log id once more, to its end, like the sub-command that submits one; the
// exit code. Of a job that is still waiting the record itself is run; of any other, whether it is
// finished or its worker is gone, a new record with the same command and parameters, and with what
// the application has written besides. The other records stay as they are. Raises Failure like
// runJob(), and where the job is not there or is none of the worker's.
int retry(const RetryOptions& options, const Surroundings& surroundings);

Command retryCommand();

}  // namespace kelvane::console
