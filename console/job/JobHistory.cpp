#include "console/job/JobHistory.h"

#include <charconv>
#include <cstdint>
#include <string_view>

#include "console/job/LogTime.h"
#include "console/job/LoggedValue.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

using std::chrono::seconds;

constexpr std::string_view kWritten = "writeJSONFile, newArray = ";

// The log shows numbers as texts.
void takeNumber(Value& container, const char* key) {
  if (!container.get(key).isString()) return;
  const std::string digits = container.get(key).string();
  std::int64_t number = 0;
  const auto [rest, failed] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (failed == std::errc() && rest == digits.data() + digits.size()) {
    container.set(key, Value::integer(number));
  }
}

Value withNumbers(Value record) {
  takeNumber(record, job::kResult);
  if (!record.get(job::kOutput).isArray()) return record;
  Value output = Value::array();
  for (const Value& entry : record.get(job::kOutput).elements()) {
    Value one = entry;
    if (one.isDictionary()) {
      for (const char* key : {job::kCpldPercentage, job::kFwPercentage, job::kTotalPercentage}) {
        takeNumber(one, key);
      }
    }
    output.append(std::move(one));
  }
  record.set(job::kOutput, std::move(output));
  return record;
}

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
  for (const LogEntry& entry : entries) {
    const std::optional<seconds> time = timeOfDay(entry.time);
    if (!time) continue;
    if (!history) history = JobHistory{.logId = logId, .start = entry.time, .lastLine = *time};
    history->length += timePassed(history->lastLine, *time);
    history->lastLine = *time;
    if (entry.message.rfind(kWritten, 0) != 0) continue;
    const std::string_view text = std::string_view(entry.message).substr(kWritten.size());
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
