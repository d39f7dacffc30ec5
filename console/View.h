// The view: where the status of a followed job is shown.
#pragma once

#include "console/JobStatus.h"

namespace kelvane::console {

class View {
 public:
  virtual ~View() = default;
  // Shows the status, with the job's result where it is finished. Called at every look; what has
  // not changed is not shown again.
  virtual void show(const JobStatus& status) = 0;
};

}  // namespace kelvane::console
