#include "console/commands/Explain.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <vector>

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/Colour.h"
#include "console/display/JobText.h"
#include "console/display/Paragraphs.h"
#include "console/display/TimeText.h"
#include "console/display/Words.h"
#include "console/display/Wrapping.h"
#include "console/explain/CodeExplanation.h"
#include "console/explain/JobExplanation.h"
#include "console/explain/ResultCodes.h"
#include "console/job/ExitCode.h"
#include "console/job/JobStatus.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

using Explanations = std::vector<Explanation>;

bool isHexadecimal(const std::string& subject) {
  return subject.rfind("0x", 0) == 0 || subject.rfind("0X", 0) == 0;
}

std::optional<std::int64_t> numberIn(const std::string& digits, int base) {
  const char* end = digits.data() + digits.size();
  std::uint32_t code = 0;
  const auto [rest, failed] = std::from_chars(digits.data(), end, code, base);
  if (failed != std::errc() || rest != end) return std::nullopt;
  return code;
}

// A number, or the name of a status.
std::optional<std::int64_t> codeOf(const std::string& subject) {
  if (isHexadecimal(subject)) return numberIn(subject.substr(2), 16);
  if (const ResultCode* named = findResultCodeNamed(subject)) return named->code;
  return numberIn(subject, 10);
}

// "did you mean 0x8050?" of digits that are a known code once they are taken for hexadecimal ones;
// else empty.
std::string lookAlike(const std::string& subject) {
  const std::optional<std::int64_t> code = numberIn(subject, 16);
  if (!code || !isKnownCode(*code)) return {};
  return platform::format("did you mean 0x%04lX?", *code);
}

Places placesOf(const ExplainOptions& options) {
  return placesOf(options.sharedFolder, options.copy, asPrefix);
}

bool hasPlaces(const ExplainOptions& options) {
  return hasPlaces(options.sharedFolder, options.copy);
}

// The job with that log id; nothing where no shared folder is given or no record has it. Records
// that cannot be read are a failure, except for what is meant as a code: whether they have the job
// is not known.
Value jobNamed(const ExplainOptions& options) {
  if (!hasPlaces(options)) return {};
  try {
    return recordAt(placesOf(options), options.subject);
  } catch (const Failure& failure) {
    if (failure.exitCode() == kNotFound || isHexadecimal(options.subject)) return {};
    throw;
  }
}

Explanation jobExplanation(const Value& record, const ExplainOptions& options) {
  Explanation explanation = explainJob(record, circumstancesAt(placesOf(options), record));
  const std::optional<std::int64_t> code = codeOf(options.subject);
  if (code && isKnownCode(*code)) {
    if (!explanation.note.empty()) explanation.note += ' ';
    explanation.note +=
        platform::format("\"explain 0x%04lX\" explains the result of that number.", *code);
  }
  return explanation;
}

// How a job with that log id is looked at that is in the log alone; else empty.
std::string wayToJob(const ExplainOptions& options) {
  if (!hasPlaces(options) || isHexadecimal(options.subject)) return {};
  return wayToLoggedJob(placesOf(options), options.subject);
}

Explanations codeExplanations(std::int64_t code, const ExplainOptions& options) {
  Explanations explanations = explainCode(code);
  const std::string way = wayToJob(options);
  if (hasPlaces(options) && (!isKnownCode(code) || !way.empty())) {
    std::string& note = explanations.front().note;
    if (!note.empty()) note += ' ';
    note.append("No job of the job file has this log id").append(way).append(".");
  }
  if (const std::string other = lookAlike(options.subject); !isKnownCode(code) && !other.empty()) {
    std::string& note = explanations.front().note;
    note += (note.empty() ? "" : " ") + options.subject + ": " + other;
  }
  return explanations;
}

[[noreturn]] void refuse(const ExplainOptions& options) {
  const std::string other = lookAlike(options.subject);
  if (!other.empty()) throw Failure(kNotFound, options.subject + ": " + other);
  if (!hasPlaces(options)) {
    throw Failure(kNotFound, "\"" + options.subject +
                                 "\" is no result code; for a log id name the shared folder");
  }
  throw Failure(kNotFound, "no " + jobName(options.subject) + " in " +
                               sourceOfRecords(placesOf(options)) + ", and it is no result code" +
                               wayToJob(options));
}

// --- showing

// "3:04; 5000A1: CPLD 0:12, firmware 1:20"
std::string timesText(const JobTimes& times) {
  std::vector<std::string> all = timeLines(times.controllers);
  if (times.length && *times.length >= std::chrono::seconds(1)) {
    all.insert(all.begin(), timeText(*times.length));
  }
  return joined(all, "; ");
}

