// The status of a firmware job, taken out of its record: what the views show.
#pragma once

#include <string>
#include <vector>

#include "platform/Value.h"

namespace kelvane::console {

// One controller's progress, in percent (0 to 100).
struct ControllerStatus {
  std::string wwn;
  int cpld = 0;
  int firmware = 0;
  int total = 0;
  bool operator==(const ControllerStatus&) const = default;
};

// Texts are as the job file has them: they may hold control characters.
struct JobStatus {
  std::string logId;
  std::string state;
  std::vector<ControllerStatus> controllers;
  std::string result;  // a number as it was written; empty where there is none
  std::string resultText;

  bool isFinished() const;
  bool hasSucceeded() const;  // finished, with result 0
  bool operator==(const JobStatus&) const = default;
};

// The status of this record, which is a dictionary. What the record does not say, or says in
// another type, is empty or 0; a job without progress entries yet shows its input entries.
JobStatus statusOf(const platform::Value& record);

}  // namespace kelvane::console
