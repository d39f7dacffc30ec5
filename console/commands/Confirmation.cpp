#include "console/commands/Confirmation.h"

#include <chrono>

#include "console/display/Question.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {

void requireConfirmed(const std::string& question, const Surroundings& surroundings) {
  const bool agreed = confirmed(question, surroundings.screen);
  if (!surroundings.clock.wait(std::chrono::milliseconds(0))) {
    throw Failure(kInterrupted, "interrupted; nothing was changed");
  }
  if (!agreed) throw Failure(kNotConfirmed, "not confirmed; nothing was changed");
}

}  // namespace kelvane::console
