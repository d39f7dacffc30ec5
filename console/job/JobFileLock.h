// The lock among consoles: one of them at a time changes a job file.
//
// A file beside the job file, which stays there, empty. Neither the worker nor the application
// knows it. The system takes the lock back from whoever ends, however that comes.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "console/job/Clock.h"
#include "platform/Descriptor.h"

namespace kelvane::console {

// Another console holds the lock for moments. One that holds it longer was stopped in between.
inline constexpr std::chrono::milliseconds kLockPatience(30'000);
inline constexpr std::chrono::milliseconds kLockInterval(10);
inline constexpr std::chrono::milliseconds kLockTold(1000);  // a longer waiting is told

class JobFileLock {
 public:
  // Waits until no other console has it. The folder of the job file is made where it is missing.
  // Raises Failure where the lock cannot be had: kBusy where another program keeps it,
  // kJobFileFailed where the file cannot be made, kInterrupted. `tellWaiting` is called once where
  // the waiting takes long.
  JobFileLock(const std::string& jobFile, Clock& clock,
              const std::function<void()>& tellWaiting = {});

 private:
  platform::Descriptor file_;
};

// Of a job file that is a link: beside the file that it leads to, which is the one that is changed.
std::string lockPath(const std::string& jobFile);

}  // namespace kelvane::console
