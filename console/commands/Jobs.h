// The sub-commands for the jobs of a job file: list, show, watch.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/CopyOptions.h"
#include "console/commands/Submission.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct ListOptions {
  std::string sharedFolder;
  bool failed = false;    // whether only those that did not come to a good end are shown
  std::string last = {};  // how many of the last ones, as it was given; empty: all
  CopyOptions copy = {};
};

struct OneJobOptions {
  std::string sharedFolder;
  std::string logId;
  CopyOptions copy = {};    // not for watch
  std::string bundle = {};  // for watch alone: what an installation replaces; may be empty
};

// All three return the exit code, and raise Failure where something is not there or not readable.

// The jobs as a table, in the order of the file, with what the log tells of each; for machines a
// line of JSON each.
int list(const ListOptions& options, const Screen& screen);

// One job: its state, its result, what came out, and the whole record.
int show(const OneJobOptions& options, const Screen& screen);

// Follows a job that someone else started, and tells what became of it, like the sub-commands that
// submit one.
int watch(const OneJobOptions& options, const Surroundings& surroundings);

Command listCommand();
Command showCommand();
Command watchCommand();

}  // namespace kelvane::console
