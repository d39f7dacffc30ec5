// The view: where a followed job is shown.
#pragma once

#include <chrono>

#include "console/job/JobStatus.h"
#include "platform/Value.h"

namespace kelvane::console {

// One look at a job.
struct Look {
  platform::Value record;  // nothing where the record was never seen
  JobStatus status;
  std::chrono::milliseconds elapsed{0};  // since the following began
  std::chrono::milliseconds silence{0};  // since the record last changed
};

class View {
 public:
  virtual ~View() = default;
  // Shows the job, with its result where it is finished. Called at every look; what has not changed
  // is not shown again.
  virtual void show(const Look& look) = 0;
};

}  // namespace kelvane::console
