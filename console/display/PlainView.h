// The plain view: one line per change, for output that is not a terminal.
#pragma once

#include <cstddef>
#include <ostream>

#include "console/display/DisplayText.h"
#include "console/job/View.h"

namespace kelvane::console {

class PlainView : public View {
 public:
  // The stream is not owned and must outlive the view.
  PlainView(std::ostream& out, Charset charset) : out_(out), charset_(charset) {}

  void show(const Look& look) override;

 private:
  void showNews(const JobStatus& status);
  void showSilence(const Look& look);
  bool isShown(const JobStatus& status, std::size_t index) const;

  std::ostream& out_;
  Charset charset_;
  JobStatus shown_;
  std::chrono::minutes shownSilence_{0};
};

}  // namespace kelvane::console
