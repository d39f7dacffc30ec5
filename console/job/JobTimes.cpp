#include "console/job/JobTimes.h"

#include "console/job/JobStatus.h"

namespace kelvane::console {

JobTimes timesOf(const LogStretch& log) {
  if (!log.history || log.isMixed) return {};
  JobTimes times;
  if (log.hasEnded) times.length = log.history->length;
  Course course(std::chrono::milliseconds(0));
  for (const Moment& moment : momentsOf(*log.history)) {
    course.take(moment.time, statusOf(moment.record));
  }
  times.controllers = course.times();
  return times;
}

}  // namespace kelvane::console
