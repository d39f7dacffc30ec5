#include "simulators/controllers/Timeline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace kelvane::simulator {
namespace {

constexpr double kForEver = std::numeric_limits<double>::infinity();
constexpr double kWhole = 100;
constexpr std::uint8_t kFirmwareFinished = 5;
constexpr std::uint8_t kCpldDone = 2;

// The stages 1 to 4 of a firmware flash, a quarter each.
std::uint8_t firmwareStage(double position) {
  return static_cast<std::uint8_t>(std::min(4.0, 1 + std::floor(position / 25)));
}

}  // namespace

double FlashFault::next() const {
  if (kind == Kind::retry) return 0;
  return kind == Kind::backwards ? to : at;
}

std::optional<std::size_t> firstUnreachable(const std::vector<FlashFault>& faults) {
  double position = 0;
  for (std::size_t i = 0; i < faults.size(); ++i) {
    if (faults[i].at < position) return i;
    position = faults[i].next();
  }
  return {};
}

Timeline::Timeline(Target target, std::vector<double> stageSeconds,
                   const std::vector<FlashFault>& faults)
    : target_(target), stageSeconds_(std::move(stageSeconds)) {
  for (const FlashFault& fault : faults) {
    travel(fault.at);
    if (fault.kind == FlashFault::Kind::retry) {
      ++retries_;
    } else if (fault.kind != FlashFault::Kind::backwards) {
      rest(fault);
    }
    position_ = fault.next();
  }
  travel(kWhole * static_cast<double>(stageSeconds_.size()));
}

// Stage by stage, because each has its own pace.
void Timeline::travel(double to) {
  while (position_ < to) {
    const auto stage = static_cast<std::size_t>(position_ / kWhole);
    const double end = std::min(to, kWhole * static_cast<double>(stage + 1));
    const double seconds = stageSeconds_[stage] * (end - position_) / kWhole;
    stretches_.push_back({seconds, position_, end, 0, {}, retries_, false});
    position_ = end;
  }
}

void Timeline::rest(const FlashFault& fault) {
  Stretch stretch{
      fault.seconds.value_or(kForEver),    position_, position_, fault.statusByte, {}, retries_,
      fault.kind == FlashFault::Kind::fail};
  if (fault.kind == FlashFault::Kind::unknown) stretch.stage = fault.stage;
  if (stretch.failed) stretch.seconds = kForEver;
  stretches_.push_back(stretch);
}

Reading Timeline::at(double secondsSinceStart) const {
  double left = secondsSinceStart;
  for (const Stretch& stretch : stretches_) {
    if (left < stretch.seconds) {
      return show(stretch, stretch.from + (stretch.to - stretch.from) * (left / stretch.seconds));
    }
    left -= stretch.seconds;
  }
  return done();
}

Reading Timeline::show(const Stretch& stretch, double position) const {
  Reading reading;
  reading.statusByte = stretch.statusByte;
  reading.retries = stretch.retries;
  reading.failed = stretch.failed;
  // At the very end there is no further stage to show: 100 percent of the last.
  const double stage =
      std::min(std::floor(stretch.from / kWhole), static_cast<double>(stageSeconds_.size() - 1));
  reading.percent = static_cast<std::uint8_t>(std::floor(position - stage * kWhole));
  reading.stage = stretch.stage.value_or(target_ == Target::cpld ? static_cast<std::uint8_t>(stage)
                                                                 : firmwareStage(position));
  return reading;
}

Reading Timeline::done() const {
  Reading reading;
  reading.stage = target_ == Target::cpld ? kCpldDone : kFirmwareFinished;
  reading.percent = static_cast<std::uint8_t>(kWhole);
  reading.retries = retries_;
  reading.done = true;
  return reading;
}

}  // namespace kelvane::simulator
