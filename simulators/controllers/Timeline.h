// How a flash goes: what its progress shows at any time after its start, faults included.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvane::simulator {

// Something that goes wrong in a flash when it gets to a position. Positions are percentages; a
// CPLD's second stage goes on from 100 to 200.
struct FlashFault {
  enum class Kind {
    fail,       // shows the status byte for ever
    retry,      // CPLD: starts anew with a retry count one higher
    stall,      // stays there
    backwards,  // goes on from an earlier position
    unknown,    // shows a status byte and a stage that nobody knows, and stays there
  };
  Kind kind = Kind::fail;
  double at = 0;
  double to = 0;                  // backwards
  std::optional<double> seconds;  // stall, unknown; nothing: for ever
  std::uint8_t statusByte = 0;    // fail, unknown
  std::uint8_t stage = 0;         // unknown

  // The position from which the flash goes on.
  double next() const;
};

// The first fault of the list that lies behind the position which the flash has by then; such a
// list cannot be played.
std::optional<std::size_t> firstUnreachable(const std::vector<FlashFault>& faults);

struct Reading {
  std::uint8_t statusByte = 0;
  std::uint8_t stage = 0;
  std::uint8_t percent = 0;
  std::uint8_t retries = 0;
  bool done = false;
  bool failed = false;  // for ever
};

class Timeline {
 public:
  enum class Target { firmware, cpld };
  // `stageSeconds` is how long each stage takes: one stage for firmware, two for a CPLD. Faults
  // are played in their order.
  Timeline(Target target, std::vector<double> stageSeconds, const std::vector<FlashFault>& faults);

  Reading at(double secondsSinceStart) const;

 private:
  // A stretch of time in which the position moves evenly, or stays.
  struct Stretch {
    double seconds = 0;
    double from = 0;
    double to = 0;
    std::uint8_t statusByte = 0;
    std::optional<std::uint8_t> stage;  // shown in place of the position's own
    std::uint8_t retries = 0;
    bool failed = false;
  };

  void travel(double to);
  void rest(const FlashFault& fault);
  Reading show(const Stretch& stretch, double position) const;
  Reading done() const;

  Target target_;
  std::vector<double> stageSeconds_;
  std::vector<Stretch> stretches_;
  double position_ = 0;
  std::uint8_t retries_ = 0;
};

}  // namespace kelvane::simulator
