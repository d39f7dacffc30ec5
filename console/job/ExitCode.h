// How kelvane-console ends: its exit codes, and the failure that carries one.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kelvane::console {

inline constexpr int kSuccess = 0;         // the job's result is 0
inline constexpr int kJobFailed = 1;       // the job ended with another result
inline constexpr int kFindings = 1;        // of check: there are findings
inline constexpr int kBadUsage = 2;        // nothing was written, nothing was started
inline constexpr int kWorkerFailed = 3;    // the worker could not be started or left the job undone
inline constexpr int kJobFileFailed = 4;   // the job file is damaged or cannot be read or written
inline constexpr int kNotRotated = 4;      // of log --rotate: the log stays as it is
inline constexpr int kNotFound = 5;        // no such job, code or log
inline constexpr int kBusy = 6;            // another job runs; nothing was changed
inline constexpr int kNotConfirmed = 7;    // the user said no; nothing was changed
inline constexpr int kNoAnswer = 8;        // of the controller framework
inline constexpr int kInternalError = 70;  // what is foreseen nowhere, such as no memory
inline constexpr int kInterrupted = 130;   // as shells report the end by an interrupt

// All of them, once each.
inline constexpr int kExitCodes[] = {kSuccess,       kJobFailed,     kBadUsage,   kWorkerFailed,
                                     kJobFileFailed, kNotFound,      kBusy,       kNotConfirmed,
                                     kNoAnswer,      kInternalError, kInterrupted};

// Ends a sub-command. what() is one line for the user; the details, a line each, go below it.
class Failure : public std::runtime_error {
 public:
  Failure(int exitCode, const std::string& message, std::vector<std::string> details = {})
      : std::runtime_error(message), exitCode_(exitCode), details_(std::move(details)) {}
  int exitCode() const { return exitCode_; }
  const std::vector<std::string>& details() const { return details_; }

 private:
  int exitCode_;
  std::vector<std::string> details_;
};

}  // namespace kelvane::console
