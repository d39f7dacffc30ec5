// The job file's records: whether the worker can run them and write their outcome.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "console/checks/Finding.h"
#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// Whether a worker runs the job with this log id.
using WorkerRuns = std::function<bool(const std::string& logId)>;

// The job's stretch of the log.
using LogOf = std::function<LogStretch(const platform::Value& record)>;

// Of each record of the list, in the order of the file, and of all together. `path` is the job
// file's, for the messages. The log is asked for where a job waits. Without `workerRuns` all is a
// copy from another system: neither workers nor images are looked for.
Findings recordFindings(const std::string& path, const platform::Value& records,
                        const WorkerRuns& workerRuns, const LogOf& logOf);

// Why the worker leaves this record alone, or does nothing for it, when it is in state WAIT: its
// command, a missing key, its parameters. Empty where nothing speaks against it.
std::string whyNotStarted(const platform::Value& record);

// What is wrong with this entry of a firmware job's parameters; of a job that has no such entry,
// with the parameters. Empty where nothing is.
std::string firmwareEntryFault(const platform::Value& record, std::size_t index);

}  // namespace kelvane::console
