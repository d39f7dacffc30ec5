#include "console/display/PlainView.h"

#include <string>

#include "console/display/JobText.h"
#include "console/display/TimeText.h"

namespace kelvane::console {
namespace {

// Shorter times are not worth a line.
constexpr std::chrono::milliseconds kShortestLeft(10'000);
constexpr std::chrono::milliseconds kShortestJob(1000);

std::string progressLine(const ControllerStatus& controller) {
  std::string line = displayName(controller.wwn);
  if (controller.standing != Standing::open && controller.standing != Standing::done) {
    line.append("  ").append(phaseOf(controller));
  }
  line.append("  cpld ").append(percentText(controller.cpld));
  line.append("  firmware ").append(percentText(controller.firmware));
  return line.append("  total ").append(percentText(controller.total));
}

}  // namespace

void PlainView::show(const Look& look) {
  showNews(look);
  showTimeLeft(look);
  showSilence(look);
}

void PlainView::showNews(const Look& look) {
  const JobStatus& status = look.status;
  const std::string without = noWorkerText(look, charset_);
  if (status == shown_ && without == shownWithout_) return;
  const bool isNew = status.state != shown_.state || status.hasNoWorker != shown_.hasNoWorker;
  if (isNew && !status.isFinished()) {
    out_ << jobLine(status, charset_) << '\n';
  }
  if (without != shownWithout_ && !without.empty()) out_ << without << '\n';
  for (std::size_t i = 0; i < status.controllers.size(); ++i) {
    if (!isShown(status, i)) out_ << progressLine(status.controllers[i]) << '\n';
  }
  if (status.isFinished()) {
    out_ << resultLine(status, charset_) << '\n';
    if (look.elapsed && *look.elapsed >= kShortestJob) out_ << "took " << jobTimeText(look) << '\n';
  }
  out_.flush();
  shown_ = status;
  shownWithout_ = without;
}

void PlainView::showTimeLeft(const Look& look) {
  if (!look.left || look.left->ofJob.value_or(look.left->ofPhase) < kShortestLeft) return;
  const std::string phase = look.left->phase + " " + look.left->wwn;
  if (phase == shownPhase_ && look.followed < shownLeft_ + std::chrono::minutes(1)) return;
  out_ << timeLeftText(look) << std::endl;
  shownPhase_ = phase;
  shownLeft_ = look.followed;
}

// Once a minute.
void PlainView::showSilence(const Look& look) {
  const auto silence = std::chrono::duration_cast<std::chrono::minutes>(look.silence);
  const std::string text = silenceText(look);
  if (silence > shownSilence_ && !text.empty()) out_ << text << std::endl;
  shownSilence_ = silence;
}

bool PlainView::isShown(const JobStatus& status, std::size_t index) const {
  if (index >= shown_.controllers.size()) return false;
  ControllerStatus shown = shown_.controllers[index];
  const ControllerStatus& one = status.controllers[index];
  // That it is done was seen from its percentages.
  if (one.standing == Standing::done) shown.standing = Standing::done;
  return shown == one;
}

}  // namespace kelvane::console
