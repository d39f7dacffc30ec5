// The view for machines: the record as one line of JSON, at every change, with "console_times" in
// it where the console can tell of the job's times, and with "console_status" once the job is
// finished, or where no worker for it is seen.
#pragma once

#include <ostream>

#include "console/job/View.h"

namespace kelvane::console {

class JsonView : public View {
 public:
  // The stream is not owned and must outlive the view.
  explicit JsonView(std::ostream& out) : out_(out) {}

  void show(const Look& look) override;

 private:
  std::ostream& out_;
  platform::Value shown_;
};

}  // namespace kelvane::console
