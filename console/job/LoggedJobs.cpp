#include "console/job/LoggedJobs.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string_view>

#include "console/job/LoggedRecords.h"
#include "console/job/LoggedValue.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

using Entries = std::span<const LogEntry>;

constexpr char kLookedAt[] = "logId = ";
constexpr char kInputs[] = ", inputParmsDict = ";
constexpr char kState[] = ", stateId = ";
constexpr std::string_view kJobFileRead = "currentJobArray = ";

bool isRun(const LogEntry& entry) { return entry.function == "run"; }

// Whether a worker begins with this entry. The settings come before the job file; an error of the
// job runner's own follows its other lines, unless it is the first of another worker.
bool isStart(const LogEntry& entry, const LogEntry* before) {
  if (entry.function == kStartFunction) return true;
  if (!isRun(entry)) return false;
  if (entry.message.starts_with(kJobFileRead)) {
    return before == nullptr || before->function != kStartFunction;
  }
  if (entry.level != "error") return !entry.message.starts_with(kLookedAt);
  return before == nullptr || !isRun(*before);
}

// The log id of the job that the worker took, the last one that it looked at, if that was waiting.
std::optional<std::string> takenIn(Entries run) {
  const auto last = std::find_if(run.rbegin(), run.rend(), [](const LogEntry& entry) {
    return isRun(entry) && entry.message.starts_with(kLookedAt);
  });
  if (last == run.rend()) return std::nullopt;
  const std::string& text = last->message;
  const std::string waiting = std::string(kState) + job::kWait + ". ";
  const std::size_t inputs = text.find(kInputs);
  const std::size_t state = text.rfind(kState);
  if (inputs == std::string::npos || state == std::string::npos || state < inputs ||
      text.compare(state, waiting.size(), waiting) != 0) {
    return std::nullopt;
  }
  const std::size_t start = std::string_view(kLookedAt).size();
  return text.substr(start, inputs - start);
}

// Whether the worker ended before it did anything for the record that it looked at last.
bool endsWithRunnersError(Entries run) {
  return !run.empty() && isRun(run.back()) && run.back().level == "error";
}

// Whether the records that an entry shows last behind this text have the log id, and in no state
// but these.
bool isLast(Entries part, std::string_view before, const std::string& logId,
            std::initializer_list<const char*> states) {
  const auto last = std::find_if(part.rbegin(), part.rend(), [&](const LogEntry& entry) {
    return entry.message.starts_with(before);
  });
  if (last == part.rend()) return false;
  const Value records = parseLogged(std::string_view(last->message).substr(before.size()));
  if (!records.isArray()) return false;
  bool isThere = false;
  for (const Value& record : records.elements()) {
    if (memberOf(record, job::kLogId) != Value(logId)) continue;
    const std::string state = stringOf(memberOf(record, job::kStateId));
    if (std::find(states.begin(), states.end(), state) == states.end()) return false;
    isThere = true;
  }
  return isThere;
}

// Whether the job came to its end and into the job file: a worker that cannot write reads it as
// waiting until the end.
bool isLeftFinished(Entries part, const std::string& logId) {
  return isLast(part, kRecordsWritten, logId, {job::kFree}) &&
         isLast(part, kJobFileRead, logId, {job::kRun, job::kFree});
}

// Whether no worker has written into the record.
bool isAsSubmitted(const Value& record) {
  return memberOf(record, job::kStateId) == Value(job::kWait) && !record.has(job::kResult) &&
         !record.has(job::kOutput);
}

// The records that the worker read; nothing where they cannot be read out of the log.
Value recordsReadIn(Entries run) {
  const auto read = std::find_if(run.begin(), run.end(), [](const LogEntry& entry) {
    return isRun(entry) && entry.message.starts_with(kJobFileRead);
  });
  if (read == run.end()) return {};
  return parseLogged(std::string_view(read->message).substr(kJobFileRead.size()));
}

bool haveSame(const Value& logged, const Value& record, const char* key) {
  const Value& value = memberOf(record, key);
  return memberOf(logged, key) == (value.isNothing() ? value : asLogged(value));
}

// Whether the worker read the record as one that was finished before.
bool wasFinished(const Value& found, const Value& record) {
  const auto isTheSame = [&](const char* key) { return haveSame(found, record, key); };
  constexpr const char* kTelling[] = {job::kJobId, job::kInputParameters, job::kStateId,
                                      job::kResult, job::kOutput};
  return memberOf(found, job::kStateId) == Value(job::kFree) &&
         std::all_of(std::begin(kTelling), std::end(kTelling), isTheSame);
}

