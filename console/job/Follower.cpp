#include "console/job/Follower.h"

#include <cstddef>
#include <vector>

#include "contract/JobFile.h"
#include "platform/Value.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;

constexpr int kWhole = 100;

// Takes what was found over into the look, and the time it was found at.
class Watch {
 public:
  explicit Watch(Clock& clock) : clock_(clock), start_(clock.now()), news_(start_) {}

  const Look& take(const platform::Value& record, Worker& worker, bool hasEnded) {
    const milliseconds now = clock_.now();
    if (record != look_.record) {
      look_.record = record;
      news_ = now;
    }
    look_.status = statusOf(record);
    keepPercentages(look_.status.controllers);
    const bool waits = look_.status.state == job::kWait;
    if (hasEnded || (waits && !worker.isSeen())) markWithoutWorker(look_.status);
    look_.elapsed = now - start_;
    look_.silence = now - news_;
    return look_;
  }
  const Look& last() const { return look_; }

 private:
  // Where the record no longer tells how far a controller came, an earlier look does. At 100
  // percent it is not known yet whether the flash has failed.
  void keepPercentages(std::vector<ControllerStatus>& controllers) {
    under_.resize(controllers.size());
    for (std::size_t i = 0; i < controllers.size(); ++i) {
      ControllerStatus& one = controllers[i];
      if (one.total == kUnknownPercent && under_[i].wwn == one.wwn) {
        one.firmware = under_[i].firmware;
        one.total = under_[i].total;
      } else if (one.total < kWhole) {
        under_[i] = one;
      }
    }
  }

  Clock& clock_;
  milliseconds start_;
  milliseconds news_;
  std::vector<ControllerStatus> under_;  // as each was seen last below 100 percent
  Look look_;
};

}  // namespace

Followed follow(const JobFile& file, const std::string& logId, Worker& worker, Clock& clock,
                View& view, const JobFile::IsMeant& isMeant) {
  Watch watch(clock);
  for (int missed = 0;;) {
    // Asked before the file is read, so that what the worker wrote last is seen.
    const bool ended = worker.hasEnded();
    const platform::Value record = file.find(logId, isMeant);
    if (!record.isNothing()) {
      const Look& look = watch.take(record, worker, ended);
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
