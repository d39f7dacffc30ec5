#include "console/job/Follower.h"

#include <cstddef>
#include <optional>
#include <vector>

#include "contract/JobFile.h"
#include "platform/Value.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;

// Takes what was found over into the look, and the time it was found at.
class Watch {
 public:
  Watch(Clock& clock, const Past& past)
      : clock_(clock),
        past_(past),
        begin_(clock.now()),
        start_(past.start),
        news_(begin_),
        pace_(past.start) {
    for (const Moment& moment : past.moments) {
      pace_.take(moment.time, statusOf(moment.record), moment.record);
    }
  }

  const Look& take(const platform::Value& record, Worker& worker, bool hasEnded) {
    const milliseconds now = clock_.now();
    const std::string before = look_.status.state;
    const bool isNew = record != look_.record;
    if (isNew) look_.record = record;
    look_.status = statusOf(record);
    if (look_.status.isFinished()) takeEnd(isNew);
    if (isNew) news_ = timeOfNews(now);
    keepPercentages(look_.status.controllers);
    const bool waits = look_.status.state == job::kWait;
    // Of a waiting job that nobody goes on with the end of the following tells.
    if (waits ? !hasEnded && !worker.isSeen() : hasEnded) markWithoutWorker(look_.status);
    takeStartFault();
    if (!start_ && before == job::kWait && !waits) start_ = now;
    pace_.take(now, look_.status, record);
    takeTimes(now);
    return look_;
  }
  const Look& last() const { return look_; }

 private:
  // What stands in the record at the first look may be known from before.
  milliseconds timeOfNews(milliseconds now) const {
    if (look_.followed > milliseconds(0) || past_.moments.empty()) return now;
    const Moment& last = past_.moments.back();
    return statusOf(last.record).controllers == look_.status.controllers ? last.time : now;
  }

  // What became of each controller, and its times, as the log tells; what was not done.
  void takeEnd(bool isNew) {
    if (isNew && past_.log) end_ = past_.log(look_.record);
    if (isNew && past_.shortfall) {
      look_.shortfall = past_.shortfall(look_.record, end_.value_or(LogStretch()));
    }
    if (!end_) return;
    look_.status = statusOf(look_.record, *end_);
    look_.times = timesOf(*end_).controllers;
  }

  // It may be mended, or come, while the job waits.
  void takeStartFault() {
    const bool isAlone = look_.status.hasNoWorker && look_.status.state == job::kWait;
    look_.startFault = isAlone && past_.startFault ? past_.startFault(look_.record) : "";
  }

  // Of a finished job in the log's seconds, as list tells it and as its phases are told: they add
  // up. Not of one that was over at once, however the seconds fell.
  std::optional<milliseconds> lengthAt(milliseconds now) const {
    const auto seen = start_ ? std::optional(now - *start_) : past_.times.length;
    const bool isOver = end_ && look_.status.isFinished();
    if (!isOver || (seen && *seen < std::chrono::seconds(1))) return seen;
    const auto logged = lengthInLog(*end_);
    return logged ? logged : seen;
  }

  void takeTimes(milliseconds now) {
    look_.elapsed = lengthAt(now);
    look_.silence = now - news_;
    look_.patience = pace_.patience();
    look_.followed = now - begin_;
    look_.left = pace_.left(now);
    if (!look_.status.isFinished()) return;
    if (look_.times.empty()) look_.times = pace_.course().times();
    if (look_.times.empty()) look_.times = past_.times.controllers;
  }

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
  const Past& past_;
  milliseconds begin_;
  std::optional<milliseconds> start_;  // of the job
  milliseconds news_;
  Pace pace_;
  std::vector<ControllerStatus> under_;  // as each was seen last below 100 percent
  std::optional<LogStretch> end_;        // of the finished job
  Look look_;
};

}  // namespace

Followed follow(const JobFile& file, const std::string& logId, Worker& worker, Clock& clock,
                View& view, const JobFile::IsMeant& isMeant, const Past& past) {
  Watch watch(clock, past);
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
