// The sub-command log: the worker's log, filtered and folded, once or as it is written.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/display/Screen.h"
#include "console/job/Clock.h"

namespace kelvane::console {

struct ShowLogOptions {
  std::string sharedFolder;
  std::string level = "debug";  // the least that is shown
  std::string function;         // empty: all
  bool full = false;            // whether messages of several lines are shown whole
  std::string logId = {};       // of the job whose entries are shown; empty: all
  std::string tail = {};        // how many of the last entries, as it was given; empty: all
  CopyOptions copy = {};
};

// Shows the log's entries, one line each, objects folded; for machines a line of JSON each. Returns
// the exit code. Raises Failure where there is no log to be read, and where neither the job file
// nor the log knows the job.
int showLog(const ShowLogOptions& options, const Screen& screen);

// Shows them, and goes on with those that are written, whatever becomes of the file, until the user
// interrupts it. Not of one job.
int followLog(const ShowLogOptions& options, Clock& clock, const Screen& screen);

Command logCommand();

}  // namespace kelvane::console
