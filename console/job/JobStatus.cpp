#include "console/job/JobStatus.h"

#include <algorithm>
#include <cstdint>

#include "console/job/LogStretch.h"
#include "console/job/RecordValues.h"
#include "console/job/UnwrittenJob.h"
#include "contract/Framework.h"
#include "contract/JobFile.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

using Controllers = std::vector<ControllerStatus>;

int percentOf(const Value& value) {
  if (!value.isNumber()) return 0;
  return static_cast<int>(std::clamp<std::int64_t>(value.integerValue(), 0, kWhole));
}

Controllers controllersOf(const Value& entries) {
  Controllers controllers;
  if (!entries.isArray()) return controllers;
  for (const Value& entry : entries.elements()) {
    if (!entry.isDictionary() || !entry.has(job::kWwn)) continue;
    controllers.push_back(
        {stringOf(entry.get(job::kWwn)), percentOf(entry.get(job::kCpldPercentage)),
         percentOf(entry.get(job::kFwPercentage)), percentOf(entry.get(job::kTotalPercentage))});
  }
  return controllers;
}

// Where the list has as many entries as the job asks for, the place of each is that in the input.
bool isWhole(const Value& record, const Controllers& controllers) {
  const Value& inputs = record.get(job::kInputParameters);
  return !inputs.isArray() || inputs.count() == controllers.size();
}

bool isUntouched(const ControllerStatus& one) {
  return one.cpld == 0 && one.firmware == 0 && one.total == 0;
}

// The controller that the job ended at, by what the worker leaves in the record: a controller is at
// 100 percent once its flash has ended, and also when that has failed.
std::size_t failedOne(const Controllers& all, std::int64_t result) {
  const auto isOpen = [](const ControllerStatus& one) { return one.total < kWhole; };
  const auto first = std::find_if(all.begin(), all.end(), isOpen);
  const auto index = static_cast<std::size_t>(first - all.begin());
  const bool isFlashError =
      result == kZorFlashFailed && (first == all.end() || isUntouched(*first));
  return index > 0 && (isFlashError || first == all.end()) ? index - 1 : index;
}

void markFailure(Controllers& all, std::size_t failed) {
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i < failed) all[i].standing = all[i].total == kWhole ? Standing::done : Standing::unknown;
    if (i == failed) all[i].standing = Standing::failed;
    if (i > failed) all[i].standing = Standing::notStarted;
  }
}

// The percentages that the worker writes when a flash has failed are none.
void hideFalsePercentages(ControllerStatus& one) {
  if (one.total < kWhole) return;
  one.firmware = kUnknownPercent;
  one.total = kUnknownPercent;
}

void markEnd(const Value& record, JobStatus& status) {
  const Value& result = record.get(job::kResult);
  Controllers& all = status.controllers;
  if (status.command != job::kUpdateFW || !status.isFinished() || !result.isNumber()) return;
  if (result.integerValue() == kZorSuccess) {
    for (ControllerStatus& one : all) one.standing = Standing::done;
    return;
  }
  const bool hasProgress = record.has(job::kOutput) && isWhole(record, all);
  const bool areTexts = std::none_of(all.begin(), all.end(),
                                     [](const ControllerStatus& one) { return one.wwn.empty(); });
  if (all.empty()) return;
  if (!hasProgress || !areTexts) {
    for (ControllerStatus& one : all) {
      one.standing = one.total == kWhole ? Standing::done : Standing::unknown;
    }
    return;
  }
  const std::size_t failed = failedOne(all, result.integerValue());
  markFailure(all, failed);
  if (result.integerValue() == kZorFlashFailed) hideFalsePercentages(all[failed]);
}

// --- what the log tells

// Of the job's input entries, so that they and the log's controllers go together.
Controllers entriesOf(const Value& record, const Controllers& known) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray() || inputs.count() == known.size()) return known;
  Controllers all;
  for (const Value& input : inputs.elements()) {
    ControllerStatus entry;
    if (input.isDictionary()) entry.wwn = stringOf(input.get(job::kWwn));
    const auto same = std::find_if(known.begin(), known.end(), [&](const ControllerStatus& one) {
      return one.wwn == entry.wwn;
    });
    all.push_back(same == known.end() ? entry : *same);
  }
  return all;
}

void takeFlash(const FlashSteps& flash, ControllerStatus& one) {
  one.standing = flash.isFlashed ? Standing::done : Standing::failed;
  if (flash.isFlashed) {
    one.firmware = kWhole;
    one.total = kWhole;
  } else if (flash.firmwareAtFault) {
    one.firmware = *flash.firmwareAtFault;
    const int ofCpld = one.cpld == kUnknownPercent ? kUnknownPercent : one.cpld / 2;
    one.total = flash.firmwareAtFault == 0 ? ofCpld : kWhole / 2 + one.firmware / 2;
  }
}

// The entry that the job ended at.
std::size_t failedOne(const std::vector<FlashSteps>& flashes, std::size_t count,
                      std::int64_t result) {
  if (flashes.empty()) return result == kZorDeviceNotFound ? 0 : count;
  const bool isNextMissing =
      flashes.back().isFlashed && result == kZorDeviceNotFound && flashes.size() < count;
  return isNextMissing ? flashes.size() : flashes.size() - 1;
}

