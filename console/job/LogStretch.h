// A job's stretch of the log: what the worker that ran it wrote.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "console/job/FlashSteps.h"
#include "console/job/JobHistory.h"
#include "console/job/LogFile.h"
#include "console/job/LoggedJobs.h"
#include "console/job/Places.h"
#include "platform/Value.h"

namespace kelvane::console {

struct LogStretch {
  bool isFound = false;
  // Whether another worker wrote at the same time: which line is whose cannot be told.
  bool isMixed = false;
  std::vector<std::string> startErrors = {};  // before the worker looked for its job
  // "14:03:07 getOnlineUpdateData: start: there is no path"; one that came again with its count.
  std::vector<std::string> errors = {};
  std::string lastStep = {};             // the same form; empty where there was no step of its own
  bool gaveUp = false;                   // whether an error stands behind the last step
  bool hasBegun = false;                 // whether the worker was to write of it, or did
  bool hasStarted = false;               // whether a program was started for it, and has ended
  bool hasEnded = false;                 // whether the job's last line is there
  std::string endedWith = {};            // the result that it shows
  std::string engineSaid = {};           // the last line that the update engine printed
  std::vector<FlashSteps> flashes = {};  // of a firmware job
  // Where it is not found: the error with which the log's last worker ended, if that took no job.
  std::string errorWithoutJob = {};
  // When other workers began that took jobs with its log id: where it is found, those before it.
  std::vector<std::string> startsOfOthers = {};
  std::string absence = {};  // why there is no log to look into
  // When it ran, and how it went on; other jobs' where the stretch is mixed.
  std::optional<JobHistory> history = {};
};

// The last stretch in which a worker took the job of this record: with its log id, its command and
// its parameters, as a log id may have been another job's before.
LogStretch stretchOf(const LoggedJobs& jobs, const platform::Value& record);
LogStretch stretchOf(const std::vector<LogEntry>& entries, const platform::Value& record);

// The entries of that stretch, from the worker's first one to the job's last line, with those that
// another worker wrote in between; none where there is no such stretch.
std::span<const LogEntry> entriesOf(const std::vector<LogEntry>& entries,
                                    const platform::Value& record);

// stretchOf() of the shared folder's log. Never raises.
LogStretch stretchIn(const std::string& sharedFolder, const platform::Value& record);
LogStretch stretchIn(const Places& places, const platform::Value& record);

// The log of the places, read once for all jobs. Never raises: where there is no log to look
// into, every stretch says so.
class JobsLog {
 public:
  explicit JobsLog(const Places& places);
  JobsLog(const JobsLog&) = delete;
  JobsLog& operator=(const JobsLog&) = delete;
  ~JobsLog() = default;

  LogStretch stretchOf(const platform::Value& record) const;

 private:
  std::string absence_;
  std::vector<LogEntry> entries_;
  std::optional<LoggedJobs> jobs_;
};

}  // namespace kelvane::console
