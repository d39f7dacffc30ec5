#include "console/job/StandardError.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "console/job/JobFile.h"
#include "console/job/LogTime.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;
using std::chrono::seconds;

namespace {

constexpr char kSink[] = "/dev/null";
constexpr char kPrefix[] = "standard-error-";
constexpr std::size_t kLongestName = 255;  // in bytes, on every system

bool isPlain(char character) {
  constexpr std::string_view kPlain =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._-";
  return kPlain.find(character) != std::string_view::npos;
}

std::string asName(const std::string& logId) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string name;
  for (const char character : logId) {
    if (isPlain(character)) {
      name += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    name.append({'%', kDigits[byte / 16U], kDigits[byte % 16U]});
  }
  return name;
}

// The first line of what is kept: whose it is.
constexpr std::string_view kStarted = "kelvane-console started a worker at ";
constexpr std::string_view kForJob = " for ";
constexpr std::size_t kTimeLength = 8;  // "14:03:07"

constexpr seconds kWholeDay{24 * 60 * 60};
// A worker writes into the log at once, where the computer is slow a little later.
constexpr seconds kLatestLine{60};

std::string headFor(const Value& record, seconds started) {
  const std::optional<std::string> text = platform::printJsonLine(record);
  if (!text) return {};
  std::string head(kStarted);
  return head.append(clockText(started)).append(kForJob).append(*text).append("\n");
}

struct Kept {
  bool isRead = false;
  std::optional<seconds> started = {};  // the time of day; none where its beginning tells nothing
  Value record = {};                    // as it was submitted
  std::vector<std::string> lines = {};  // what was said
};

bool takeHead(const std::string& line, Kept& kept) {
  if (!line.starts_with(kStarted)) return false;
  kept.started = timeOfDay(line.substr(kStarted.size(), kTimeLength));
  const std::size_t job = kStarted.size() + kTimeLength;
  if (!kept.started || line.compare(job, kForJob.size(), kForJob) != 0) return false;
  kept.record = platform::parseJson(line.substr(job + kForJob.size()));
  return true;
}

Kept keptAt(const std::string& path) {
  Kept kept;
  try {
    std::istringstream text(platform::readFile(path));
    bool isFirst = true;
    for (std::string line; std::getline(text, line); isFirst = false) {
      if (!isFirst || !takeHead(line, kept)) kept.lines.push_back(line);
    }
    kept.isRead = true;
  } catch (const platform::Exception&) {
    return {};
  }
  return kept;
}

// Whether a worker that was started then can have begun the log with a line of this time.
bool isOfRun(seconds started, const std::string& firstLine) {
  const std::optional<seconds> logged = timeOfDay(firstLine);
  if (!logged) return false;
  return (*logged - started + kWholeDay) % kWholeDay <= kLatestLine;
}

// Whether it is that of the worker of this job. A log id may have been another job's before, also
// of one that asked for the same: those are told apart by the time.
bool isOf(const Value& record, const LogStretch& log, const Kept& kept) {
  if (!kept.started || !kept.record.isDictionary() || !record.isDictionary()) return false;
  if (kept.record.get(job::kLogId) != record.get(job::kLogId)) return false;
  if (!isSameJob(record, kept.record)) return false;
  if (log.history && !isOfRun(*kept.started, log.history->start)) return false;
  // The first worker behind its start is the one that was started.
  return std::none_of(
      log.startsOfOthers.begin(), log.startsOfOthers.end(),
      [&](const std::string& firstLine) { return isOfRun(*kept.started, firstLine); });
}

std::vector<std::string> inShort(std::vector<std::string> lines, const std::string& path) {
  constexpr std::size_t kMost = 10;
  if (lines.empty()) return lines;
  const std::size_t more = lines.size() > kMost ? lines.size() - kMost : 0;
  lines.resize(lines.size() - more);
  if (more != 0) lines.push_back("... " + std::to_string(more) + " more");
  lines.push_back("(kept in " + path + ")");
  return lines;
}

}  // namespace

std::string standardErrorPath(const std::string& sharedFolder, const std::string& logId) {
  const std::string name = kPrefix + asName(logId) + ".txt";
  if (name.size() > kLongestName) return {};
  return sharedFolder + paths::kLogFolder + name;
}

std::string makeStandardError(const std::string& sharedFolder, const Value& record,
                              seconds started) {
  std::string path = standardErrorPath(sharedFolder, record.get(job::kLogId).string());
  if (path.empty() || !platform::makeFolders(sharedFolder + paths::kLogFolder) ||
      !platform::createEmptyFile(path)) {
    return kSink;
  }
  std::ofstream(path, std::ios::binary) << headFor(record, started);
  return path;
}

std::vector<std::string> standardErrorOf(const std::string& sharedFolder, const Value& record,
                                         const LogStretch& log) {
  Kept kept = keptAt(standardErrorPath(sharedFolder, stringOf(memberOf(record, job::kLogId))));
  return isOf(record, log, kept) ? std::move(kept.lines) : std::vector<std::string>();
}

std::vector<std::string> standardErrorInShort(const std::string& sharedFolder, const Value& record,
                                              const LogStretch& log) {
  const std::string logId = stringOf(memberOf(record, job::kLogId));
  return inShort(standardErrorOf(sharedFolder, record, log),
                 standardErrorPath(sharedFolder, logId));
}

std::vector<std::string> standardErrorInShort(const std::string& sharedFolder,
                                              const std::string& logId) {
  const Value record = JobFile(sharedFolder).find(logId);
  if (!record.isNothing()) {
    return standardErrorInShort(sharedFolder, record, stretchIn(sharedFolder, record));
  }
  const std::string path = standardErrorPath(sharedFolder, logId);
  return inShort(keptAt(path).lines, path);
}

void discardSilence(const std::string& sharedFolder, const std::string& logId) {
  const Kept kept = keptAt(standardErrorPath(sharedFolder, logId));
  if (kept.isRead && kept.lines.empty()) discardStandardError(sharedFolder, logId);
}

void discardStandardError(const std::string& sharedFolder, const std::string& logId) {
  std::error_code untold;
  std::filesystem::remove(standardErrorPath(sharedFolder, logId), untold);
}

}  // namespace kelvane::console
