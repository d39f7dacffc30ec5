#include "console/display/Layout.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "console/display/JobText.h"
#include "console/display/TimeText.h"
#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

constexpr std::size_t kMostNameColumns = 24;
constexpr std::size_t kFewestBarColumns = 5;
constexpr std::size_t kMostBarColumns = 30;
constexpr std::size_t kPercentColumns = 5;  // " 100%"
constexpr std::string_view kGap = "  ";

struct Bar {
  std::string_view label;
  std::string_view shortLabel;  // side by side
  int ControllerStatus::*percent;
};

constexpr Bar kBars[] = {
    {"cpld", "cpld", &ControllerStatus::cpld},
    {"firmware", "fw", &ControllerStatus::firmware},
    {"total", "total", &ControllerStatus::total},
};
constexpr std::size_t kPhaseColumns = 8;  // at least
constexpr std::size_t kLongestLabel = 8;
constexpr std::size_t kStackedLines = 1 + std::size(kBars);

// How the controllers of one job are laid out, the same for all of them.
struct Plan {
  bool sideBySide = false;
  bool phaseBelow = false;  // stacked: the phase has no room beside the name
  std::size_t columns = 0;  // of a line
  std::size_t nameColumns = 0;
  std::size_t phaseColumns = kPhaseColumns;
  std::size_t barColumns = 0;
  Charset charset = Charset::ascii;
};

std::size_t roomAfter(std::size_t columns, std::size_t taken) {
  return columns > taken ? columns - taken : 0;
}

std::size_t longestName(const JobStatus& status) {
  std::size_t longest = 0;
  for (const ControllerStatus& controller : status.controllers) {
    longest = std::max(longest, displayName(controller.wwn).size());
  }
  return longest;
}

std::size_t longestPhase(const JobStatus& status) {
  std::size_t longest = kPhaseColumns;
  for (const ControllerStatus& controller : status.controllers) {
    longest = std::max(longest, std::string_view(phaseOf(controller)).size());
  }
  return longest;
}

// What one line takes besides the name and the bars proper.
std::size_t sideBySideRest(const Plan& plan) {
  std::size_t columns = kGap.size() + plan.phaseColumns;
  for (const Bar& bar : kBars) columns += kGap.size() + bar.shortLabel.size() + 1 + kPercentColumns;
  return columns;
}

