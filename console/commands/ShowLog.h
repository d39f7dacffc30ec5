// The sub-command log: the worker's log, filtered and folded.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct ShowLogOptions {
  std::string sharedFolder;
  std::string level = "debug";  // the least that is shown
  std::string function;         // empty: all
  bool full = false;            // whether messages of several lines are shown whole
  CopyOptions copy = {};
};

// Shows the log's entries, one line each, objects folded; for machines a line of JSON each. Returns
// the exit code. Raises Failure where there is no log to be read.
int showLog(const ShowLogOptions& options, const Screen& screen);

Command logCommand();

}  // namespace kelvane::console
