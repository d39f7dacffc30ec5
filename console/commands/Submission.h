// Submitting a job: what all sub-commands that run one have in common.
#pragma once

#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/display/Screen.h"
#include "console/job/Clock.h"
#include "console/job/View.h"
#include "console/job/Worker.h"
#include "platform/Value.h"

namespace kelvane::console {

struct JobOptions {
  std::string sharedFolder;
  std::string bundle;  // where `worker` is empty: the worker is the bundle's
  std::string worker;
  std::string logId;  // empty: one is chosen
  bool verbose = false;
};

// Their declarations, and what was given for them.
std::vector<Option> jobOptions();
JobOptions jobOptionsOf(const Given& given);

// What a sub-command that follows a job works with; not owned.
struct Surroundings {
  Clock& clock;
  View& view;
  const Screen& screen;
};

// Adds the job to the job file, starts the worker and follows the job to its end; the finished
// record. Raises Failure where the job did not come to its end: refused, worker not started or
// died, interrupted. A running worker is never stopped.
Look runJob(const JobOptions& options, const std::string& command, const platform::Value& inputs,
            const Surroundings& surroundings);

// Follows a job to its end; the finished look. Raises Failure like runJob().
Look followToTheEnd(const std::string& logId, const std::string& sharedFolder, Worker& worker,
                    const Surroundings& surroundings);

// The exit code of a finished job.
int exitCodeOf(const Look& finished);

}  // namespace kelvane::console
