#include "console/report/FlashHistory.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "console/job/FlashSteps.h"
#include "console/job/LogTime.h"
#include "console/job/LoggedRecords.h"
#include "console/job/LoggedValue.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr JobTime kDay{24 * 60 * 60};

constexpr std::string_view kController = "devId = ";
constexpr std::string_view kRetry = "Found error, try to flash CPLD again";
constexpr std::string_view kCompleted = "Flash Completed.";
constexpr char kOfController[] = "updateFW";
constexpr char kOfCpld[] = "flashCPLD";

// What begins a phase.
struct Beginning {
  const char* function;
  std::string_view message;
  const char* phase;
};
constexpr Beginning kBeginnings[] = {
    {kOfController, kController, "preparation"},
    {kOfCpld, "flashCPLD start", "CPLD"},
    {kOfCpld, "flashCPLD end", "preparation"},
    {kOfController, "Start transferring image", "transfer"},
    {kOfController, "[WRONG] zr_checkQVXFFlashImage = 0x0", "transfer"},
    {kOfController, "Start flashing image", "firmware"},
    {kOfController, kCompleted, "closing"},
    {kOfController, "start _flashUSBFW", "USB bridge"},
};

int percentIn(const Value& entry, const char* key) {
  const Value& value = entry.get(key);
  int percent = 0;
  if (!value.isString()) return 0;
  const std::string& text = value.string();
  std::from_chars(text.data(), text.data() + text.size(), percent);
  return std::clamp(percent, 0, 100);
}

bool isSame(const HistoryPoint& one, const HistoryPoint& other) {
  return one.cpld == other.cpld && one.firmware == other.firmware && one.total == other.total;
}

// A controller under way, with the last news of it.
struct UnderWay {
  ControllerHistory history;
  bool hasEnded = false;
  JobTime newsAt{0};
  std::size_t newsEntry = 0;
};

class Historian {
 public:
  explicit Historian(const Value& record) : logId_(stringOf(record.get(job::kLogId))) {
    const Value& inputs = record.get(job::kInputParameters);
    if (!inputs.isArray()) return;
    for (const Value& input : inputs.elements()) {
      UnderWay& course = courses_.emplace_back();
      if (input.isDictionary()) course.history.wwn = stringOf(input.get(job::kWwn));
    }
  }

  void take(const LogEntry& entry) {
    clock_.take(entry.time);
    now_ = clock_.passed();
    ++number_;
    if (entry.message.starts_with(kRecordsWritten)) {
      takeWritten(entry);
    } else if (entry.function == kOfController || entry.function == kOfCpld) {
      takeStep(entry);
    }
  }

  FlashHistory finish(const std::string& startedAt) {
    if (current_ != nullptr) end(*current_);
    FlashHistory history{startedAt, now_, {}};
    for (UnderWay& course : courses_) history.controllers.push_back(std::move(course.history));
    return history;
  }

 private:
  // --- steps

  void takeStep(const LogEntry& entry) {
    const bool isOfCpld = entry.function == kOfCpld;
    if (!isOfCpld && entry.message.starts_with(kController)) beginNext();
    if (current_ == nullptr || current_->hasEnded) return;
    for (const Beginning& one : kBeginnings) {
      if (entry.function == one.function && entry.message.starts_with(one.message)) {
        beginPhase(one.phase);
      }
    }
    takeMark(entry, isOfCpld);
  }

  void beginNext() {
    if (current_ != nullptr) end(*current_);
    current_ = next_ < courses_.size() ? &courses_[next_++] : nullptr;
    if (current_ == nullptr) return;
    current_->history.hasBegun = true;
    current_->history.begin = now_;
    current_->newsAt = now_;
    current_->newsEntry = number_;
    current_->history.points.push_back({now_, 0, 0, 0});
  }

  void beginPhase(const char* name) {
    news(*current_);
    auto& phases = current_->history.phases;
    if (!phases.empty()) phases.back().to = now_;
    phases.push_back({name, now_, now_});
  }

  void takeMark(const LogEntry& entry, bool isOfCpld) {
    if (entry.message.starts_with(kRetry)) {
      mark(MarkKind::retry, "the CPLD's flash is tried again");
    } else if (!isOfCpld && entry.message == kCompleted) {
      mark(MarkKind::done, "the flash is completed");
      isFlashed_ = true;
    } else if (isFlashFault(entry) && !isFlashed_) {
      mark(MarkKind::fault, lineOf(entry));
      hasFailed_ = hasFailed_ || !isOfCpld;
    }
  }

  void mark(MarkKind kind, const std::string& text) {
    news(*current_);
    current_->history.marks.push_back({kind, now_, text});
  }

  // --- percentages

  void takeWritten(const LogEntry& entry) {
    const Value records =
        parseLogged(std::string_view(entry.message).substr(kRecordsWritten.size()));
    if (!records.isArray()) return;
    for (const Value& record : records.elements()) {
      if (!record.isDictionary() || record.get(job::kLogId) != Value(logId_)) continue;
      const Value& output = record.get(job::kOutput);
      if (output.isArray()) takeOutput(output);
    }
  }

  void takeOutput(const Value& output) {
    if (current_ == nullptr || current_->hasEnded) return;
    for (const Value& progress : output.elements()) {
      if (!progress.isDictionary() || stringOf(progress.get(job::kWwn)) != current_->history.wwn) {
        continue;
      }
      takePoint({now_, percentIn(progress, job::kCpldPercentage),
                 percentIn(progress, job::kFwPercentage),
                 percentIn(progress, job::kTotalPercentage)});
    }
  }

  void takePoint(const HistoryPoint& point) {
    auto& points = current_->history.points;
    if (isSame(points.back(), point) || hasFailed_) return;
    news(*current_);
    points.push_back(point);
  }

  // --- time

  void news(UnderWay& course) {
    if (now_ - course.newsAt >= kLeastSilence) {
      course.history.silences.push_back(
          {course.newsAt, now_, number_ - course.newsEntry - (number_ > course.newsEntry ? 1 : 0)});
    }
    course.newsAt = now_;
    course.newsEntry = number_;
  }

  void end(UnderWay& course) {
    if (course.hasEnded) return;
    news(course);
    course.hasEnded = true;
    course.history.end = now_;
    if (!course.history.phases.empty()) course.history.phases.back().to = now_;
    hasFailed_ = false;
    isFlashed_ = false;
  }

  std::string logId_;
  std::vector<UnderWay> courses_;
  std::size_t next_ = 0;
  UnderWay* current_ = nullptr;
  bool hasFailed_ = false;  // the firmware's flash: what is written then is no percentage
  bool isFlashed_ = false;  // behind that an error is the job's
  LogClock clock_;
  JobTime now_{0};
  std::size_t number_ = 0;
};

}  // namespace

FlashHistory flashHistoryOf(std::span<const LogEntry> entries, const Value& record) {
  Historian historian(record);
  std::string startedAt;
  for (const LogEntry& entry : entries) {
    if (startedAt.empty()) startedAt = entry.time;
    historian.take(entry);
  }
  return historian.finish(startedAt);
}

std::string clockAt(const FlashHistory& history, JobTime time) {
  const std::optional<JobTime> start = timeOfDay(history.startedAt);
  if (!start) return {};
  return clockText((*start + time) % kDay);
}

}  // namespace kelvane::console
