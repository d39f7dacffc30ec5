// The job file's records, as the worker's log shows them.
#pragma once

#include <vector>

#include "console/job/LogFile.h"
#include "platform/Value.h"

namespace kelvane::console {

// As a worker read them last, or was about to write them; nothing where the log shows none. The log
// does not tell numbers from texts: those whose keys the contract has are numbers again, all else
// is a text.
platform::Value lastRecordsIn(const std::vector<LogEntry>& entries);

}  // namespace kelvane::console
