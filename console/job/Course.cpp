#include "console/job/Course.h"

#include <algorithm>

#include "contract/JobFile.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;
using Time = std::optional<milliseconds>;

constexpr milliseconds kShortest(1000);

// The place of the first controller that is not done.
std::size_t firstOpen(const JobStatus& status) {
  const auto& all = status.controllers;
  const auto open = std::find_if(all.begin(), all.end(),
                                 [](const ControllerStatus& one) { return one.total < kWhole; });
  return static_cast<std::size_t>(open - all.begin());
}

Time between(const Time& start, const Time& end) {
  return start && end ? Time(*end - *start) : std::nullopt;
}

}  // namespace

void Course::take(milliseconds now, const JobStatus& status) {
  if (status.state == job::kWait) start_ = now;  // it begins no earlier
  if (status.hasNoWorker || (status.state != job::kRun && !status.isFinished())) return;
  if (controllers_.size() != status.controllers.size()) {
    if (status.isFinished()) return;
    begin(status);
  }
  advanceTo(firstOpen(status), now);
  if (active_ == controllers_.size()) return;
  if (status.isFinished()) {
    closePhase(now);
  } else {
    enter(phaseOf(status.controllers[active_]), now);
  }
}

std::string Course::phase() const {
  if (active_ >= controllers_.size()) return {};
  const std::vector<Phase>& phases = controllers_[active_].phases;
  return phases.empty() || phases.back().end ? "" : phases.back().name;
}

Time Course::activeSince() const {
  return active_ < controllers_.size() ? controllers_[active_].start : std::nullopt;
}

Time Course::lengthOf(std::size_t index) const {
  if (index >= controllers_.size()) return std::nullopt;
  return between(controllers_[index].start, controllers_[index].end);
}

Time Course::lengthOf(std::size_t index, const char* phase) const {
  if (index >= controllers_.size()) return std::nullopt;
  for (const Phase& one : controllers_[index].phases) {
    if (one.name == phase) return between(one.start, one.end);
  }
  return std::nullopt;
}

std::vector<ControllerTimes> Course::times() const {
  std::vector<ControllerTimes> all;
  for (const Controller& controller : controllers_) {
    ControllerTimes times = {controller.wwn, {}};
    for (const Phase& one : controller.phases) {
      const Time length = between(one.start, one.end);
      if (length && *length >= kShortest) times.phases.push_back({one.name, *length});
    }
    if (!times.phases.empty()) all.push_back(std::move(times));
  }
  return all;
}

void Course::begin(const JobStatus& status) {
  controllers_.clear();
  for (const ControllerStatus& one : status.controllers) {
    controllers_.push_back({one.wwn, {}, {}, {}});
  }
  active_ = firstOpen(status);
  if (active_ == 0 && !controllers_.empty()) controllers_.front().start = start_;
}

void Course::advanceTo(std::size_t index, milliseconds now) {
  for (; active_ < index; ++active_) {
    // Its firmware may have come between two looks.
    if (controllers_[active_].phases.empty()) enter(kFirmwarePhase, now);
    closePhase(now);
    controllers_[active_].end = now;
    const std::size_t next = active_ + 1;
    if (next < controllers_.size()) controllers_[next].start = now;
  }
}

// Percentages that fall back to 0, as at a retry, begin no phase anew.
void Course::enter(const std::string& phase, milliseconds now) {
  if (phase != kCpldPhase && phase != kFirmwarePhase) return;
  Controller& controller = controllers_[active_];
  const bool isFirst = controller.phases.empty();
  if (!isFirst && (controller.phases.back().name == phase || phase == kCpldPhase)) return;
  closePhase(now);
  controller.phases.push_back({phase, isFirst ? controller.start : now, {}});
}

void Course::closePhase(milliseconds now) {
  std::vector<Phase>& phases = controllers_[active_].phases;
  if (!phases.empty() && !phases.back().end) phases.back().end = now;
}

}  // namespace kelvane::console
