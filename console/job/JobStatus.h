// The status of a job, taken out of its record: what the views show.
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

// Where a controller stands, in a word: "waiting", "CPLD", "firmware", "done".
const char* phaseOf(const ControllerStatus& controller);

// Texts are as the job file has them: they may hold control characters.
struct JobStatus {
  std::string logId;
  std::string state;
  std::vector<ControllerStatus> controllers;  // of a firmware job
  std::string result;  // a number as it was written; empty where there is none
  std::string resultText;
  std::string command = {};

  bool isFinished() const;
  bool hasSucceeded() const;  // finished, with result 0
  bool operator==(const JobStatus&) const = default;
};

// The status of this record, which is a dictionary. What the record does not say, or says in
// another type, is empty or 0. The controllers are the progress entries, before there are any the
// input entries, that have a WWN.
JobStatus statusOf(const platform::Value& record);

}  // namespace kelvane::console
