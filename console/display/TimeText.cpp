#include "console/display/TimeText.h"

#include <cstdint>

#include "console/display/DisplayText.h"
#include "console/display/JobText.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A time that is left is not over before it is: it is rounded up.
std::string leftText(milliseconds time) { return timeText(std::chrono::ceil<seconds>(time)); }

Value inSeconds(milliseconds time) {
  return Value::integer(static_cast<std::int64_t>(std::chrono::round<seconds>(time).count()));
}

Value leftForMachines(const TimeLeft& left) {
  Value all = Value::dictionary({{job::kWwn, displayText(left.wwn, Charset::utf8)},
                                 {"phase", left.phase},
                                 {"phase_seconds", inSeconds(left.ofPhase)}});
  if (left.ofController) all.set("controller_seconds", inSeconds(*left.ofController));
  if (left.ofJob) all.set("job_seconds", inSeconds(*left.ofJob));
  return all;
}

}  // namespace

std::string jobTimeText(const Look& look) {
  if (look.elapsed) return timeText(*look.elapsed);
  if (look.status.isFinished() || look.followed < seconds(1)) return {};
  return std::string("watched for ").append(timeText(look.followed));
}

std::string timeLeftText(const Look& look) {
  if (!look.left) return {};
  const TimeLeft& left = *look.left;
  const bool isAlone = look.status.controllers.size() == 1;
  const std::string name = displayName(left.wwn);
  std::string text = "about ";
  text.append(leftText(left.ofController.value_or(left.ofPhase))).append(" left");
  if (!left.ofController) {
    text.append(" for the ").append(left.phase);
    if (!isAlone) text.append(" of ").append(name);
    return text;
  }
  if (isAlone || left.ofJob == left.ofController) return text;
  text.append(" for ").append(name);
  if (left.ofJob) text.append(", ").append(leftText(*left.ofJob)).append(" for the job");
  return text;
}

std::vector<std::string> timeLines(const std::vector<ControllerTimes>& times) {
  std::vector<std::string> lines;
  for (const ControllerTimes& controller : times) {
    std::string line = displayName(controller.wwn);
    const char* separator = ": ";
    for (const PhaseTime& phase : controller.phases) {
      line.append(separator).append(phase.phase).append(" ").append(timeText(phase.length));
      separator = ", ";
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

Value recordWithTimes(const Look& look) {
  const bool isLong = look.status.isFinished() && look.elapsed.value_or(seconds(0)) >= seconds(1);
  if (!look.record.isDictionary() || (!look.left && look.times.empty() && !isLong)) {
    return look.record;
  }
  Value times = Value::dictionary();
  if (look.elapsed) times.set("seconds", inSeconds(*look.elapsed));
  if (look.left) times.set("left", leftForMachines(*look.left));
  if (!look.times.empty()) times.set("phases", phasesForMachines(look.times));
  Value record = look.record;
  record.set(kTimesKey, times);
  return record;
}

Value phasesForMachines(const std::vector<ControllerTimes>& times) {
  Value all = Value::array();
  for (const ControllerTimes& controller : times) {
    for (const PhaseTime& phase : controller.phases) {
      all.append(Value::dictionary({{job::kWwn, displayText(controller.wwn, Charset::utf8)},
                                    {"phase", phase.phase},
                                    {"seconds", inSeconds(phase.length)}}));
    }
  }
  return all;
}

}  // namespace kelvane::console
