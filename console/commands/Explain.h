// The sub-command explain: what a result code or a job means, and what to do.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct ExplainOptions {
  std::string sharedFolder;  // only for a log id; empty: the subject is a code
  // A log id; a code in decimal or, with "0x", hexadecimal digits; or a code's name.
  std::string subject;
  CopyOptions copy = {};
};

// Shows the explanations, for machines as one list. What is a log id of the job file is one; what
// else is a number is a code. Returns the exit code: not found for a number that is no known
// result. Raises Failure for what is neither, and where the job file cannot be read.
int explain(const ExplainOptions& options, const Screen& screen);

Command explainCommand();

}  // namespace kelvane::console
