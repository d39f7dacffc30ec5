// What the update engine says while it works.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/Host.h"
#include "simulators/engine/ServiceFaults.h"

namespace kelvane::simulator {

// Lines on standard output, each written at once, so that a reader sees it when it is told. That
// nobody reads them stops nothing. The run's time is spread over the lines.
class Progress {
 public:
  // For a run that tells this many lines.
  Progress(const ServiceFaults& faults, platform::Host& host, std::size_t lines);

  // Tells a line and lets its share of the time pass.
  void tell(const std::string& line);
  // Tells the lines of chatter; endless chatter until nobody reads it.
  void chatter();

 private:
  // Whether the line could be written, or there was none to write.
  bool write(const std::string& line) const;
  void takeTime();

  const ServiceFaults& faults_;
  platform::Host& host_;
  std::size_t lines_;
  std::size_t told_ = 0;
  unsigned passed_ = 0;  // seconds
};

}  // namespace kelvane::simulator