void takeEnd(const std::vector<FlashSteps>& flashes, std::int64_t result, Controllers& all) {
  for (std::size_t i = 0; i < all.size(); ++i) {
    all[i].standing = Standing::notStarted;
    if (i < flashes.size()) takeFlash(flashes[i], all[i]);
  }
  const std::size_t failed = failedOne(flashes, all.size(), result);
  if (failed < all.size()) all[failed].standing = Standing::failed;
}

// Of a job whose record a worker could not write: the percentages are not known.
void takeTaken(const Value& record, const LogStretch& log, Controllers& all) {
  all = entriesOf(record, all);
  for (std::size_t i = 0; i < all.size(); ++i) {
    ControllerStatus& one = all[i];
    if (!log.isMixed && i >= log.flashes.size()) continue;
    one.cpld = kUnknownPercent;
    one.firmware = kUnknownPercent;
    one.total = kUnknownPercent;
    one.standing = Standing::unknown;
    if (log.isMixed) continue;
    const FlashSteps& flash = log.flashes[i];
    if (flash.isFlashed || !flash.fault.empty()) takeFlash(flash, one);
  }
}

// The worker is at the first controller that is not done, also while its percentages are 0.
void markBegun(const Value& record, JobStatus& status) {
  Controllers& all = status.controllers;
  if (status.command != job::kUpdateFW || status.state != job::kRun ||
      !record.get(job::kOutput).isArray() || !isWhole(record, all)) {
    return;
  }
  const auto open = std::find_if(all.begin(), all.end(),
                                 [](const ControllerStatus& one) { return one.total < kWhole; });
  if (open != all.end() && isUntouched(*open)) open->standing = Standing::begun;
}

}  // namespace

std::string jobName(const std::string& logId) { return "job " + (logId.empty() ? "\"\"" : logId); }

const char* phaseOf(const ControllerStatus& controller) {
  switch (controller.standing) {
    case Standing::done:
      return "done";
    case Standing::failed:
      return "failed";
    case Standing::stopped:
      return "stopped";
    case Standing::notStarted:
      return "not started";
    case Standing::unknown:
      return "unknown";
    case Standing::begun:
      return "started";
    case Standing::open:
      break;
  }
  if (controller.total == kWhole) return "done";
  // The second half of it is the firmware's, also of a controller whose CPLD is not flashed.
  const bool isAtFirmware = controller.total >= kWhole / 2;
  if (isAtFirmware || controller.firmware > 0 || controller.cpld == kWhole) return "firmware";
  return controller.cpld > 0 ? "CPLD" : "waiting";
}

bool JobStatus::isFinished() const { return state == job::kFree; }

bool JobStatus::hasSucceeded() const { return isFinished() && result == "0"; }

JobStatus statusOf(const Value& record) {
  const Value& output = record.get(job::kOutput);
  const Value& result = record.get(job::kResult);
  JobStatus status;
  status.logId = stringOf(record.get(job::kLogId));
  status.command = stringOf(record.get(job::kJobId));
  status.state = stringOf(record.get(job::kStateId));
  status.controllers = controllersOf(output.isArray() ? output : record.get(job::kInputParameters));
  if (result.isNumber()) {
    status.result = result.digits();
  } else if (!result.isNothing()) {
    status.otherResult = platform::printJsonLine(result).value_or("a value without a form");
  }
  status.resultText = stringOf(record.get(job::kResultStr));
  markBegun(record, status);
  markEnd(record, status);
  return status;
}

JobStatus statusOf(const Value& record, const LogStretch& log) {
  JobStatus status = statusOf(record);
  if (status.command == job::kUpdateFW && mayHaveBeenDone(record, log)) {
    takeTaken(record, log, status.controllers);
    return status;
  }
  const Value& result = record.get(job::kResult);
  const bool tells = log.isFound && !log.isMixed && log.hasEnded;
  if (!tells || status.command != job::kUpdateFW || !status.isFinished() || !result.isNumber() ||
      result.integerValue() == kZorSuccess) {
    return status;
  }
  status.controllers = entriesOf(record, status.controllers);
  takeEnd(log.flashes, result.integerValue(), status.controllers);
  return status;
}

namespace {

// Behind a controller that a worker had begun none is waiting any more.
void markTaken(Controllers& all) {
  bool isTaken = false;
  for (ControllerStatus& one : all) {
    if (one.standing == Standing::open && isTaken) one.standing = Standing::notStarted;
    isTaken = isTaken || one.standing != Standing::open;
  }
}

}  // namespace

void markWithoutWorker(JobStatus& status) {
  if (status.isFinished()) return;
  status.hasNoWorker = true;
  if (status.state != job::kRun) {
    markTaken(status.controllers);
    return;
  }
  Standing next = Standing::stopped;
  for (ControllerStatus& one : status.controllers) {
    if (one.total == kWhole) continue;
    one.standing = next;
    next = Standing::notStarted;
  }
}

}  // namespace kelvane::console
