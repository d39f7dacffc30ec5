#include "console/commands/ShowLog.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/RotateLog.h"
#include "console/commands/Submission.h"
#include "console/display/Colour.h"
#include "console/display/Paragraphs.h"
#include "console/display/Terminal.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/LogFile.h"
#include "console/job/LogFollower.h"
#include "console/job/LoggedJobs.h"
#include "contract/Log.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kLevel[] = "--level";
constexpr char kFunction[] = "--function";
constexpr char kFull[] = "--full";
constexpr char kJobOption[] = "--job";
constexpr char kTail[] = "--tail";
constexpr char kFollow[] = "--follow";
constexpr char kRotate[] = "--rotate";

// What is of no known level is shown like the gravest.
std::ptrdiff_t gravity(const std::string& level) {
  return std::find(std::begin(logging::kLevels), std::end(logging::kLevels), level) -
         std::begin(logging::kLevels);
}

bool isWanted(const LogEntry& entry, const ShowLogOptions& options) {
  return gravity(entry.level) >= gravity(options.level) &&
         (options.function.empty() || entry.function == options.function);
}

std::string folded(const std::string& message) {
  const std::size_t end = message.find('\n');
  if (end == std::string::npos) return message;
  const auto more = std::count(message.begin(), message.end(), '\n');
  return message.substr(0, end) + " ... (" + std::to_string(more) +
         (more == 1 ? " more line)" : " more lines)");
}

std::string lineOf(const LogEntry& entry, bool full, const Screen& screen) {
  std::string head = entry.time + ' ';
  if (entry.level != logging::kLevels[0]) head += entry.level + ' ';
  if (!entry.function.empty()) head += entry.function + ": ";
  const std::string text =
      displayLines(head + (full ? entry.message : folded(entry.message)), screen.charset);
  return gravity(entry.level) >= gravity("error") ? coloured(text, Colour::red, screen.colour)
                                                  : text;
}

std::string jsonOf(const LogEntry& entry, bool isMixed) {
  // Repaired: the log may hold a line that a crash has cut inside a character.
  Value object = Value::dictionary({{"time", displayText(entry.time, Charset::utf8)},
                                    {"file", displayText(entry.file, Charset::utf8)},
                                    {"line", displayText(entry.line, Charset::utf8)},
                                    {"function", displayText(entry.function, Charset::utf8)},
                                    {"level", displayText(entry.level, Charset::utf8)},
                                    {"message", displayLines(entry.message, Charset::utf8)}});
  if (isMixed) object.set("mixed", Value::boolean(true));
  return platform::printJsonLine(object).value_or("null");
}

std::string nothingText(const ShowLogOptions& options) {
  if (!options.tail.empty() && countIn(options.tail, kTail) == 0) {
    return std::string(kTail) + " 0 shows no entries";
  }
  std::string text = "no entries";
  if (!options.function.empty()) text.append(" of ").append(options.function);
  if (!options.logId.empty()) text.append(" of job ").append(options.logId);
  return options.level == logging::kLevels[0] ? text : text + " at this level";
}

// Of a job it may be mixed with another's, which machines are told with each entry.
void showEntry(const LogEntry& entry, const ShowLogOptions& options, const Screen& screen,
               bool isMixed = false) {
  screen.out << (screen.json ? jsonOf(entry, isMixed) : lineOf(entry, options.full, screen))
             << '\n';
}

Value recordIfAny(const Places& places, const std::string& logId) {
  try {
    return recordAt(places, logId);
  } catch (const Failure&) {
    return {};
  }
}

// The job's part of the log, which may be empty. A job that was removed, or whose job file is
// damaged, is the last one that the log has by this log id.
LoggedJob partOfJob(const std::vector<LogEntry>& entries, const Places& places,
                    const ShowLogOptions& options) {
  requireText(options.logId, "the log id");
  const Value record = recordIfAny(places, options.logId);
  const LoggedJobs jobs(entries);
  const auto found = record.isNothing() ? jobs.findLast(options.logId) : jobs.find(record);
  if (!found && record.isNothing()) {
    throw Failure(kNotFound, "no job " + options.logId + " in " + sourceOfRecords(places) +
                                 ", and the log has none either");
  }
  return found.value_or(LoggedJob());
}

// Those that are wanted; of these the last ones.
std::vector<const LogEntry*> chosen(std::span<const LogEntry> entries,
                                    const ShowLogOptions& options) {
  std::vector<const LogEntry*> all;
  for (const LogEntry& entry : entries) {
    if (isWanted(entry, options)) all.push_back(&entry);
  }
  if (options.tail.empty()) return all;
  const std::size_t count = std::min(all.size(), countIn(options.tail, kTail));
  all.erase(all.begin(), all.end() - static_cast<std::ptrdiff_t>(count));
  return all;
}

// --- as it is written

void showChange(LogNews::Kind kind, const std::string& path, const Screen& screen) {
  if (screen.json) return;
  const bool isGone = kind == LogNews::Kind::gone;
  showLines({isGone ? path + " is not there: the worker never creates it; waiting for it"
                    : "the log begins anew"},
            screen);
}

void showNews(const std::vector<LogNews>& news, const std::string& path,
              const ShowLogOptions& options, const Screen& screen) {
  for (const LogNews& one : news) {
    if (one.kind != LogNews::Kind::entry) {
      showChange(one.kind, path, screen);
    } else if (isWanted(one.entry, options)) {
      showEntry(one.entry, options, screen);
    }
  }
}

