// What a worker, and the programs that it starts, say on standard error. Nobody else keeps it: the
// console does, in a file for each job beside the worker's log.
#pragma once

#include <string>
#include <vector>

namespace kelvane::console {

// Where it is kept; "utility/logs/standard-error-17.txt" below the shared folder, which ends with
// "/". What a file's name cannot hold of the log id stands there as "%" and two digits; empty for a
// log id that is too long for a name.
std::string standardErrorPath(const std::string& sharedFolder, const std::string& logId);

// Makes the file, empty, for a worker to write to, and returns its path; where it cannot be made,
// what is said is not kept, and the path is that of the system's sink.
std::string makeStandardError(const std::string& sharedFolder, const std::string& logId);

// The lines that were said; none where nothing was, or nothing is kept.
std::vector<std::string> standardErrorOf(const std::string& sharedFolder, const std::string& logId);

// The first of these lines, how many more there are, and where all are kept: for the user.
std::vector<std::string> standardErrorInShort(const std::string& sharedFolder,
                                              const std::string& logId);

// Removes the file where nothing was said, or in any case.
void discardSilence(const std::string& sharedFolder, const std::string& logId);
void discardStandardError(const std::string& sharedFolder, const std::string& logId);

}  // namespace kelvane::console
