// The sub-command update-sw: replaces the installed application by a new one.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"

namespace kelvane::console {

struct UpdateSwOptions {
  JobOptions job;
  std::string package;  // the new application bundle
  bool yes = false;     // whether the user is not asked
};

// Runs the job from its submission to its end and returns the exit code. The worker judges nothing:
// it ends with 0 whatever became of the copying. So the console refuses what is no application,
// says from which version to which, asks in a terminal before one is removed, and compares what
// stands there afterwards with the package. Raises Failure like runJob(), where the user says no,
// where the two differ, and where it is not known what the worker replaces.
int updateSw(const UpdateSwOptions& options, const Surroundings& surroundings);

// The same with a job that is submitted in another way; the package's path is absolute.
using Submits = std::function<std::optional<Look>()>;
int install(const UpdateSwOptions& options, const Submits& submit,
            const Surroundings& surroundings);

Command updateSwCommand();

}  // namespace kelvane::console
