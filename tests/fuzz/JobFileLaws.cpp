#include "tests/fuzz/JobFileLaws.h"

#include <algorithm>
#include <cstddef>

#include "contract/JobFile.h"
#include "tests/fuzz/Law.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

using test::PlainJson;
using Kind = PlainJson::Kind;

const std::string* textAt(const PlainJson& record, const char* key) {
  const PlainJson* const value = record.find(key);
  return value != nullptr && value->is(Kind::text) ? &value->text : nullptr;
}

bool hasLogId(const PlainJson& record, const std::string& logId) {
  const std::string* const own = textAt(record, job::kLogId);
  return own != nullptr && *own == logId;
}

bool isOfTheWorker(const std::string& key) {
  return key == job::kStateId || key == job::kOutput || key == job::kResult ||
         key == job::kResultStr;
}

// The keys that were there stand first, in their order.
bool keepsItsKeys(const PlainJson& before, const PlainJson& after) {
  return before.keys.size() <= after.keys.size() &&
         std::equal(before.keys.begin(), before.keys.end(), after.keys.begin());
}

bool changesOnlyWhatIsTheWorkers(const PlainJson& before, const PlainJson& after) {
  return std::all_of(after.keys.begin(), after.keys.end(), [&](const std::string& key) {
    const PlainJson* const was = before.find(key);
    return isOfTheWorker(key) || (was != nullptr && *was == *after.find(key));
  });
}

// Without the record of the job, the last one stands in for it: meant so.
std::string updatedLogId(const PlainJson& records, const std::string& logId) {
  const auto& all = records.elements;
  const auto isMeant = [&logId](const PlainJson& record) { return hasLogId(record, logId); };
  if (std::any_of(all.begin(), all.end(), isMeant)) return logId;
  const std::string* const last = textAt(all.back(), job::kLogId);
  return last != nullptr ? *last : logId;
}

bool hasResult(const PlainJson& record, int result, const char* text) {
  const PlainJson* const number = record.find(job::kResult);
  const std::string* const told = textAt(record, job::kResultStr);
  return number != nullptr && number->is(Kind::number) && number->text == std::to_string(result) &&
         told != nullptr && *told == text;
}

bool hasCommand(const PlainJson& record, const char* command) {
  const std::string* const own = textAt(record, job::kJobId);
  return own != nullptr && *own == command;
}

// Of a firmware job the result is the framework's.
void judgeFinished(const PlainJson& record, std::string_view text) {
  const PlainJson* const result = record.find(job::kResult);
  require(result != nullptr && result->is(Kind::number) && textAt(record, job::kResultStr),
          "a record that is FREE has a result and its text", text);
  const bool isDownload = hasCommand(record, job::kDownloadOnlineUpdateFile);
  if (!isDownload && !hasCommand(record, job::kGetOnlineUpdateData) &&
      !hasCommand(record, job::kUpdateSW)) {
    return;
  }
  require(hasResult(record, 0, job::kNoError) ||
              (isDownload && hasResult(record, job::kFileNotFound, job::kFileNotFoundText)),
          "a job on software has one of its results, and the text of that", text);
}

}  // namespace

void JobFileLaws::judge(std::string_view before, std::string_view after) {
  ++versions_;
  const auto fresh = test::readPlainJson(after);
  require(fresh.has_value(), "every version of the job file is whole JSON", after);
  // A file that was damaged meanwhile becomes an empty one: meant so.
  const PlainJson old = test::readPlainJson(before).value_or(PlainJson{});
  const std::size_t kept = old.is(Kind::list) ? old.elements.size() : 0;
  require(fresh->is(Kind::list) && fresh->elements.size() == kept,
          "a job file is a list, and keeps its records", after);
  if (kept == 0) return;
  const std::string meant = updatedLogId(old, logId_);
  const auto& all = old.elements;
  const bool isAlone = 1 == std::count_if(all.begin(), all.end(), [&meant](const auto& record) {
                         return hasLogId(record, meant);
                       });
  for (std::size_t i = 0; i < kept; ++i) {
    if (!hasLogId(all[i], meant)) {
      require(all[i] == fresh->elements[i], "another job's record stays as it is", after);
    } else {
      judgeOwn(all[i], fresh->elements[i], isAlone, after);
    }
  }
}

void JobFileLaws::judgeOwn(const PlainJson& was, const PlainJson& is, bool isAlone,
                           std::string_view text) {
  require(is.is(Kind::object) && keepsItsKeys(was, is), "a record keeps its keys", text);
  if (!isAlone || isDisturbed_) return;
  require(changesOnlyWhatIsTheWorkers(was, is), "the worker changes its own keys alone", text);
  require(state_ != job::kFree, "nothing is written behind FREE", text);
  const std::string* const state = textAt(is, job::kStateId);
  require(state != nullptr, "a record has a state", text);
  state_ = *state;
  require(state_ == job::kRun || state_ == job::kFree, "a job runs or is free", text);
  if (state_ == job::kFree) return judgeFinished(is, text);
  require(hasResult(is, 0, job::kNoError), "a job that runs has had no error", text);
}

bool JobFileLaws::isLeftRunning() const { return !isDisturbed_ && state_ == job::kRun; }

}  // namespace kelvane::fuzz
