#include "console/job/JobFile.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "console/job/ExitCode.h"
#include "console/job/JsonMistake.h"
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

std::string valueText(const Value& value) {
  return platform::printJsonLine(value).value_or("a value that JSON has no form for");
}

[[noreturn]] void refuseRecord(const std::string& place, const std::string& fault,
                               const std::string& advice) {
  throw Failure(kJobFileFailed, place + fault +
                                    ". While it stands there, the worker can write of no job how "
                                    "it goes and what became of it. " +
                                    advice);
}

// Without the last one that is the same as `unwanted`.
Value without(const Value& records, const Value& unwanted) {
  Value::Elements kept = records.elements();
  const auto found = std::find(kept.rbegin(), kept.rend(), unwanted);
  if (found != kept.rend()) kept.erase(std::next(found).base());
  return Value::array(std::move(kept));
}

// Why the job cannot be added to these records; none where it can.
std::optional<Failure> refusalOf(const Value& records, const std::string& path,
                                 const std::string& logId) {
  try {
    requireUpdatable(records, path);
    if (!logId.empty()) refuseTaken(records, logId);
  } catch (const Failure& failure) {
    return failure;
  }
  return std::nullopt;
}

bool isAlone(const Value& records, const Value& added) {
  const std::string& logId = added.get(job::kLogId).string();
  const auto& all = records.elements();
  return std::count_if(all.begin(), all.end(),
                       [&](const Value& record) { return isJob(record, logId); }) == 1 &&
         std::find(all.begin(), all.end(), added) != all.end();
}

Value waitingRecord(const std::string& logId, const NewJob& job) {
  Value record = Value::dictionary({{job::kLogId, logId},
                                    {job::kJobId, job.jobId},
                                    {job::kStateId, job::kWait},
                                    {job::kInputParameters, job.inputParameters}});
  if (!job.others.isNothing()) record.setAll(job.others);
  return record;
}

constexpr char kLeft[] = ". It is left as it is; see \"kelvane-console check\"";

struct Content {
  std::optional<std::string> text;  // none where the file is not there
  Value records = Value::array();
};

Content contentOf(const std::string& path) {
  Content content;
  if (!platform::exists(path)) return content;
  if (!std::filesystem::is_regular_file(path)) {
    throw Failure(kJobFileFailed, path + " is no regular file");
  }
  try {
    content.text = platform::readFile(path);
    content.records = platform::parseJson(*content.text);
  } catch (const platform::Exception& unreadable) {
    throw Failure(kJobFileFailed, unreadable.what());
  }
  if (content.records.isNothing()) {
    throw Failure(kJobFileFailed, path + whyNoJson(*content.text) + kLeft);
  }
  if (!content.records.isArray()) {
    throw Failure(kJobFileFailed, path + " is an object, not an array of records" + kLeft);
  }
  return content;
}

// None also where it cannot be read: then it is not what was read before.
std::optional<std::string> textOf(const std::string& path) {
  try {
    if (platform::exists(path)) return platform::readFile(path);
  } catch (const platform::Exception&) {
    return std::nullopt;
  }
  return std::nullopt;
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

JobFile JobFile::at(const std::string& path) {
  JobFile file("");
  file.path_ = path;
  return file;
}

Value JobFile::add(const NewJob& job) const {
  Value added;  // as it was written last; nothing where it is not to be there
  std::optional<Failure> refused;
  const auto withIt = [&](const Value& records) {
    Value all = without(records, added);
    const bool wasThere = all.count() != records.count();
    added = Value();
    refused = refusalOf(all, path_, job.logId);
    if (refused) return wasThere ? all : Value();
    added = waitingRecord(job.logId.empty() ? nextLogId(all) : job.logId, job);
    all.append(added);
    return all;
  };
  change(withIt,
         [&](const Value& records) { return added.isNothing() || isAlone(records, added); });
  if (refused) throw Failure(*refused);
  return added;
}

void JobFile::change(const Change& change, const Verification& verification) const {
  for (int writes = 0; writes < kMostWrites; ++writes) {
    const Content before = contentOf(path_);
    const Value changed = change(before.records);
    if (changed.isNothing()) return;
    if (write(changed, before.text) && verification(read())) return;
  }
  throw Failure(kJobFileFailed, path_ + " is written by another program again and again");
}

Value JobFile::find(const std::string& logId, const IsMeant& isMeant) const {
  try {
    std::error_code untold;
    if (!std::filesystem::is_regular_file(path_, untold)) return {};  // a pipe would block
    const Value all = platform::parseJson(platform::readFile(path_));
    if (!all.isArray()) return {};
    for (std::size_t i = all.count(); i > 0; --i) {
      const Value& record = all.at(i - 1);
      if (isJob(record, logId) && (!isMeant || isMeant(record))) return record;
    }
  } catch (const platform::Exception&) {
    return {};  // the file is not there for the moment
  }
  return {};
}

Value JobFile::read() const { return contentOf(path_).records; }

std::string JobFile::fault() const {
  try {
    requireUpdatable(read(), path_);
  } catch (const Failure& failure) {
    return failure.what();
  }
  return {};
}

bool JobFile::write(const Value& records, const std::optional<std::string>& before) const {
  std::error_code failed;
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), failed);
  if (failed) {
    throw Failure(kJobFileFailed, "make the folder of " + path_ + ": " + failed.message());
  }
  const std::optional<std::string> text = platform::printJson(records);
  bool isAsBefore = true;
  const auto mayReplace = [&] {
    isAsBefore = textOf(path_) == before;
    return isAsBefore;
  };
  if (text && platform::replaceFile(path_, *text, mayReplace)) return true;
  if (isAsBefore) throw Failure(kJobFileFailed, path_ + " cannot be written");
  return false;
}

bool isSameJob(const Value& record, const Value& added) {
  return record.isDictionary() && record.get(job::kJobId) == added.get(job::kJobId) &&
         record.get(job::kInputParameters) == added.get(job::kInputParameters);
}

void requireUpdatable(const Value& records, const std::string& path) {
  for (std::size_t i = 0; i < records.count(); ++i) {
    const Value& record = records.at(i);
    const std::string place = path + ": [" + std::to_string(i) + "]";
    if (!record.isDictionary()) {
      refuseRecord(place, " is no object: " + valueText(record), "Remove it from the file");
    }
    const Value& logId = record.get(job::kLogId);
    if (logId.isNothing() || logId.isString()) continue;
    refuseRecord(place, " has a log_id that is no string: " + valueText(logId),
                 "Write it as a string, such as \"17\", or remove the record");
  }
}

}  // namespace kelvane::console
