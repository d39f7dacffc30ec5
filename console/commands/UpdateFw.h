// The sub-command update-fw: updates the firmware of controllers.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/commands/Submission.h"
#include "platform/Value.h"

namespace kelvane::console {

struct UpdateFwOptions {
  JobOptions job;
  std::vector<std::string> updates;  // "WWN=IMAGE" each
  bool dryRun = false;               // look at what can be looked at, and submit nothing
  bool yes = false;                  // do not ask
};

// Runs the job from its submission to its end, or the dry run; returns the exit code. Raises
// Failure like runJob(), and where the framework gives the dry run no answer.
int updateFw(const UpdateFwOptions& options, const Surroundings& surroundings);

// In a terminal: shows how the job would go, and asks. Raises Failure where the user does not
// agree.
void announceUpdate(const JobOptions& job, const platform::Value& inputs,
                    const Surroundings& surroundings);

// The image's absolute path. Raises Failure where it is no file that can be read: the worker would
// find that only when it comes to the image's controller.
std::string existingImage(const std::string& path);

Command updateFwCommand();

}  // namespace kelvane::console
