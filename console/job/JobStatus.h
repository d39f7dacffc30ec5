// The status of a job, taken out of its record: what the views show.
#pragma once

#include <string>
#include <vector>

#include "platform/Value.h"

namespace kelvane::console {

struct LogStretch;

inline constexpr int kWhole = 100;  // percent

// What became of a controller besides its percentages.
enum class Standing {
  open,        // the percentages tell
  begun,       // the worker is at it, and its percentages are 0
  done,        // it has its firmware
  failed,      // the job ended at it
  stopped,     // the worker is gone, and was at it
  notStarted,  // the job ended before it
  unknown,     // its progress was lost
};

// A percentage that the record does not tell.
inline constexpr int kUnknownPercent = -1;

// One controller's progress, in percent (0 to 100).
struct ControllerStatus {
  std::string wwn;
  int cpld = 0;
  int firmware = 0;
  int total = 0;
  Standing standing = Standing::open;
  bool operator==(const ControllerStatus&) const = default;
};

// "job 17"; an empty log id is told with quotation marks.
std::string jobName(const std::string& logId);

// Where a controller stands, in a word: "waiting", "started", "CPLD", "firmware", "done", "failed",
// "stopped", "not started", "unknown".
const char* phaseOf(const ControllerStatus& controller);

// Texts are as the job file has them: they may hold control characters.
struct JobStatus {
  std::string logId;
  std::string state;
  std::vector<ControllerStatus> controllers;  // of a firmware job
  std::string result;  // a number as it was written; empty where there is none
  std::string resultText;
  std::string command = {};
  std::string otherResult = {};  // what stands there in place of a number, as JSON
  bool hasNoWorker = false;      // it is not finished, and no worker for it is seen

  bool isFinished() const;
  bool hasSucceeded() const;  // finished, with result 0
  bool operator==(const JobStatus&) const = default;
};

// The status of this record, which is a dictionary. What the record does not say, or says in
// another type, is empty or 0. The controllers are the progress entries, before there are any the
// input entries, that have a WWN; of a job that failed, with what became of each as far as the
// record tells.
JobStatus statusOf(const platform::Value& record);

// The same, with what the job's stretch of the log tells of its controllers.
JobStatus statusOf(const platform::Value& record, const LogStretch& log);

// No worker for the job is seen: one that was under way was left where it stands.
void markWithoutWorker(JobStatus& status);

}  // namespace kelvane::console
