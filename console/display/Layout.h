// The layout: a job's status as the lines of a terminal of a given size.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "console/display/DisplayText.h"
#include "console/job/View.h"

namespace kelvane::console {

struct TerminalSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
  bool operator==(const TerminalSize&) const = default;
};

// The job's line with the time, each controller with its phase and three bars, and how long it
// still takes or what is to say of a long silence. The bars stand side by side on one line where
// there is room, one below the other where there is not. No line is wider than the columns less one
// (a full line would wrap). Where there are not rows enough for every controller, those that are
// already done leave first; one is always shown, and the job's line says how many there are.
std::vector<std::string> statusLines(const Look& look, TerminalSize size, Charset charset);

}  // namespace kelvane::console
