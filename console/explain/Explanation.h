// An explanation: what a result or a job means, who acts, and whether to try again.
#pragma once

#include <string>
#include <vector>

#include "console/job/JobTimes.h"

namespace kelvane::console {

// Texts are as the files have them: they may hold control characters. Empty ones are not shown.
struct Explanation {
  std::string subject;  // "result 1026 (0x0402), kZorDeviceNotFound: the device was not found"
  std::string meaning;
  std::string whoActs;  // "nobody", "user" or "support"
  std::string advice;
  std::string tryAgain;                  // "yes", "no", or a condition
  std::vector<std::string> errors = {};  // of the job's log
  std::string lastStep = {};             // of the job's log
  std::string note = {};
  std::string controller = {};            // the one that the job ended at, and how far each came
  std::string toldBy = {};                // the line of the log that tells the failure
  std::vector<std::string> details = {};  // what else is to be known: packages, images, CPLDs
  JobTimes times = {};                    // as the job's log tells them
  bool fellShort = false;                 // its result is 0, and it did not do all it was to do
};

}  // namespace kelvane::console
