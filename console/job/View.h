// The view: where a followed job is shown.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "console/job/JobStatus.h"
#include "console/job/Pace.h"
#include "platform/Value.h"

namespace kelvane::console {

// One look at a job.
struct Look {
  platform::Value record;  // nothing where the record was never seen
  JobStatus status;
  // Since the job began, of a finished one until its end; nothing where that is not known.
  std::optional<std::chrono::milliseconds> elapsed = std::chrono::milliseconds(0);
  std::chrono::milliseconds silence{0};                 // since the record last changed
  std::chrono::milliseconds patience = kUsualPatience;  // from when on a silence is one
  std::chrono::milliseconds followed{0};                // since the following began
  std::optional<TimeLeft> left = std::nullopt;          // of a firmware job that runs
  std::vector<ControllerTimes> times = {};              // of a finished one
  std::string shortfall = {};   // what a finished one with result 0 did not do
  std::string startFault = {};  // why no worker is to be started for a waiting one without one
};

class View {
 public:
  virtual ~View() = default;
  // Shows the job, with its result where it is finished. Called at every look; what has not changed
  // is not shown again.
  virtual void show(const Look& look) = 0;
};

}  // namespace kelvane::console
