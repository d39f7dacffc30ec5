// The host: what a worker asks of the system it runs on, apart from files and child processes.
#pragma once

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

#include "platform/Value.h"

namespace kelvane::platform {

// A system version: major, minor, patch.
using SystemVersion = std::array<std::int64_t, 3>;

// The one seam through which time and place come in; tests hand in their own.
class Host {
 public:
  virtual ~Host() = default;
  // Returns once the time has passed, signals or not.
  virtual void sleep(unsigned seconds) = 0;
  // The local wall-clock time.
  virtual std::tm localTime() const = 0;
  // The running system's version; missing numbers are 0.
  virtual SystemVersion systemVersion() const = 0;
  // The folder that holds the executable; nothing where the system does not tell.
  virtual Value executableFolder() const = 0;
};

// The real one.
class SystemHost : public Host {
 public:
  void sleep(unsigned seconds) override;
  std::tm localTime() const override;
  SystemVersion systemVersion() const override;
  Value executableFolder() const override;

 private:
  // The last second that was asked for, and what it is as local time.
  mutable std::time_t brokenDown_ = -1;
  mutable std::tm local_ = {};
};

// From here on a write to a file at its size limit, or to a pipe that nobody reads, fails like any
// other write instead of ending the process.
void ignoreWriteSignals();

// The leading numbers of a version text: "6.1.0-18" gives 6, 1, 0.
SystemVersion parseVersion(const std::string& text);

}  // namespace kelvane::platform
