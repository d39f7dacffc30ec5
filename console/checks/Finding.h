// A finding: what is wrong with an installation, and what to do.
#pragma once

#include <string>
#include <vector>

namespace kelvane::console {

enum class Severity {
  warning,  // the worker works, with a limit
  error,    // jobs will fail
};

// Texts are as the files have them: they may hold control characters, and paths any bytes.
struct Finding {
  Severity severity = Severity::error;
  std::string what;     // with the path and the cause
  std::string meaning;  // for the worker and its jobs
  std::string advice;
  bool operator==(const Finding&) const = default;
};

using Findings = std::vector<Finding>;

inline void append(Findings& all, const Findings& more) {
  all.insert(all.end(), more.begin(), more.end());
}

}  // namespace kelvane::console
