// The explanation of a job by its record and its stretch of the log.
#pragma once

#include <string>
#include <vector>

#include "console/explain/Explanation.h"
#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// What is known of a job besides its record, which is a dictionary with a log id.
struct JobCircumstances {
  bool workerRuns = false;
  LogStretch log;
  // Whether all is a copy from another system: neither workers nor the files that the record names
  // are looked for.
  bool isCopy = false;
  std::vector<std::string> standardError = {};  // what was kept of the worker's
};

Explanation explainJob(const platform::Value& record, const JobCircumstances& circumstances);

}  // namespace kelvane::console
