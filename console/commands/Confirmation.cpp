#include "console/commands/Confirmation.h"

#include <chrono>

#include <poll.h>

#include "console/display/Question.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {

namespace {

bool hasInput(int file) {
  struct pollfd awaited = {file, POLLIN, 0};
  return ::poll(&awaited, 1, 0) == 1;
}

// Not by reading alone: an interrupt right before that would not be seen until something is typed.
void awaitAnswer(const Surroundings& surroundings) {
  constexpr std::chrono::milliseconds kBetweenLooks{20};
  const int file = surroundings.screen.answersFile;
  while (file >= 0 && !hasInput(file) && surroundings.clock.wait(kBetweenLooks)) {
  }
}

}  // namespace

void requireConfirmed(const std::string& question, const Surroundings& surroundings) {
  if (surroundings.screen.answers == nullptr) return;
  showQuestion(question, surroundings.screen);
  awaitAnswer(surroundings);
  if (!surroundings.clock.wait(std::chrono::milliseconds(0))) {
    throw Failure(kInterrupted, "interrupted; nothing was changed");
  }
  if (!isAgreement(*surroundings.screen.answers)) {
    throw Failure(kNotConfirmed, "not confirmed; nothing was changed");
  }
}

}  // namespace kelvane::console
