// Submitting a job: what all sub-commands that run one have in common.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "console/commands/Command.h"
#include "console/display/Screen.h"
#include "console/job/Clock.h"
#include "console/job/Follower.h"
#include "console/job/JobFile.h"
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
  bool wait = false;    // for the end of a job that runs; otherwise that is refused
  bool evenSo = false;  // whatever runs
  bool noWait = false;  // for the end of the job that is submitted
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

// Makes sure that a waiting record stands in the job file, which is locked, and returns it.
using PutIn = std::function<platform::Value(const JobFile& file)>;

// When no other job runs: puts the record in, starts its worker and follows the job to its end; the
// finished look, or nothing where its end is not waited for: then the log id is shown. What cannot
// go well is refused before anything is written. Raises Failure where the job did not come to its
// end: refused, worker not started or died, interrupted. A running worker is never stopped.
std::optional<Look> runRecord(const JobOptions& options, const PutIn& putIn,
                              const Surroundings& surroundings);

// The same with a new record for this job.
std::optional<Look> runJob(const JobOptions& options, const std::string& command,
                           const platform::Value& inputs, const Surroundings& surroundings);

// Follows a job to its end, and tells what the result does not; the finished look. Raises Failure
// like runJob().
Look followToTheEnd(const std::string& logId, const std::string& sharedFolder, Worker& worker,
                    const Surroundings& surroundings, const Past& past,
                    const JobFile::IsMeant& isMeant = {});

// The exit code of a finished job.
int exitCodeOf(const Look& finished);

}  // namespace kelvane::console
