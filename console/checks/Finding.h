// A finding: what is wrong with an installation, and what to do.
#pragma once

#include <string>
#include <vector>

#include "console/checks/FindingCodes.h"

namespace kelvane::console {

enum class Severity {
  warning,  // the worker works, with a limit
  error,    // jobs will fail
};

// Texts are as the files have them: they may hold control characters, and paths any bytes.
struct Finding {
  Code code = Code::sharedFolderMissing;
  Severity severity = Severity::error;
  std::string what;     // with the path and the cause
  std::string meaning;  // for the worker and its jobs
  std::string advice;
  std::string path = {};  // of the file or folder that is concerned; empty for what is no file
  std::string job = {};   // the log id of the job that is concerned, if one is
  bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

inline void append(Findings& all, const Findings& more) {
  all.insert(all.end(), more.begin(), more.end());
}

// The findings, with this path where they have none.
inline Findings concerning(const std::string& path, Findings findings) {
  for (Finding& finding : findings) {
    if (finding.path.empty()) finding.path = path;
  }
  return findings;
}

}  // namespace kelvane::console
