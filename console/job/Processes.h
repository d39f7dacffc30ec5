// The workers among the processes that run on this system.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/RunningProcesses.h"
#include "platform/Value.h"

namespace kelvane::console {

// Whether a worker runs the job: a process with this log id and a shared folder that is the same
// one, however it is written, as its last two arguments; or one called "Kelvane" with the log id
// alone, in the shared folder.
bool workerRuns(const std::string& logId, const std::string& sharedFolder);

// The same, among these processes.
bool workerRuns(const std::string& logId, const std::string& sharedFolder,
                const std::vector<platform::RunningProcess>& processes);

// The log id of the job that a worker runs in this shared folder; empty where none is seen. The
// worker may have any name where `records`, those of the job file, have the job; one whose job is
// finished there writes no more, and is none.
std::string runningJob(const std::string& sharedFolder, const platform::Value& records,
                       const std::vector<platform::RunningProcess>& processes);

// How many of these processes called "Kelvane" run the job.
std::size_t workersNamed(const std::string& logId, const std::string& sharedFolder,
                         const std::vector<platform::RunningProcess>& processes);

}  // namespace kelvane::console