// Whether the worker took this record: it read a waiting one that asks for the same, and not this
// one as finished already. What cannot be read out of the log is taken for it.
bool isTakenIn(Entries run, const std::string& logId, const Value& record) {
  const Value records = recordsReadIn(run);
  if (!records.isArray()) return true;
  bool isWaiting = false;
  bool isSame = false;
  for (const Value& found : records.elements()) {
    if (memberOf(found, job::kLogId) != Value(logId)) continue;
    if (wasFinished(found, record)) return false;
    if (memberOf(found, job::kStateId) != Value(job::kWait)) continue;
    isWaiting = true;
    isSame = isSame || (haveSame(found, record, job::kJobId) &&
                        haveSame(found, record, job::kInputParameters));
  }
  return isSame || !isWaiting;
}

// The log id of the job whose last line this is.
std::optional<std::string> endedBy(const LogEntry& entry) {
  const Value logId = memberOf(recordAtTheEnd(entry), job::kLogId);
  return logId.isString() ? std::optional(logId.string()) : std::nullopt;
}

}  // namespace

Value recordAtTheEnd(const LogEntry& entry) {
  const std::string_view message = entry.message;
  const std::size_t end = message.substr(0, message.find('\n')).find(kEndOfJob);
  if (end == std::string_view::npos) return {};
  return parseLogged(message.substr(end + kEndOfJob.size()));
}

LoggedJobs::LoggedJobs(std::span<const LogEntry> entries) : entries_(entries) {
  takeWorkers();
  takeEnds();
  markThoseWithinAnother();
}

void LoggedJobs::takeWorkers() {
  std::size_t start = 0;
  for (std::size_t i = 1; i <= entries_.size(); ++i) {
    if (i < entries_.size() && !isStart(entries_[i], &entries_[i - 1])) continue;
    const Entries run = entries_.subspan(start, i - start);
    const auto logId = takenIn(run);
    lastWithoutJob_ = logId && !endsWithRunnersError(run) ? Entries() : run;
    if (logId) {
      takers_[*logId].push_back(workers_.size());
      workers_.push_back({.begin = start, .end = i, .ended = {}});
    }
    start = i;
  }
}

// An end is that of the last worker before it that took the log id, which may go on behind the
// start of others; one end each.
void LoggedJobs::takeEnds() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const std::optional<std::string> logId = endedBy(entries_[i]);
    const auto takers = logId ? takers_.find(*logId) : takers_.end();
    if (takers == takers_.end()) continue;
    const std::vector<std::size_t>& all = takers->second;
    const auto next = std::partition_point(
        all.begin(), all.end(), [&](std::size_t worker) { return workers_[worker].begin <= i; });
    if (next == all.begin()) continue;
    std::optional<std::size_t>& ended = workers_[*std::prev(next)].ended;
    if (!ended) ended = i;
  }
}

void LoggedJobs::markThoseWithinAnother() {
  std::size_t last = 0;
  for (Worker& worker : workers_) {
    worker.isWithinAnother = last > worker.begin;
    last = std::max(last, worker.ended.value_or(0));
  }
}

LoggedJob LoggedJobs::jobOf(const Worker& worker) const {
  if (!worker.ended) {
    return {entries_.subspan(worker.begin, worker.end - worker.begin), false,
            worker.isWithinAnother};
  }
  return {entries_.subspan(worker.begin, *worker.ended + 1 - worker.begin), true,
          worker.isWithinAnother || *worker.ended >= worker.end};
}

std::optional<LoggedJob> LoggedJobs::find(const Value& record) const {
  const Value logId = memberOf(record, job::kLogId);
  const auto takers = logId.isString() ? takers_.find(logId.string()) : takers_.end();
  if (takers == takers_.end()) return std::nullopt;
  const std::vector<std::size_t>& all = takers->second;
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](std::size_t place) {
    const Worker& worker = workers_[place];
    return isTakenIn(entries_.subspan(worker.begin, worker.end - worker.begin), logId.string(),
                     record);
  });
  if (found == all.rend()) return std::nullopt;
  LoggedJob last = jobOf(workers_[*found]);
  return isAsSubmitted(record) && isLeftFinished(last.entries, logId.string())
             ? std::nullopt
             : std::optional(last);
}

std::vector<std::string> LoggedJobs::startsOf(const std::string& logId,
                                              const LogEntry* before) const {
  std::vector<std::string> starts;
  const auto takers = takers_.find(logId);
  if (takers == takers_.end()) return starts;
  for (const std::size_t worker : takers->second) {
    const LogEntry& begin = entries_[workers_[worker].begin];
    if (&begin == before) break;
    starts.push_back(begin.time);
  }
  return starts;
}

std::optional<LoggedJob> LoggedJobs::findLast(const std::string& logId) const {
  const auto takers = takers_.find(logId);
  if (takers == takers_.end()) return std::nullopt;
  return jobOf(workers_[takers->second.back()]);
}

}  // namespace kelvane::console
