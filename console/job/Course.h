// The course of a firmware job: which controller was in which phase, and how long.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/job/JobStatus.h"

namespace kelvane::console {

inline constexpr char kCpldPhase[] = "CPLD";
inline constexpr char kFirmwarePhase[] = "firmware";

// "CPLD" lasts until the firmware's percentages begin, "firmware" with its transfer until the
// controller is done. A CPLD that shows no percentage between 0 and 100 was not flashed, and its
// time is the firmware's.
struct PhaseTime {
  std::string phase;
  std::chrono::milliseconds length{0};
  bool operator==(const PhaseTime&) const = default;
};

struct ControllerTimes {
  std::string wwn;
  std::vector<PhaseTime> phases;
  bool operator==(const ControllerTimes&) const = default;
};

// Made of looks at the job, in the order of time. Controllers are updated one after the other: each
// begins when the one before it is done. What was not seen to begin has no length.
class Course {
 public:
  // `start` is when the job began, where that is known before the first look.
  explicit Course(std::optional<std::chrono::milliseconds> start = std::nullopt) : start_(start) {}

  void take(std::chrono::milliseconds now, const JobStatus& status);

  // The place of the controller that is being updated; as many as there are where all are done.
  std::size_t active() const { return active_; }
  // Its phase; empty before its first percentage.
  std::string phase() const;
  // Since when it is being updated.
  std::optional<std::chrono::milliseconds> activeSince() const;

  // How long a controller took in all, and one of its phases: nothing where that was not seen
  // whole.
  std::optional<std::chrono::milliseconds> lengthOf(std::size_t index) const;
  std::optional<std::chrono::milliseconds> lengthOf(std::size_t index, const char* phase) const;

  // Of each controller the phases that are over, in their order; those of less than a second are
  // left out, as are controllers without any.
  std::vector<ControllerTimes> times() const;

 private:
  using Time = std::optional<std::chrono::milliseconds>;

  struct Phase {
    std::string name;
    Time start;
    Time end;
  };
  struct Controller {
    std::string wwn;
    Time start;
    Time end;
    std::vector<Phase> phases;
  };

  void begin(const JobStatus& status);
  void advanceTo(std::size_t index, std::chrono::milliseconds now);
  void enter(const std::string& phase, std::chrono::milliseconds now);
  void closePhase(std::chrono::milliseconds now);

  Time start_;
  std::vector<Controller> controllers_;
  std::size_t active_ = 0;
};

}  // namespace kelvane::console
