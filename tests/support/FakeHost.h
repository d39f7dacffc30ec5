// A host on which time does not pass: sleeps are counted, the clock stands at 14:03:07.
#pragma once

#include <functional>
#include <vector>

#include "platform/Host.h"

namespace kelvane::test {

class FakeHost : public platform::Host {
 public:
  void sleep(unsigned seconds) override {
    sleeps.push_back(seconds);
    if (onSleep) onSleep();
  }
  std::tm localTime() const override {
    std::tm time = {};
    time.tm_hour = 14;
    time.tm_min = 3;
    time.tm_sec = 7;
    return time;
  }
  platform::SystemVersion systemVersion() const override { return version; }
  platform::Value executableFolder() const override { return folder; }

  std::vector<unsigned> sleeps;
  std::function<void()> onSleep;
  platform::SystemVersion version = {14, 2, 1};
  platform::Value folder;
};

}  // namespace kelvane::test
