// The plain view: one line per change, for output that is not a terminal. How long it still takes
// is told once a phase and once a minute.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "console/display/DisplayText.h"
#include "console/job/View.h"

namespace kelvane::console {

class PlainView : public View {
 public:
  // The stream is not owned and must outlive the view.
  PlainView(std::ostream& out, Charset charset) : out_(out), charset_(charset) {}

  void show(const Look& look) override;

 private:
  void showNews(const Look& look);
  void showTimeLeft(const Look& look);
  void showSilence(const Look& look);
  bool isShown(const JobStatus& status, std::size_t index) const;

  std::ostream& out_;
  Charset charset_;
  JobStatus shown_;
  std::string shownWithout_;  // what was told of a worker that is not seen
  std::chrono::minutes shownSilence_{0};
  std::string shownPhase_;  // of which controller
  std::chrono::milliseconds shownLeft_{0};
};

}  // namespace kelvane::console
