// The job file's records, as the worker's log shows them.
#pragma once

#include <string_view>
#include <vector>

#include "console/job/LogFile.h"
#include "platform/Value.h"

namespace kelvane::console {

// What stands before the records in an entry of a worker that is about to write them.
inline constexpr std::string_view kRecordsWritten = "writeJSONFile, newArray = ";

// A value as the log shows it: those texts are numbers again that the contract has as numbers.
platform::Value withNumbers(const platform::Value& logged);

// As a worker read them last, or was about to write them; nothing where the log shows none. The log
// does not tell numbers from texts: they are told apart as by withNumbers().
platform::Value lastRecordsIn(const std::vector<LogEntry>& entries);

}  // namespace kelvane::console
