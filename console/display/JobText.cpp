#include "console/display/JobText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

#include "console/display/Words.h"
#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

// Controllers in these are counted, the first before those that are named.
constexpr const char* kCountedPhases[] = {"done", "unknown", "waiting", "not started"};

bool isCounted(const std::string& phase) {
  return std::find(std::begin(kCountedPhases), std::end(kCountedPhases), phase) !=
         std::end(kCountedPhases);
}

// "5000A1 failed at 90%"; while it is flashed "5000A1 at 90% (firmware)", as the percentage is that
// of all its phases.
std::string placeOf(const ControllerStatus& one) {
  const bool isFlashed = one.standing == Standing::open || one.standing == Standing::begun;
  std::string text = one.wwn.empty() ? "a controller without a WWN" : displayName(one.wwn);
  if (!isFlashed) text.append(" ").append(phaseOf(one));
  if (one.total != kUnknownPercent) text.append(" at ").append(percentText(one.total));
  if (isFlashed) text.append(" (").append(phaseOf(one)).append(")");
  return text;
}

std::string stateText(const std::string& state, Charset charset) {
  if (state == job::kWait) return "waiting";
  if (state == job::kRun) return "running";
  if (state == job::kFree) return "finished";
  return displayText(state, charset);
}

}  // namespace

std::string jobLine(const JobStatus& status, Charset charset) {
  std::string line = displayText(jobName(status.logId), charset);
  line += ": ";
  line.append(stateText(status.state, charset));
  return status.hasNoWorker ? line.append(", no worker") : line;
}

std::string percentText(int percent) {
  return percent == kUnknownPercent ? "-" : std::to_string(percent) + "%";
}

std::string resultNumber(const std::string& digits) {
  std::int64_t code = 0;
  const char* end = digits.data() + digits.size();
  const auto [rest, failed] = std::from_chars(digits.data(), end, code);
  if (failed != std::errc() || rest != end || code <= 0) return digits;
  return platform::format("%s (0x%04lX)", digits.c_str(), code);
}

std::string progressText(const JobStatus& status) {
  std::map<std::string, int> counts;
  std::vector<std::string> named;
  for (const ControllerStatus& one : status.controllers) {
    const std::string phase = phaseOf(one);
    if (isCounted(phase)) {
      ++counts[phase];
    } else {
      named.push_back(placeOf(one));
    }
  }
  std::vector<std::string> all;
  for (const char* phase : kCountedPhases) {
    if (counts[phase] > 0) all.push_back(std::to_string(counts[phase]) + " " + phase);
    if (phase == kCountedPhases[0]) all.insert(all.end(), named.begin(), named.end());
  }
  return joined(all, ", ");
}

std::string resultLine(const JobStatus& status, Charset charset) {
  std::string result = status.result.empty() ? "missing" : resultNumber(status.result);
  if (!status.otherResult.empty()) {
    result = displayText(status.otherResult, charset) + " (no number)";
  }
  return "result " + result + ": " + displayText(status.resultText, charset);
}

std::string timeText(std::chrono::milliseconds time) {
  const auto all = std::chrono::duration_cast<std::chrono::seconds>(time).count();
  const auto hours = all / 3600;
  const auto minutes = all / 60 % 60;
  if (hours == 0) return platform::format("%ld:%02ld", minutes, all % 60);
  return platform::format("%ld:%02ld:%02ld", hours, minutes, all % 60);
}

std::string noWorkerText(const Look& look, Charset charset) {
  if (!look.status.hasNoWorker || look.status.state != job::kWait) return {};
  if (look.startFault.empty()) {
    return "no worker is seen; the job goes on when one is started with its log id";
  }
  return "no worker is seen, and none should be started for the job: " +
         displayText(look.startFault, charset);
}

std::string silenceText(const Look& look) {
  if (look.silence < look.patience || look.status.isFinished() || look.status.hasNoWorker)
    return {};
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(look.silence).count();
  const bool flashes = look.status.state == job::kRun && look.status.command == job::kUpdateFW;
  return platform::format("no news for %ld s%s", seconds,
                          flashes ? "; a flash may be silent for minutes, do not unplug" : "");
}

}  // namespace kelvane::console
