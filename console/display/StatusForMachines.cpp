#include "console/display/StatusForMachines.h"

#include "console/display/DisplayText.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

Value standingOf(const ControllerStatus& one) {
  Value told = Value::dictionary(
      {{job::kWwn, displayText(one.wwn, Charset::utf8)}, {status_key::kStanding, phaseOf(one)}});
  const auto set = [&](const char* key, int percent) {
    if (percent != kUnknownPercent) told.set(key, Value::integer(percent));
  };
  set(job::kCpldPercentage, one.cpld);
  set(job::kFwPercentage, one.firmware);
  set(job::kTotalPercentage, one.total);
  return told;
}

}  // namespace

Value recordWithStatus(Value record, const JobStatus& status, const std::string& shortfall) {
  Value told = Value::dictionary();
  const bool isOpen = status.state == job::kWait || status.state == job::kRun;
  if (isOpen && status.hasNoWorker) told.set(status_key::kNoWorker, Value::boolean(true));
  Value controllers = Value::array();
  for (const ControllerStatus& one : status.controllers) controllers.append(standingOf(one));
  if (status.command == job::kUpdateFW && controllers.count() > 0) {
    told.set(status_key::kControllers, controllers);
  }
  if (!shortfall.empty()) told.set(status_key::kShortfall, displayText(shortfall, Charset::utf8));
  if (!told.entries().empty()) record.set(kStatusKey, told);
  return record;
}

}  // namespace kelvane::console
