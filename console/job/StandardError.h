// What a worker, and the programs that it starts, say on standard error. Nobody else keeps it: the
// console does, in a file for each job beside the worker's log.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "console/job/LogStretch.h"
#include "platform/Value.h"

namespace kelvane::console {

// Where it is kept; "utility/logs/standard-error-17.txt" below the shared folder, which ends with
// "/". What a file's name cannot hold of the log id stands there as "%" and two digits; empty for a
// log id that is too long for a name.
std::string standardErrorPath(const std::string& sharedFolder, const std::string& logId);

// Makes the file for the worker of this waiting record, which is started at this time of day, to
// write to, and returns its path. Its first line tells both, so that it is known whose it is, also
// in a copy; where it cannot be made, what is said is not kept, and the path is that of the
// system's sink.
std::string makeStandardError(const std::string& sharedFolder, const platform::Value& record,
                              std::chrono::seconds started);

// Stands before the lines where the log does not tell of which run they are.
inline constexpr char kNotToldByTheLog[] =
    "the log has no lines of this job: what was kept of standard error may be of an earlier one "
    "that had its log id and asked for the same";

// The lines that the worker of this job said; none where it said nothing or nothing is kept, and
// where what is kept is of another job that had the log id before.
std::vector<std::string> standardErrorOf(const std::string& sharedFolder,
                                         const platform::Value& record, const LogStretch& log);

// The first of these lines, how many more there are, and where all are kept: for the user.
std::vector<std::string> standardErrorInShort(const std::string& sharedFolder,
                                              const platform::Value& record, const LogStretch& log);
// The same of the job that has the log id in the job file; where none has it, what is kept.
std::vector<std::string> standardErrorInShort(const std::string& sharedFolder,
                                              const std::string& logId);

// Removes the file where nothing was said, or in any case.
void discardSilence(const std::string& sharedFolder, const std::string& logId);
void discardStandardError(const std::string& sharedFolder, const std::string& logId);

}  // namespace kelvane::console
