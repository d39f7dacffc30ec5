// Findings in short, for comparison.
#pragma once

#include <string>
#include <vector>

#include "console/checks/Finding.h"

namespace kelvane::console {

// "error: what is wrong" each.
inline std::vector<std::string> inShort(const Findings& findings) {
  std::vector<std::string> texts;
  for (const Finding& finding : findings) {
    texts.push_back((finding.severity == Severity::error ? "error: " : "warning: ") + finding.what);
  }
  return texts;
}

// The same as one text, a line each.
inline std::string asLines(const Findings& findings) {
  std::string lines;
  for (const std::string& text : inShort(findings)) lines += text + "\n";
  return lines;
}

}  // namespace kelvane::console
