// The clock: how the console lets time pass between two looks at the job file.
#pragma once

#include <chrono>

namespace kelvane::console {

class Clock {
 public:
  virtual ~Clock() = default;
  // The time since some fixed point; never goes back.
  virtual std::chrono::milliseconds now() = 0;
  // Waits. False where the user interrupted the console, before or meanwhile: then it returns at
  // once.
  virtual bool wait(std::chrono::milliseconds time) = 0;
  // The local time of day, as the worker's log has it.
  virtual std::chrono::seconds timeOfDay();
};

// The real one. From its making on, the first interrupt (SIGINT) no longer ends the console but is
// told by wait(); a second one ends it.
class SystemClock : public Clock {
 public:
  SystemClock();
  std::chrono::milliseconds now() override;
  bool wait(std::chrono::milliseconds time) override;
};

}  // namespace kelvane::console