Value lengthOf(const JobTimes& times) {
  if (!times.length) return Value::null();
  return Value::integer(std::chrono::duration_cast<std::chrono::seconds>(*times.length).count());
}

Value explanationAsValue(const Explanation& one) {
  const auto text = [](const std::string& bytes) { return displayText(bytes, Charset::utf8); };
  const auto list = [&text](const std::vector<std::string>& lines) {
    Value all = Value::array();
    for (const std::string& line : lines) all.append(text(line));
    return all;
  };
  return Value::dictionary({{"subject", text(one.subject)},
                            {"meaning", text(one.meaning)},
                            {"who_acts", text(one.whoActs)},
                            {"advice", text(one.advice)},
                            {"try_again", text(one.tryAgain)},
                            {"controllers", text(one.controller)},
                            {"told_by", text(one.toldBy)},
                            {"details", list(one.details)},
                            {"log_errors", list(one.errors)},
                            {"last_step", text(one.lastStep)},
                            {"seconds", lengthOf(one.times)},
                            {"phases", phasesForMachines(one.times.controllers)},
                            {"note", text(one.note)}});
}

void showExplanationsAsJson(const Explanations& explanations, const Screen& screen) {
  Value all = Value::array();
  for (const Explanation& one : explanations) all.append(explanationAsValue(one));
  screen.out << platform::printJson(all).value_or("null") << std::endl;
}

// Lines of the log may have any length.
constexpr std::size_t kMostBytesShown = 4000;

void showExplanation(const Explanation& one, const Screen& screen) {
  std::vector<Paragraph> paragraphs = {{"means", one.meaning},
                                       {"who acts", one.whoActs},
                                       {"to do", one.advice},
                                       {"try again", one.tryAgain}};
  paragraphs.push_back({"came to", one.controller});
  paragraphs.push_back({"took", timesText(one.times)});
  for (const std::string& detail : one.details) paragraphs.push_back({"besides", detail});
  for (const std::string& error : one.errors) paragraphs.push_back({"log error", error});
  paragraphs.push_back({"log tells", one.toldBy});
  if (one.lastStep != one.toldBy) paragraphs.push_back({"last step", one.lastStep});
  paragraphs.push_back({"note", one.note});
  for (Paragraph& paragraph : paragraphs) {
    paragraph.text = beginningOf(paragraph.text, kMostBytesShown, screen.charset);
  }
  const Colour colour = one.whoActs == "nobody" ? Colour::green : Colour::yellow;
  showParagraphs({one.subject, colour}, paragraphs, screen);
}

void showExplanations(const Explanations& explanations, const Screen& screen) {
  if (screen.json) {
    showExplanationsAsJson(explanations, screen);
    return;
  }
  for (const Explanation& one : explanations) showExplanation(one, screen);
}

// --- the sub-command

constexpr char kSubject[] = "subject";

int runExplain(const Given& given, const Screen& screen) {
  return explain({.sharedFolder = given.text(kSharedOption),
                  .subject = given.text(kSubject),
                  .copy = copyOptionsOf(given)},
                 screen);
}

}  // namespace

int explain(const ExplainOptions& options, const Screen& screen) {
  requireText(options.subject, "the code or log id");
  const Value record = jobNamed(options);
  if (!record.isNothing()) {
    showExplanations({jobExplanation(record, options)}, screen);
    return kSuccess;
  }
  const std::optional<std::int64_t> code = codeOf(options.subject);
  if (!code || (!isKnownCode(*code) && !wayToJob(options).empty())) refuse(options);
  showExplanations(codeExplanations(*code, options), screen);
  return isKnownCode(*code) ? kSuccess : kNotFound;
}

Command explainCommand() {
  std::vector<Option> options = placeOptions(", for a log id");
  options.push_back(jsonFlag("Show the explanation as JSON for machines"));
  return {
      .name = "explain",
      .description = "Say what a result code or a job means, and what to do",
      .options = options,
      .arguments = {{.names = {kSubject},
                     .kind = ValueKind::logId,
                     .valueName = "CODE|LOG_ID",
                     .description = "A result code, such as 0x8050, its name, or a job's log id",
                     .required = true}},
      .footer =
          "Examples:\n"
          "  kelvane-console explain 0x8050\n"
          "  kelvane-console explain --shared ~/Shared 17\n"
          "  kelvane-console explain --job-file BGPLog.json --log-file TarselVistrelUtility.txt 17",
      .run = runExplain};
}

}  // namespace kelvane::console
