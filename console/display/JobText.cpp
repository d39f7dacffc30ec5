#include "console/display/JobText.h"

#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

constexpr std::chrono::seconds kLongSilence(10);

std::string stateText(const std::string& state, Charset charset) {
  if (state == job::kWait) return "waiting";
  if (state == job::kRun) return "running";
  if (state == job::kFree) return "finished";
  return displayText(state, charset);
}

}  // namespace

std::string jobLine(const JobStatus& status, Charset charset) {
  return "job " + displayText(status.logId, charset) + ": " + stateText(status.state, charset);
}

std::string resultLine(const JobStatus& status, Charset charset) {
  const std::string result = status.result.empty() ? "missing" : status.result;
  return "result " + result + ": " + displayText(status.resultText, charset);
}

std::string timeText(std::chrono::milliseconds time) {
  const auto all = std::chrono::duration_cast<std::chrono::seconds>(time).count();
  const auto hours = all / 3600;
  const auto minutes = all / 60 % 60;
  if (hours == 0) return platform::format("%ld:%02ld", minutes, all % 60);
  return platform::format("%ld:%02ld:%02ld", hours, minutes, all % 60);
}

std::string silenceText(const Look& look) {
  if (look.silence < kLongSilence || look.status.isFinished()) return {};
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(look.silence).count();
  const bool flashes = look.status.state == job::kRun && look.status.command == job::kUpdateFW;
  return platform::format("no news for %ld s%s", seconds,
                          flashes ? "; a flash may be silent for minutes, do not unplug" : "");
}

}  // namespace kelvane::console
