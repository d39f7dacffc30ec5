#include "console/job/Pace.h"

#include <algorithm>

#include "contract/JobFile.h"
#include "platform/Text.h"

namespace kelvane::console {

using platform::Value;

namespace {

using std::chrono::milliseconds;
using Time = std::optional<milliseconds>;

constexpr std::size_t kChangesKept = 20;
constexpr int kPatienceInChanges = 3;
// One pair of changes this far apart may have a silence between them.
constexpr milliseconds kFarApart(60'000);

std::vector<std::string> imagesOf(const Value& record) {
  const Value& output = record.get(job::kOutput);
  const Value& entries = output.isArray() ? output : record.get(job::kInputParameters);
  std::vector<std::string> images;
  if (!entries.isArray()) return images;
  for (const Value& entry : entries.elements()) {
    if (!entry.isDictionary() || !entry.has(job::kWwn)) continue;
    images.push_back(platform::describe(entry.get(job::kFilePath)));
  }
  return images;
}

int percentOfPhase(const ControllerStatus& one, const std::string& phase) {
  return phase == kCpldPhase ? one.cpld : one.firmware;
}

bool isOpen(const JobStatus& status) { return status.state == job::kRun && !status.hasNoWorker; }

Time leftOf(const Time& end, milliseconds now) {
  return end && *end > now ? Time(*end - now) : std::nullopt;
}

}  // namespace

void Pace::take(milliseconds now, const JobStatus& status, const Value& record) {
  course_.take(now, status);
  images_ = imagesOf(record);
  if (place_ != course_.active() || phase_ != course_.phase() || !isOpen(status)) {
    forget();
    place_ = course_.active();
    phase_ = course_.phase();
  }
  if (isOpen(status)) takePercentage(now, status);
  previous_ = status.controllers;
}

std::optional<TimeLeft> Pace::left(milliseconds now) const {
  if (!ends_ || now >= ends_->ofPhase || now - changes_.back().time >= patience()) {
    return std::nullopt;
  }
  return TimeLeft{previous_[place_].wwn, phase_, ends_->ofPhase - now,
                  leftOf(ends_->ofController, now), leftOf(ends_->ofJob, now)};
}

milliseconds Pace::patience() const {
  if (changes_.size() < 2) return kUsualPatience;
  std::vector<milliseconds> lengths;
  for (std::size_t i = 1; i < changes_.size(); ++i) {
    lengths.push_back(changes_[i].time - changes_[i - 1].time);
  }
  // The middle one, of two the shorter: a silence among them does not count.
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>((lengths.size() - 1) / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  return std::max(kUsualPatience, kPatienceInChanges * *middle);
}

void Pace::forget() {
  changes_.clear();
  ends_.reset();
}

// A percentage that falls, as at a retry, begins anew.
void Pace::takePercentage(milliseconds now, const JobStatus& status) {
  if (phase_.empty() || place_ >= status.controllers.size() ||
      previous_.size() != status.controllers.size()) {
    return;
  }
  const int percent = percentOfPhase(status.controllers[place_], phase_);
  const int before = percentOfPhase(previous_[place_], phase_);
  if (percent < before) forget();
  if (percent <= before) return;
  if (changes_.size() == kChangesKept) changes_.erase(changes_.begin());
  changes_.push_back({now, percent});
  ends_ = ends();
}

std::optional<double> Pace::millisecondsPerPercent() const {
  if (changes_.size() < 2) return std::nullopt;
  const milliseconds longest = changes_.size() == 2 ? kFarApart : patience();
  double time = 0;
  int percent = 0;
  for (std::size_t i = 1; i < changes_.size(); ++i) {
    const milliseconds length = changes_[i].time - changes_[i - 1].time;
    if (length >= longest) continue;
    time += static_cast<double>(length.count());
    percent += changes_[i].percent - changes_[i - 1].percent;
  }
  return percent > 0 ? std::optional(time / percent) : std::nullopt;
}

std::optional<Pace::Ends> Pace::ends() const {
  const std::optional<double> each = millisecondsPerPercent();
  if (!each) return std::nullopt;
  const Change& last = changes_.back();
  const double left = *each * (kWhole - last.percent);
  Ends ends = {last.time + milliseconds(static_cast<std::int64_t>(left)), {}, {}};
  ends.ofController = endOfController(ends.ofPhase);
  if (ends.ofController) ends.ofJob = endOfJob(*ends.ofController);
  return ends;
}

Time Pace::endOfController(milliseconds endOfPhase) const {
  if (phase_ == kFirmwarePhase) return endOfPhase;
  if (place_ >= images_.size()) return std::nullopt;
  const Time firmware = meanOfDone(images_[place_], kFirmwarePhase);
  return firmware ? Time(endOfPhase + *firmware) : std::nullopt;
}

Time Pace::endOfJob(milliseconds endOfController) const {
  if (images_.size() != previous_.size()) return std::nullopt;
  milliseconds end = endOfController;
  for (std::size_t i = place_ + 1; i < images_.size(); ++i) {
    const Time expected = expectedFor(images_[i], endOfController);
    if (!expected) return std::nullopt;
    end += *expected;
  }
  return end;
}

// Of a controller that waits: by those that got its image, else by the one that is getting it.
Time Pace::expectedFor(const std::string& image, milliseconds endOfController) const {
  if (const Time mean = meanOfDone(image, nullptr)) return mean;
  const Time start = course_.activeSince();
  return start && images_[place_] == image ? Time(endOfController - *start) : std::nullopt;
}

// The mean length of a phase, or of the whole, over the controllers that got this image.
Time Pace::meanOfDone(const std::string& image, const char* phase) const {
  milliseconds sum{0};
  int count = 0;
  for (std::size_t i = 0; i < place_ && i < images_.size(); ++i) {
    if (images_[i] != image) continue;
    const Time length = phase == nullptr ? course_.lengthOf(i) : course_.lengthOf(i, phase);
    if (!length) continue;
    sum += *length;
    ++count;
  }
  return count > 0 ? Time(sum / count) : std::nullopt;
}

}  // namespace kelvane::console
