#include "console/job/LoggedRecords.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "console/job/LoggedValue.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr std::string_view kBeforeRecords[] = {"currentJobArray = ", kRecordsWritten};

constexpr std::string_view kNone = "(null)";  // of a file that could not be read

constexpr const char* kNumbers[] = {job::kResult, job::kFwPercentage, job::kCpldPercentage,
                                    job::kTotalPercentage, job::kSize};

// Of an entry that shows the records their text.
std::string_view recordsTextOf(const LogEntry& entry) {
  const std::string_view message = entry.message;
  for (const std::string_view before : kBeforeRecords) {
    if (message.substr(0, before.size()) == before) return message.substr(before.size());
  }
  return {};
}

bool isNumbersKey(const std::string& key) {
  return std::find(std::begin(kNumbers), std::end(kNumbers), key) != std::end(kNumbers);
}

// As JSON writes them, and no longer than the worker can have written one.
bool isWholeNumber(const Value& value) {
  constexpr std::size_t kMostDigits = 18;
  if (!value.isString()) return false;
  std::string_view digits = value.string();
  if (digits.substr(0, 1) == "-") digits.remove_prefix(1);
  if (digits.empty() || digits.size() > kMostDigits) return false;
  if (digits.front() == '0' && digits.size() > 1) return false;
  return digits.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

// Logged values are no deeper than the job file.
Value withNumbers(const Value& logged) {
  if (logged.isArray()) {
    Value all = Value::array();
    for (const Value& element : logged.elements()) all.append(withNumbers(element));
    return all;
  }
  if (!logged.isDictionary()) return logged;
  Value object = Value::dictionary();
  for (const auto& [key, value] : logged.entries()) {
    const bool isNumber = isNumbersKey(key) && isWholeNumber(value);
    object.set(key, isNumber ? Value::number(value.string()) : withNumbers(value));
  }
  return object;
}

Value lastRecordsIn(const std::vector<LogEntry>& entries) {
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    const std::string_view text = recordsTextOf(*entry);
    if (text.empty() || text == kNone) continue;
    const Value records = parseLogged(text);
    if (records.isArray()) return withNumbers(records);
  }
  return {};
}

}  // namespace kelvane::console
