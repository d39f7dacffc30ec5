#include "console/display/JobText.h"

#include <fmt/format.h>

#include "contract/JobFile.h"

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
  if (hours == 0) return fmt::format("{}:{:02}", minutes, all % 60);
  return fmt::format("{}:{:02}:{:02}", hours, minutes, all % 60);
}

std::string silenceText(const Look& look) {
  if (look.silence < kLongSilence || look.status.isFinished()) return {};
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(look.silence).count();
  const bool flashes = look.status.state == job::kRun && look.status.command == job::kUpdateFW;
  return fmt::format("no news for {} s{}", seconds,
                     flashes ? "; a flash may be silent for minutes, do not unplug" : "");
}

}  // namespace kelvane::console
