#include "console/display/PlainView.h"

#include <string>

#include "console/display/JobText.h"

namespace kelvane::console {
namespace {

std::string progressLine(const ControllerStatus& controller) {
  return displayName(controller.wwn) + "  cpld " + std::to_string(controller.cpld) +
         "%  firmware " + std::to_string(controller.firmware) + "%  total " +
         std::to_string(controller.total) + "%";
}

}  // namespace

void PlainView::show(const Look& look) {
  showNews(look.status);
  showSilence(look);
}

void PlainView::showNews(const JobStatus& status) {
  if (status == shown_) return;
  if (status.state != shown_.state && !status.isFinished()) {
    out_ << jobLine(status, charset_) << '\n';
  }
  for (std::size_t i = 0; i < status.controllers.size(); ++i) {
    if (!isShown(status, i)) out_ << progressLine(status.controllers[i]) << '\n';
  }
  if (status.isFinished()) out_ << resultLine(status, charset_) << '\n';
  out_.flush();
  shown_ = status;
}

// Once a minute.
void PlainView::showSilence(const Look& look) {
  const auto silence = std::chrono::duration_cast<std::chrono::minutes>(look.silence);
  if (silence > shownSilence_) out_ << silenceText(look) << std::endl;
  shownSilence_ = silence;
}

bool PlainView::isShown(const JobStatus& status, std::size_t index) const {
  return index < shown_.controllers.size() &&
         shown_.controllers[index] == status.controllers[index];
}

}  // namespace kelvane::console
