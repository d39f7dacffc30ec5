#include "console/explain/FlashNotes.h"

#include "console/display/JobText.h"
#include "console/job/JobStatus.h"
#include "console/job/RecordValues.h"
#include "contract/Framework.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::string nameOf(const Value& record, std::size_t index) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray() || index >= inputs.count()) return "a controller";
  const Value& input = inputs.at(index);
  std::string wwn = stringOf(memberOf(input, job::kWwn));
  if (!wwn.empty()) return wwn;
  return "input_parameters[" + std::to_string(index) + "] (no WWN)";
}

std::string timesText(int count) {
  if (count == 1) return "once";
  return count == 2 ? "twice" : std::to_string(count) + " times";
}

bool hasFailed(const Value& record) {
  const Value& result = record.get(job::kResult);
  return record.get(job::kJobId) == Value(job::kUpdateFW) &&
         record.get(job::kStateId) == Value(job::kFree) && result.isNumber() &&
         result.integerValue() != kZorSuccess;
}

// Those that the record alone tells of: at 0 percent it may be of a controller without one.
std::vector<ControllerStatus> leftAtTheirCpld(const Value& record) {
  std::vector<ControllerStatus> all = statusOf(record).controllers;
  std::erase_if(all, [](const ControllerStatus& one) {
    return one.standing != Standing::done || one.cpld == 0 || one.cpld == kWhole;
  });
  return all;
}

std::vector<std::string> notesOfRecord(const Value& record) {
  std::vector<std::string> notes;
  for (const ControllerStatus& one : leftAtTheirCpld(record)) {
    notes.push_back(one.wwn + ": its CPLD was left at " + percentText(one.cpld));
  }
  return notes;
}

}  // namespace

std::optional<FailedController> failedController(const Value& record, const LogStretch& log) {
  if (!hasFailed(record)) return std::nullopt;
  const JobStatus status = statusOf(record, log);
  for (std::size_t i = 0; i < status.controllers.size(); ++i) {
    const ControllerStatus& one = status.controllers[i];
    if (one.standing != Standing::failed) continue;
    FailedController failed;
    failed.index = i;
    failed.wwn = one.wwn.empty() ? nameOf(record, i) : one.wwn;
    failed.progress = progressText(status);
    if (log.isMixed || i >= log.flashes.size()) return failed;
    failed.isAtImage = log.flashes[i].isAtImage;
    failed.fault = log.flashes[i].fault;
    failed.lastStep = log.flashes[i].lastStep;
    failed.product = log.flashes[i].product;
    failed.isQvxf = log.flashes[i].isQvxf;
    return failed;
  }
  return std::nullopt;
}

std::vector<std::string> cpldNotes(const Value& record, const LogStretch& log) {
  if (record.get(job::kJobId) != Value(job::kUpdateFW)) return {};
  if (!log.isFound || log.isMixed) return notesOfRecord(record);
  std::vector<std::string> notes;
  for (std::size_t i = 0; i < log.flashes.size(); ++i) {
    const FlashSteps& flash = log.flashes[i];
    if (flash.cpldRetries > 0) {
      notes.push_back(nameOf(record, i) + ": its CPLD's flash was tried again " +
                      timesText(flash.cpldRetries));
    }
    if (!flash.cpldFault.empty()) {
      notes.push_back(nameOf(record, i) + ": its CPLD was not flashed: " + flash.cpldFault);
    }
  }
  return notes;
}

std::vector<std::string> controllersWithoutCpld(const Value& record, const LogStretch& log) {
  std::vector<std::string> names;
  if (!log.isFound || log.isMixed) {
    for (const ControllerStatus& one : leftAtTheirCpld(record)) names.push_back(one.wwn);
    return names;
  }
  for (std::size_t i = 0; i < log.flashes.size(); ++i) {
    if (!log.flashes[i].cpldFault.empty()) names.push_back(nameOf(record, i));
  }
  return names;
}

std::vector<std::string> flashNotes(const Value& record, const LogStretch& log) {
  std::vector<std::string> notes = cpldNotes(record, log);
  if (const auto failed = failedController(record, log)) {
    std::string note = failed->wwn + " failed";
    if (!failed->fault.empty()) {
      note += ": " + failed->fault;
    } else if (!failed->lastStep.empty()) {
      note += "; the log's last step of it: " + failed->lastStep;
    }
    notes.push_back(note);
  }
  return notes;
}

}  // namespace kelvane::console
