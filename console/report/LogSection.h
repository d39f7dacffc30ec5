// A stretch of the log as a part of a page: a line for each entry, objects folded, in bounds.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "console/job/LogFile.h"
#include "console/report/Html.h"

namespace kelvane::console {

// Of what is beyond them the middle is left out: how it began and how it ended is told.
struct LogBounds {
  std::size_t entries = 4000;
  std::size_t objectBytes = 1U << 20U;  // of all objects together; equal ones count once
  std::size_t lineBytes = 4096;         // of one line
  std::size_t linesBytes = 786'432;     // of all lines together; of long ones less is shown
};

// Returns what was left out: "120 entries, and the objects of 30 others"; empty where all is there.
std::string showEntries(Html& page, std::span<const LogEntry> entries,
                        const LogBounds& bounds = {});

}  // namespace kelvane::console
