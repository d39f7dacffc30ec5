#include "console/job/JobHistory.h"

#include <string_view>

#include "console/job/LogTime.h"
#include "console/job/LoggedRecords.h"
#include "console/job/LoggedValue.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The job's record in this version of the job file; nothing where it shows none.
Value recordIn(std::string_view version, const std::string& logId) {
  const Value records = parseLogged(version);
  if (!records.isArray()) return {};
  for (const Value& record : records.elements()) {
    if (record.isDictionary() && record.get(job::kLogId) == Value(logId)) {
      return withNumbers(record);
    }
  }
  return {};
}

}  // namespace

std::optional<JobHistory> historyOf(std::span<const LogEntry> entries, const std::string& logId) {
  std::optional<JobHistory> history;
  LogClock clock;
  for (const LogEntry& entry : entries) {
    if (!clock.take(entry.time)) continue;
    if (!history) history = JobHistory{.logId = logId, .start = entry.time};
    history->length = clock.passed();
    history->lastLine = clock.timeOfDay();
    if (entry.message.rfind(kRecordsWritten, 0) != 0) continue;
    const std::string_view text = std::string_view(entry.message).substr(kRecordsWritten.size());
    // The worker writes the same again and again.
    std::vector<JobHistory::Version>& all = history->versions;
    if (all.empty() || all.back().text != text) all.push_back({history->length, std::string(text)});
  }
  return history;
}

std::vector<Moment> momentsOf(const JobHistory& history) {
  std::vector<Moment> moments;
  for (const JobHistory::Version& version : history.versions) {
    Value record = recordIn(version.text, history.logId);
    if (record.isNothing() || (!moments.empty() && moments.back().record == record)) continue;
    moments.push_back({version.time, std::move(record)});
  }
  return moments;
}

}  // namespace kelvane::console
