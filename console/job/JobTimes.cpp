#include "console/job/JobTimes.h"

#include <utility>

#include "console/job/JobStatus.h"

namespace kelvane::console {

namespace {

using std::chrono::seconds;

// Shorter ones are left out.
void addPhase(const char* name, const std::optional<seconds>& from,
              const std::optional<seconds>& to, ControllerTimes& times) {
  if (from && to && *to - *from >= seconds(1)) times.phases.push_back({name, *to - *from});
}

// By the log's steps: they also tell of a CPLD that was flashed between two writes, or failed.
std::vector<ControllerTimes> timesOfSteps(const std::vector<FlashSteps>& flashes) {
  std::vector<ControllerTimes> all;
  for (const FlashSteps& flash : flashes) {
    ControllerTimes times{flash.wwn, {}};
    if (flash.hasCpld) addPhase(kCpldPhase, flash.cpldBegin, flash.cpldEnd, times);
    const auto& start = flash.cpldEnd ? flash.cpldEnd : flash.begin;
    addPhase(kFirmwarePhase, start, flash.firmwareEnd, times);
    if (!times.phases.empty()) all.push_back(std::move(times));
  }
  return all;
}

std::vector<ControllerTimes> timesOfPercentages(const JobHistory& history) {
  Course course(std::chrono::milliseconds(0));
  for (const Moment& moment : momentsOf(history)) {
    course.take(moment.time, statusOf(moment.record));
  }
  return course.times();
}

}  // namespace

std::optional<std::chrono::milliseconds> lengthInLog(const LogStretch& log) {
  if (!log.history || (log.isMixed && !log.hasEnded)) return std::nullopt;
  return log.history->length;
}

JobTimes timesOf(const LogStretch& log) {
  if (!log.history || log.isMixed) return {};
  JobTimes times;
  if (log.hasEnded) times.length = log.history->length;
  times.controllers = timesOfSteps(log.flashes);
  if (times.controllers.empty()) times.controllers = timesOfPercentages(*log.history);
  return times;
}

}  // namespace kelvane::console