// What is there at first, of which only the last ones may be wanted.
void showFirst(LogFollower& log, const std::string& path, const ShowLogOptions& options,
               const Screen& screen) {
  std::vector<LogNews> changes;
  std::vector<LogEntry> entries;
  const auto take = [&](std::vector<LogNews> news) {
    for (LogNews& one : news) {
      if (one.kind == LogNews::Kind::entry) {
        entries.push_back(std::move(one.entry));
      } else {
        changes.push_back(std::move(one));
      }
    }
  };
  take(log.look());
  take(log.rest());
  for (const LogEntry* entry : chosen(entries, options)) showEntry(*entry, options, screen);
  showNews(changes, path, options, screen);
}

// --- the sub-command

ShowLogOptions optionsOf(const Given& given) {
  return {.sharedFolder = given.text(kSharedOption),
          .level = given.text(kLevel, logging::kLevels[0]),
          .function = given.text(kFunction),
          .full = given.has(kFull),
          .logId = given.text(kJobOption),
          .tail = given.text(kTail),
          .copy = copyOptionsOf(given)};
}

int runRotation(const Given& given, const Screen& screen) {
  for (const char* other : {kLevel, kFunction, kFull, kJobOption, kTail, kFollow}) {
    if (!given.has(other)) continue;
    throw Failure(kBadUsage, std::string("--rotate shows nothing: ") + other + " is not for it");
  }
  const Places places = placesOf(given.text(kSharedOption), copyOptionsOf(given), existingShared);
  if (places.isCopy) throw Failure(kBadUsage, "--rotate is not for a copy");
  const std::unique_ptr<View> view = viewOn(screen);
  SystemClock clock;
  return rotateLog({.sharedFolder = places.sharedFolder}, {clock, *view, screen});
}

// Without an end of its own it takes the first interrupt for that; the others end at once by it.
int runLog(const Given& given, const Screen& screen) {
  if (given.has(kRotate)) return runRotation(given, screen);
  if (!given.has(kFollow)) return showLog(optionsOf(given), screen);
  SystemClock clock;
  return followLog(optionsOf(given), clock, screen);
}

}  // namespace

int showLog(const ShowLogOptions& options, const Screen& screen) {
  const Places places = placesOf(options.sharedFolder, options.copy, existingShared);
  const std::vector<LogEntry> entries = parseLog(readLogAt(logPathOf(places)));
  const LoggedJob part =
      options.logId.empty() ? LoggedJob{.entries = entries} : partOfJob(entries, places, options);
  const auto shown = chosen(part.entries, options);
  if (part.isMixed && !screen.json) {
    showLines({"another worker wrote at the same time: some of these entries may be its"}, screen);
  }
  for (const LogEntry* entry : shown) showEntry(*entry, options, screen, part.isMixed);
  if (shown.empty() && !screen.json) showLines({nothingText(options)}, screen);
  screen.out.flush();
  return kSuccess;
}

int followLog(const ShowLogOptions& options, Clock& clock, const Screen& screen) {
  const std::string path = logPathOf(placesOf(options.sharedFolder, options.copy, existingShared));
  if (!options.logId.empty()) {
    throw Failure(kBadUsage, "--follow shows what any job writes: --job is not for it");
  }
  LogFollower log(path);
  showFirst(log, path, options, screen);
  if (!log.isThere() && platform::exists(path)) readLogAt(path);  // raises
  while (screen.out.flush() && clock.wait(kPollInterval))
    showNews(log.look(), path, options, screen);
  showNews(log.rest(), path, options, screen);
  screen.out.flush();
  return kInterrupted;
}

Command logCommand() {
  const std::vector<Option> own = {
      jsonFlag(),
      {.names = {kLevel},
       .kind = ValueKind::choice,
       .valueName = "LEVEL",
       .description = "The least level that is shown",
       .choices = {std::begin(logging::kLevels), std::end(logging::kLevels)}},
      {.names = {kFunction},
       .valueName = "NAME",
       .description = "Show the entries of this function alone"},
      {.names = {kFull}, .kind = ValueKind::none, .description = "Show objects whole"},
      {.names = {kJobOption},
       .kind = ValueKind::logId,
       .valueName = "LOG_ID",
       .description = "Show what the worker of this job wrote"},
      {.names = {kTail}, .valueName = "N", .description = "Show the last N entries"},
      {.names = {kFollow},
       .kind = ValueKind::none,
       .description = "Go on with what is written, until an interrupt"},
      {.names = {kRotate},
       .kind = ValueKind::none,
       .description = "Move a log of 100 MiB or more to its next generation"}};
  std::vector<Option> options = placeOptions();
  options.insert(options.end(), own.begin(), own.end());
  return {
      .name = "log",
      .description = "Show the worker's log, objects folded",
      .options = std::move(options),
      .footer =
          "A log is rotated as the worker's own module does it, and not while a job is running.\n"
          "Examples:\n"
          "  kelvane-console log --shared ~/Shared --level error\n"
          "  kelvane-console log --shared ~/Shared --job 17 --tail 20\n"
          "  kelvane-console log --shared ~/Shared --follow",
      .run = runLog};
}

}  // namespace kelvane::console
