// The sub-command update-fw: submits a firmware job, starts the worker and follows the job.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "console/Clock.h"
#include "console/DisplayText.h"
#include "console/View.h"

namespace kelvane::console {

struct UpdateFwOptions {
  std::string sharedFolder;
  std::string bundle;  // where `worker` is empty: the worker is the bundle's
  std::string worker;
  std::string logId;  // empty: one is chosen
  bool verbose = false;
  std::vector<std::string> updates;  // "WWN=IMAGE" each
};

// What a sub-command works with; not owned.
struct Surroundings {
  Clock& clock;
  View& view;
  std::ostream& messages;
  Charset charset;  // of the messages
};

// Runs the job from its submission to its end and returns the exit code. What went wrong is told in
// the messages. A running worker is never stopped.
int updateFw(const UpdateFwOptions& options, const Surroundings& surroundings);

}  // namespace kelvane::console
