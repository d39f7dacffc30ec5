// The pace: how long a firmware job still takes, by how fast its percentages come.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "console/job/Course.h"
#include "console/job/JobStatus.h"
#include "platform/Value.h"

namespace kelvane::console {

// A job without news for longer is silent, where its pace is not known.
inline constexpr std::chrono::milliseconds kUsualPatience(10'000);

struct TimeLeft {
  std::string wwn;    // of the controller that is being updated
  std::string phase;  // in which it is
  std::chrono::milliseconds ofPhase{0};
  // Nothing where that cannot be told yet: before a firmware's flash it is known only where another
  // controller of this job got the same image.
  std::optional<std::chrono::milliseconds> ofController = std::nullopt;
  std::optional<std::chrono::milliseconds> ofJob = std::nullopt;
  bool operator==(const TimeLeft&) const = default;
};

// Made of looks at the job, in the order of time. What it tells changes with a change of the
// running phase's percentage alone, and between these goes down by the clock.
class Pace {
 public:
  // `start` is when the job began, where that is known before the first look.
  explicit Pace(std::optional<std::chrono::milliseconds> start = std::nullopt) : course_(start) {}

  void take(std::chrono::milliseconds now, const JobStatus& status, const platform::Value& record);

  // Known from the second change of a phase's percentage on; nothing before, in a silence, and
  // where it has run out.
  std::optional<TimeLeft> left(std::chrono::milliseconds now) const;

  // How long the running phase may show no news: some times what its changes take. Changes that are
  // further apart say nothing of the pace.
  std::chrono::milliseconds patience() const;

  const Course& course() const { return course_; }

 private:
  struct Change {
    std::chrono::milliseconds time{0};
    int percent = 0;
  };
  // Points in time.
  struct Ends {
    std::chrono::milliseconds ofPhase{0};
    std::optional<std::chrono::milliseconds> ofController;
    std::optional<std::chrono::milliseconds> ofJob;
  };

  void forget();
  void takePercentage(std::chrono::milliseconds now, const JobStatus& status);
  std::optional<double> millisecondsPerPercent() const;
  std::optional<Ends> ends() const;
  std::optional<std::chrono::milliseconds> endOfController(
      std::chrono::milliseconds endOfPhase) const;
  std::optional<std::chrono::milliseconds> endOfJob(
      std::chrono::milliseconds endOfController) const;
  std::optional<std::chrono::milliseconds> expectedFor(
      const std::string& image, std::chrono::milliseconds endOfController) const;
  std::optional<std::chrono::milliseconds> meanOfDone(const std::string& image,
                                                      const char* phase) const;

  Course course_;
  std::vector<std::string> images_;         // of each controller
  std::vector<ControllerStatus> previous_;  // as the last look had them
  std::size_t place_ = 0;                   // of the controller that is being updated
  std::string phase_;
  std::vector<Change> changes_;  // of the running phase's percentage
  std::optional<Ends> ends_;     // as the last change tells them
};

}  // namespace kelvane::console
