#include "console/commands/Turn.h"

#include "console/checks/Access.h"
#include "console/checks/ProcessChecks.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/Processes.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

// Who is at work: "job 17 is running"; empty where nobody is.
std::string whoWorks(const JobFile& file, const TurnWish& wish) {
  const auto processes = platform::runningProcesses();
  const std::string logId = runningJob(wish.sharedFolder, file.read(), processes);
  if (!logId.empty()) return "job " + logId + " is running";
  Findings left = engineProcessFindings(wish.sharedFolder, processes);
  if (!wish.bundle.empty()) append(left, installationProcessFindings(wish.bundle, processes));
  return left.empty() ? "" : left.front().what;
}

void awaitOthers(const JobFile& file, const TurnWish& wish, const Surroundings& surroundings) {
  std::string told;
  for (;;) {
    const std::string others = whoWorks(file, wish);
    if (others.empty()) return;
    if (others != told) showNotice(others + "; waiting", wish.noticesApart, surroundings.screen);
    told = others;
    if (!surroundings.clock.wait(kPollInterval)) {
      throw Failure(kInterrupted, "interrupted while " + others + "; nothing was submitted");
    }
  }
}

}  // namespace

JobFileLock takeTurn(const JobFile& file, const TurnWish& wish, const Surroundings& surroundings) {
  for (;;) {
    // Without the lock, which others may need meanwhile.
    if (wish.whenBusy == WhenBusy::wait) awaitOthers(file, wish, surroundings);
    JobFileLock lock(file.path(), surroundings.clock, [&] {
      showNotice(
          "another program keeps the job file locked (" + lockPath(file.path()) + "); waiting",
          wish.noticesApart, surroundings.screen);
    });
    if (wish.whenBusy == WhenBusy::goOn) return lock;
    const std::string others = whoWorks(file, wish);
    if (others.empty()) return lock;
    if (wish.whenBusy == WhenBusy::refuse) throw Failure(kBusy, others + "; " + wish.advice);
  }
}

void requireChangeable(const JobFile& file) {
  const std::string folder = platform::withoutLastComponent(lockPath(file.path()));
  const std::string cause = changeRefusal(folder);
  if (cause.empty()) return;
  throw Failure(kJobFileFailed,
                "the job file's folder cannot be changed: " + cause +
                    ". The worker replaces the job file there at every step; nobody would learn "
                    "what became of a job. Give the user that runs the worker the right to write "
                    "in the folder");
}

}  // namespace kelvane::console
