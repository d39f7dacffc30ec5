#include "console/job/UnwrittenJob.h"

#include <algorithm>

#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string commandOf(const Value& record) { return stringOf(record.get(job::kJobId)); }

bool hasFlashed(const LogStretch& log) {
  return std::any_of(log.flashes.begin(), log.flashes.end(),
                     [](const FlashSteps& flash) { return flash.hasBegun; });
}

}  // namespace

bool mayHaveBeenDone(const Value& record, const LogStretch& log) {
  // A record with a result was written by the worker, and put back into this state.
  const bool waits = record.get(job::kStateId) == Value(job::kWait) && !record.has(job::kResult);
  if (!waits || !log.isFound) return false;
  if (log.isMixed) return true;
  if (commandOf(record) == job::kUpdateFW) return hasFlashed(log);
  // A worker that was killed while its first program ran has no step in the log.
  return log.hasStarted || (log.hasBegun && !log.gaveUp);
}

std::string lastSeenText(const LogStretch& log) {
  return log.lastStep.empty() ? "" : " The log last saw \"" + log.lastStep + "\".";
}

std::string whatMayHaveBeenDone(const Value& record, const LogStretch& log) {
  const std::string command = commandOf(record);
  if (command == job::kUpdateSW) return "the application may have been removed or replaced";
  if (command != job::kUpdateFW) return "it may have been done";
  const auto done = std::count_if(log.flashes.begin(), log.flashes.end(),
                                  [](const FlashSteps& flash) { return flash.isFlashed; });
  std::string text = "the flash may have been done";
  if (done == 0) return text;
  text.append(", by the log of ").append(std::to_string(done));
  return text.append(done == 1 ? " controller" : " controllers");
}

}  // namespace kelvane::console
