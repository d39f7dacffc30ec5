#include "console/job/Past.h"

#include "contract/JobFile.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kDay = std::chrono::hours(24);

// How long ago that was. The time of day in the log may be rounded beyond the clock's.
seconds ageOf(seconds lastLine, seconds timeOfDay) {
  const seconds age = (timeOfDay - lastLine + kDay) % kDay;
  return age > kDay - std::chrono::minutes(1) ? seconds(0) : age;
}

}  // namespace

Past pastOfNewJob(Clock& clock) { return {.start = clock.now()}; }

Past pastOf(const platform::Value& record, const LogStretch& log, Clock& clock) {
  if (!log.history || log.isMixed) return {};
  const JobHistory& history = *log.history;
  const platform::Value& state = record.get(job::kStateId);
  Past past;
  if (state == platform::Value(job::kFree)) past.times = timesOf(log);
  // A stretch that has ended is of an earlier run.
  if (log.hasEnded || state != platform::Value(job::kRun)) return past;
  past.start = clock.now() - ageOf(history.lastLine, clock.timeOfDay()) - history.length;
  for (const Moment& moment : momentsOf(history)) {
    past.moments.push_back({*past.start + moment.time, moment.record});
  }
  return past;
}

}  // namespace kelvane::console
