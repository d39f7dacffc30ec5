#include "console/job/Follower.h"

#include "platform/Value.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;

// Takes what was found over into the look, and the time it was found at.
class Watch {
 public:
  explicit Watch(Clock& clock) : clock_(clock), start_(clock.now()), news_(start_) {}

  const Look& take(const platform::Value& record) {
    const milliseconds now = clock_.now();
    if (record != look_.record) {
      look_.record = record;
      look_.status = statusOf(record);
      news_ = now;
    }
    look_.elapsed = now - start_;
    look_.silence = now - news_;
    return look_;
  }
  const Look& last() const { return look_; }

 private:
  Clock& clock_;
  milliseconds start_;
  milliseconds news_;
  Look look_;
};

}  // namespace

Followed follow(const JobFile& file, const std::string& logId, Worker& worker, Clock& clock,
                View& view, const IsMeant& isMeant) {
  Watch watch(clock);
  for (int missed = 0;;) {
    // Asked before the file is read, so that what the worker wrote last is seen.
    const bool ended = worker.hasEnded();
    const platform::Value record = file.find(logId);
    if (!record.isNothing() && (!isMeant || isMeant(record))) {
      const Look& look = watch.take(record);
      view.show(look);
      if (look.status.isFinished()) return {Outcome::finished, look};
      if (ended) return {Outcome::workerEnded, look};
    } else if (ended && ++missed == kLooksAfterTheEnd) {
      return {Outcome::recordLost, watch.last()};
    }
    if (!clock.wait(kPollInterval)) return {Outcome::interrupted, watch.last()};
  }
}

}  // namespace kelvane::console
