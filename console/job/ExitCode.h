// How kelvane-console ends: its exit codes, and the failure that carries one.
#pragma once

#include <stdexcept>
#include <string>

namespace kelvane::console {

inline constexpr int kSuccess = 0;         // the job's result is 0
inline constexpr int kJobFailed = 1;       // the job ended with another result
inline constexpr int kFindings = 1;        // of check: there are findings
inline constexpr int kBadUsage = 2;        // nothing was written, nothing was started
inline constexpr int kWorkerFailed = 3;    // the worker could not be started or left the job undone
inline constexpr int kJobFileFailed = 4;   // the job file is damaged or cannot be read or written
inline constexpr int kNotFound = 5;        // no such job, code or log
inline constexpr int kInternalError = 70;  // what is foreseen nowhere, such as no memory
inline constexpr int kInterrupted = 130;   // as shells report the end by an interrupt

// All of them, once each.
inline constexpr int kExitCodes[] = {kSuccess,       kJobFailed, kBadUsage,      kWorkerFailed,
                                     kJobFileFailed, kNotFound,  kInternalError, kInterrupted};

// Ends a sub-command. what() is one line for the user.
class Failure : public std::runtime_error {
 public:
  Failure(int exitCode, const std::string& message)
      : std::runtime_error(message), exitCode_(exitCode) {}
  int exitCode() const { return exitCode_; }

 private:
  int exitCode_;
};

}  // namespace kelvane::console
