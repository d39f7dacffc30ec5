// The sub-command update-sw: replaces the installed application by a new one.
#pragma once

#include <string>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"

namespace kelvane::console {

struct UpdateSwOptions {
  JobOptions job;
  std::string package;  // the new application bundle
};

// Runs the job from its submission to its end and returns the exit code. Raises Failure like
// runJob(). The worker judges nothing; the console looks whether an application stands in the
// place, and raises Failure where none does.
int updateSw(const UpdateSwOptions& options, const Surroundings& surroundings);

Command updateSwCommand();

}  // namespace kelvane::console
