// The sub-command report: one file for a support ticket.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct ReportOptions {
  std::string sharedFolder;
  std::string bundle;  // empty: it is not looked at; not for a copy
  std::string logId;   // empty: the last job, or the folder alone where there is none
  std::string output;  // empty: a file in the current folder, named for the job
  bool redact = false;
  CopyOptions copy = {};
};

// Writes the report and says where it is, for machines as an object. A report that is there is
// replaced, and that is said; any other file is left alone. Returns the exit code. Raises Failure
// where the job is not there or the file cannot be written.
int report(const ReportOptions& options, const Screen& screen);

Command reportCommand();

}  // namespace kelvane::console
