#include "tests/fuzz/JobFileLaws.h"

#include <algorithm>
#include <cstddef>

#include <nlohmann/json.hpp>

#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Value.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

bool hasLogId(const Value& record, const std::string& logId) {
  return record.isDictionary() && record.get(job::kLogId).isString() &&
         record.get(job::kLogId).string() == logId;
}

// The same to the digit, and its keys in the same order.
bool isUnchanged(const Value& before, const Value& after) {
  return !before.isNothing() && before == after &&
         platform::printJsonLine(before) == platform::printJsonLine(after);
}

bool isOfTheWorker(const std::string& key) {
  return key == job::kStateId || key == job::kOutput || key == job::kResult ||
         key == job::kResultStr;
}

// The keys that were there stand first, in their order.
bool keepsItsKeys(const Value& before, const Value& after) {
  const auto& old = before.entries();
  const auto& fresh = after.entries();
  return old.size() <= fresh.size() &&
         std::equal(old.begin(), old.end(), fresh.begin(),
                    [](const auto& one, const auto& other) { return one.first == other.first; });
}

bool changesOnlyWhatIsTheWorkers(const Value& before, const Value& after) {
  const auto& entries = after.entries();
  return std::all_of(entries.begin(), entries.end(), [&before](const auto& entry) {
    return isOfTheWorker(entry.first) || isUnchanged(before.get(entry.first), entry.second);
  });
}

// Without the record of the job, the last one stands in for it: meant so.
std::string updatedLogId(const Value& records, const std::string& logId) {
  const auto& all = records.elements();
  const auto isMeant = [&logId](const Value& record) { return hasLogId(record, logId); };
  if (std::any_of(all.begin(), all.end(), isMeant)) return logId;
  const Value& last = all.back();
  const bool hasOne = last.isDictionary() && last.get(job::kLogId).isString();
  return hasOne ? last.get(job::kLogId).string() : logId;
}

void judgeFinished(const Value& record, std::string_view text) {
  require(record.get(job::kResult).isNumber() && record.get(job::kResultStr).isString(),
          "a record that is FREE has a result and its text", text);
}

}  // namespace

void JobFileLaws::judge(std::string_view before, std::string_view after) {
  ++versions_;
  require(nlohmann::json::accept(after), "every version of the job file is whole JSON", after);
  const Value old = platform::parseJson(before);
  const Value fresh = platform::parseJson(after);
  // A file that was damaged meanwhile becomes an empty one: meant so.
  const std::size_t kept = old.isArray() ? old.count() : 0;
  require(fresh.isArray() && fresh.count() == kept, "a job file is a list, and keeps its records",
          after);
  if (kept == 0) return;
  const std::string meant = updatedLogId(old, logId_);
  const auto& all = old.elements();
  const bool isAlone = 1 == std::count_if(all.begin(), all.end(), [&meant](const Value& record) {
                         return hasLogId(record, meant);
                       });
  for (std::size_t i = 0; i < old.count(); ++i) {
    const Value& was = old.at(i);
    const Value& is = fresh.at(i);
    if (!hasLogId(was, meant)) {
      require(isUnchanged(was, is), "another job's record stays as it is", after);
      continue;
    }
    require(is.isDictionary() && keepsItsKeys(was, is), "a record keeps its keys", after);
    if (!isAlone || isDisturbed_) continue;
    require(changesOnlyWhatIsTheWorkers(was, is), "the worker changes its own keys alone", after);
    require(state_ != job::kFree, "nothing is written behind FREE", after);
    require(is.get(job::kStateId).isString(), "a record has a state", after);
    state_ = is.get(job::kStateId).string();
    require(state_ == job::kRun || state_ == job::kFree, "a job runs or is free", after);
    if (state_ == job::kFree) judgeFinished(is, after);
  }
}

bool JobFileLaws::isLeftRunning() const { return !isDisturbed_ && state_ == job::kRun; }

}  // namespace kelvane::fuzz
