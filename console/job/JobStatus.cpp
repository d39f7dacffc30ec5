#include "console/job/JobStatus.h"

#include <algorithm>
#include <cstdint>

#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string textOf(const Value& value) { return value.isString() ? value.string() : ""; }

int percentOf(const Value& value) {
  if (!value.isNumber()) return 0;
  return static_cast<int>(std::clamp<std::int64_t>(value.integerValue(), 0, 100));
}

std::vector<ControllerStatus> controllersOf(const Value& entries) {
  std::vector<ControllerStatus> controllers;
  if (!entries.isArray()) return controllers;
  for (const Value& entry : entries.elements()) {
    if (!entry.isDictionary() || !entry.has(job::kWwn)) continue;
    controllers.push_back({textOf(entry.get(job::kWwn)), percentOf(entry.get(job::kCpldPercentage)),
                           percentOf(entry.get(job::kFwPercentage)),
                           percentOf(entry.get(job::kTotalPercentage))});
  }
  return controllers;
}

}  // namespace

const char* phaseOf(const ControllerStatus& controller) {
  if (controller.total == 100) return "done";
  if (controller.firmware > 0 || controller.cpld == 100) return "firmware";
  return controller.cpld > 0 ? "CPLD" : "waiting";
}

bool JobStatus::isFinished() const { return state == job::kFree; }

bool JobStatus::hasSucceeded() const { return isFinished() && result == "0"; }

JobStatus statusOf(const Value& record) {
  const Value& output = record.get(job::kOutput);
  const Value& result = record.get(job::kResult);
  JobStatus status;
  status.logId = textOf(record.get(job::kLogId));
  status.command = textOf(record.get(job::kJobId));
  status.state = textOf(record.get(job::kStateId));
  status.controllers = controllersOf(output.isArray() ? output : record.get(job::kInputParameters));
  if (result.isNumber()) status.result = result.digits();
  status.resultText = textOf(record.get(job::kResultStr));
  return status;
}

}  // namespace kelvane::console