Plan planFor(const JobStatus& status, std::size_t columns, Charset charset) {
  Plan plan;
  plan.columns = columns;
  plan.charset = charset;
  plan.nameColumns = std::min(longestName(status), kMostNameColumns);
  plan.phaseColumns = longestPhase(status);
  plan.barColumns = roomAfter(columns, plan.nameColumns + sideBySideRest(plan)) / std::size(kBars);
  plan.sideBySide = plan.barColumns >= kFewestBarColumns;
  if (!plan.sideBySide) {
    const std::size_t longest = longestName(status);
    plan.phaseBelow = longest <= columns && longest + kGap.size() + plan.phaseColumns > columns;
    plan.nameColumns = columns;
    plan.barColumns = roomAfter(columns, kGap.size() + kLongestLabel + 1 + kPercentColumns);
  }
  plan.barColumns = std::min(plan.barColumns, kMostBarColumns);
  return plan;
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

std::string barText(int percent, const Plan& plan) {
  const auto shown = static_cast<std::size_t>(std::max(percent, 0));
  const std::size_t filled = plan.barColumns * shown / 100;
  const bool inAscii = plan.charset == Charset::ascii;
  const std::string_view full = inAscii ? "#" : "\xE2\x96\x88";   // U+2588 full block
  const std::string_view empty = inAscii ? "-" : "\xE2\x96\x91";  // U+2591 light shade
  std::string number = percentText(percent);
  number.insert(0, roomAfter(kPercentColumns, number.size()), ' ');
  return repeated(full, filled) + repeated(empty, plan.barColumns - filled) + number;
}

std::string padded(std::string_view text, std::size_t columns) {
  return std::string(text) + std::string(roomAfter(columns, text.size()), ' ');
}

std::string nameText(const ControllerStatus& controller, const Plan& plan) {
  const std::string name = displayName(controller.wwn);
  // Padded by its columns, which a name shortened with a three-byte ellipsis has not as bytes.
  return shortened(name, plan.nameColumns, plan.charset) +
         std::string(roomAfter(plan.nameColumns, name.size()), ' ');
}

std::string sideBySideLine(const ControllerStatus& controller, const Plan& plan) {
  std::string line = nameText(controller, plan);
  line += kGap;
  line += padded(phaseOf(controller), plan.phaseColumns);
  for (const Bar& bar : kBars) {
    line += kGap;
    line += bar.shortLabel;
    line += ' ' + barText(controller.*bar.percent, plan);
  }
  return line;
}

// A terminal too narrow even for the labels shows what there is room for.
std::string cutLabel(const Bar& bar, const Plan& plan) {
  const std::size_t room = roomAfter(plan.columns, kPercentColumns + plan.barColumns);
  return (std::string(kGap) + padded(bar.label, kLongestLabel) + ' ').substr(0, room);
}

void appendStacked(const ControllerStatus& controller, const Plan& plan,
                   std::vector<std::string>& lines) {
  const std::string phase = std::string(kGap) + phaseOf(controller);
  const std::size_t room = roomAfter(plan.columns, phase.size());
  const std::string name = displayName(controller.wwn);
  if (plan.phaseBelow || room == 0) {
    lines.push_back(shortened(name, plan.columns, plan.charset));
  } else {
    lines.push_back(shortened(name, room, plan.charset) + phase);
  }
  if (plan.phaseBelow) lines.push_back(shortened(phase, plan.columns, plan.charset));
  for (const Bar& bar : kBars) {
    std::string line = cutLabel(bar, plan) + barText(controller.*bar.percent, plan);
    if (plan.barColumns == 0) line.resize(std::min(line.size(), plan.columns));
    lines.push_back(line);
  }
}

// The first controller to show where only `room` of them can be shown.
std::size_t firstShown(const JobStatus& status, std::size_t room) {
  const auto& all = status.controllers;
  const auto active = std::find_if(all.begin(), all.end(), [](const ControllerStatus& one) {
    return one.standing == Standing::open ? one.total < 100 : one.standing != Standing::done;
  });
  const auto index = static_cast<std::size_t>(active - all.begin());
  return std::min(index, roomAfter(all.size(), room));
}

// Which controllers are shown.
struct Range {
  std::size_t first = 0;
  std::size_t end = 0;
};

Range shownIn(const JobStatus& status, std::size_t rows, const Plan& plan) {
  const std::size_t stacked = kStackedLines + (plan.phaseBelow ? 1 : 0);
  const std::size_t room = std::max<std::size_t>(rows / (plan.sideBySide ? 1 : stacked), 1);
  const std::size_t first = firstShown(status, room);
  return {first, std::min(first + room, status.controllers.size())};
}

void appendControllers(const JobStatus& status, const Range& range, const Plan& plan,
                       std::vector<std::string>& lines) {
  for (std::size_t i = range.first; i < range.end; ++i) {
    const ControllerStatus& controller = status.controllers[i];
    if (plan.sideBySide) {
      lines.push_back(sideBySideLine(controller, plan));
    } else {
      appendStacked(controller, plan, lines);
    }
  }
}

// "6 of 30" where not all of them are shown; "6 of 30 controllers" where there is room.
std::string headText(const Look& look, const Range& range, const Plan& plan) {
  std::string head = jobLine(look.status, Charset::ascii);
  if (const std::string time = jobTimeText(look); !time.empty()) head.append(", ").append(time);
  const std::size_t count = look.status.controllers.size();
  const std::size_t shown = range.end - range.first;
  if (shown == count) return head;
  head.append(", ").append(std::to_string(shown)).append(" of ").append(std::to_string(count));
  const std::string unit = " controllers";
  return head.size() + unit.size() <= plan.columns ? head.append(unit) : head;
}

std::vector<std::string> headLines(const Look& look, const Range& range, const Plan& plan) {
  constexpr std::size_t kMostLines = 3;  // of an endless log id the middle is left out
  const std::string head = headText(look, range, plan);
  return wrapped(shortened(head, kMostLines * plan.columns, plan.charset), plan.columns);
}

// As many as they are at most, however many controllers are shown.
std::size_t mostHeadLines(const Look& look, const Plan& plan) {
  const std::size_t count = look.status.controllers.size();
  return headLines(look, {0, roomAfter(count, 1)}, plan).size();
}

std::vector<std::string> linesBelow(const Look& look, const Plan& plan) {
  std::string text = noWorkerText(look, plan.charset);
  if (text.empty()) text = silenceText(look);
  if (text.empty()) text = timeLeftText(look);
  return text.empty() ? std::vector<std::string>() : wrapped(text, plan.columns);
}

}  // namespace

std::vector<std::string> statusLines(const Look& look, TerminalSize size, Charset charset) {
  const JobStatus& status = look.status;
  const Plan plan = planFor(status, std::max<std::size_t>(roomAfter(size.columns, 1), 1), charset);
  const std::vector<std::string> below = linesBelow(look, plan);
  const std::size_t taken = 1 + mostHeadLines(look, plan) + below.size();
  const Range range = shownIn(status, roomAfter(size.rows, taken), plan);
  std::vector<std::string> lines = headLines(look, range, plan);
  appendControllers(status, range, plan, lines);
  lines.insert(lines.end(), below.begin(), below.end());
  return lines;
}

}  // namespace kelvane::console
