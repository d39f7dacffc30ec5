#include "console/Follower.h"

#include "platform/Value.h"

namespace kelvane::console {

Followed follow(const JobFile& file, const std::string& logId, Worker& worker, Clock& clock,
                View& view) {
  JobStatus status;
  for (int missed = 0;;) {
    // Asked before the file is read, so that what the worker wrote last is seen.
    const bool ended = worker.hasEnded();
    const platform::Value record = file.find(logId);
    if (!record.isNothing()) {
      status = statusOf(record);
      view.show(status);
      if (status.isFinished()) return {Outcome::finished, status};
      if (ended) return {Outcome::workerEnded, status};
    } else if (ended && ++missed == kLooksAfterTheEnd) {
      return {Outcome::recordLost, status};
    }
    if (!clock.wait(kPollInterval)) return {Outcome::interrupted, status};
  }
}

}  // namespace kelvane::console
