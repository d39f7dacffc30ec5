// A firmware job's controllers over time, as its stretch of the log tells.
#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "console/job/LogFile.h"
#include "platform/Value.h"

namespace kelvane::console {

using JobTime = std::chrono::seconds;  // since the job's first line in the log

// The percentages that the worker wrote from then on.
struct HistoryPoint {
  JobTime at{0};
  int cpld = 0;
  int firmware = 0;
  int total = 0;
};

struct HistoryPhase {
  std::string name;  // "CPLD", "transfer", "firmware"
  JobTime from{0};
  JobTime to{0};
};

enum class MarkKind { retry, fault, done };

struct HistoryMark {
  MarkKind kind;
  JobTime at{0};
  std::string text;
};

// A time in which nothing of the controller changed.
struct HistorySilence {
  JobTime from{0};
  JobTime to{0};
  std::size_t lines = 0;  // how many entries the worker wrote meanwhile
};
inline constexpr JobTime kLeastSilence{60};

struct ControllerHistory {
  std::string wwn;
  bool hasBegun = false;  // the worker came to it
  JobTime begin{0};
  JobTime end{0};
  std::vector<HistoryPoint> points;
  std::vector<HistoryPhase> phases;
  std::vector<HistoryMark> marks;
  std::vector<HistorySilence> silences;
};

struct FlashHistory {
  std::string startedAt;  // by the log's clock, "14:03:07"; empty where there is no entry
  JobTime length{0};
  std::vector<ControllerHistory> controllers;  // of the job's input entries, in their order
};

// The percentages that the worker writes once a flash has failed are none, and left out. The log
// has no dates: a clock that goes far back has passed midnight, one that goes back a little was
// set, and stands still meanwhile.
FlashHistory flashHistoryOf(std::span<const LogEntry> entries, const platform::Value& record);

// The time of day at that time of the job: "14:03:07".
std::string clockAt(const FlashHistory& history, JobTime time);

}  // namespace kelvane::console
