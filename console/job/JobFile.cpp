#include "console/job/JobFile.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "console/job/ExitCode.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

bool isText(const Value& value, std::string_view text) {
  return value.isString() && value.string() == text;
}

bool isJob(const Value& record, const std::string& logId) {
  return record.isDictionary() && isText(record.get(job::kLogId), logId);
}

// The record's log id as decimal digits without leading zeros; empty where it is no whole number.
std::string wholeNumber(const Value& record) {
  if (!record.isDictionary()) return {};
  const Value& logId = record.get(job::kLogId);
  if (!logId.isString() && !logId.isNumber()) return {};
  const std::string& text = logId.isString() ? logId.string() : logId.digits();
  if (text.find_first_not_of("0123456789") != std::string::npos) return {};
  return text.substr(std::min(text.find_first_not_of('0'), text.size()));
}

bool isGreater(const std::string& left, const std::string& right) {
  return left.size() != right.size() ? left.size() > right.size() : left > right;
}

// Digit by digit: a log id may be longer than any machine number.
std::string plusOne(std::string digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return digits;
    }
    *digit = '0';
  }
  return "1" + digits;
}

// The worker writes into every record that has the log id, finished ones too: an id is used once.
void refuseTaken(const Value& records, const std::string& logId) {
  for (const Value& record : records.elements()) {
    if (!isJob(record, logId)) continue;
    const Value& state = record.get(job::kStateId);
    throw Failure(kBadUsage, "log id " + logId + " is taken: its job is in state " +
                                 (state.isString() ? state.string() : "unknown"));
  }
}

Value waitingRecord(const std::string& logId, const NewJob& job) {
  return Value::dictionary({{job::kLogId, logId},
                            {job::kJobId, job.jobId},
                            {job::kStateId, job::kWait},
                            {job::kInputParameters, job.inputParameters}});
}

}  // namespace

std::string nextLogId(const Value& records) {
  std::string highest;
  for (const Value& record : records.elements()) {
    const std::string number = wholeNumber(record);
    if (isGreater(number, highest)) highest = number;
  }
  return plusOne(highest);
}

JobFile::JobFile(const std::string& sharedFolder) : path_(sharedFolder + paths::kJobFile) {}

std::string JobFile::add(const NewJob& job) const {
  Value all = read();
  std::string logId = job.logId.empty() ? nextLogId(all) : job.logId;
  refuseTaken(all, logId);
  all.append(waitingRecord(logId, job));
  write(all);
  return logId;
}

Value JobFile::find(const std::string& logId) const {
  try {
    std::error_code untold;
    if (!std::filesystem::is_regular_file(path_, untold)) return {};  // a pipe would block
    const Value all = platform::parseJson(platform::readFile(path_));
    if (!all.isArray()) return {};
    for (std::size_t i = all.count(); i > 0; --i) {
      if (isJob(all.at(i - 1), logId)) return all.at(i - 1);
    }
  } catch (const platform::Exception&) {
    return {};  // the file is not there for the moment
  }
  return {};
}

Value JobFile::read() const {
  if (!platform::exists(path_)) return Value::array();
  if (!std::filesystem::is_regular_file(path_)) {
    throw Failure(kJobFileFailed, path_ + " is no regular file");
  }
  Value all;
  try {
    all = platform::parseJson(platform::readFile(path_));
  } catch (const platform::Exception& unreadable) {
    throw Failure(kJobFileFailed, unreadable.what());
  }
  if (!all.isArray()) {
    throw Failure(kJobFileFailed, path_ + " is damaged (no JSON array): left as it is");
  }
  return all;
}

void JobFile::write(const Value& records) const {
  std::error_code failed;
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), failed);
  if (failed) {
    throw Failure(kJobFileFailed, "make the folder of " + path_ + ": " + failed.message());
  }
  const std::optional<std::string> text = platform::printJson(records);
  if (!text || !platform::replaceFile(path_, *text)) {
    throw Failure(kJobFileFailed, path_ + " cannot be written");
  }
}

}  // namespace kelvane::console
