#include "console/commands/Report.h"

#include <string_view>
#include <utility>

#include "console/checks/Access.h"
#include "console/commands/Arguments.h"
#include "console/commands/Check.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "console/job/JobStatus.h"
#include "console/report/ReportPage.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

ReportMatter matterOf(const ReportOptions& options) {
  const Places places = placesOf(options.sharedFolder, options.copy, workersShared);
  ReportMatter matter =
      gatherReport({.version = KELVANE_VERSION,
                    .places = places,
                    .bundle = places.isCopy ? "" : withoutSlashAtEnd(options.bundle),
                    .logId = options.logId});
  matter.findings = findingsOf(places, matter.subject.bundle);
  return matter;
}

// What a file's name cannot hold of a log id is left out of it; of a redacted report all, as an
// application may put anything into log ids.
std::string defaultName(const ReportMatter& matter, bool redact) {
  constexpr std::string_view kPlain =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_-";
  constexpr std::size_t kLongest = 64;
  if (!matter.hasJob() || redact) return "kelvane-report.html";
  std::string name = "kelvane-report-";
  for (const char character : statusOf(matter.record).logId.substr(0, kLongest)) {
    name += kPlain.find(character) == std::string_view::npos ? '_' : character;
  }
  return name + ".html";
}

// Whether a report is there already.
bool requireOwn(const std::string& path) {
  if (!platform::exists(path)) return false;
  if (isReport(path)) return true;
  throw Failure(kBadUsage, path +
                               " is there already, and is no report: it is left as it is. Name "
                               "another file with --output");
}

void write(const std::string& path, const std::string& text) {
  if (platform::replaceFile(path, text)) return;
  std::string message = "the report cannot be written to ";
  message += path;
  const std::string cause =
      changeRefusal(platform::withoutLastComponent(absolutePath(path, "file")));
  throw Failure(kBadUsage, cause.empty() ? message : message.append(": ").append(cause));
}

Value replacedIn(const ReportPage& page) {
  Value all = Value::dictionary();
  for (const SecretKind& kind : kSecretKinds) {
    const Redaction::Count count = page.redaction.count(kind.secret);
    all.set(kind.what,
            Value::dictionary(
                {{"different", Value::integer(static_cast<std::int64_t>(count.different))},
                 {"places", Value::integer(static_cast<std::int64_t>(count.places))}}));
  }
  return all;
}

void tellMachines(const std::string& path, const ReportMatter& matter, const ReportPage& page,
                  bool hasReplaced, const Screen& screen) {
  const std::string logId = matter.hasJob() ? statusOf(matter.record).logId : "";
  Value told =
      Value::dictionary({{"file", displayText(path, Charset::utf8)},
                         {"job", displayText(logId, Charset::utf8)},
                         {"bytes", Value::integer(static_cast<std::int64_t>(page.text.size()))},
                         {"replaced_a_report", Value::boolean(hasReplaced)}});
  if (!matter.jobFileFault.empty()) {
    told.set("job_file_fault", displayText(matter.jobFileFault, Charset::utf8));
  }
  if (page.isRedacted) told.set("redacted", replacedIn(page));
  screen.out << platform::printJson(told).value_or("null") << std::endl;
}

std::string redactionLine(const ReportPage& page) {
  std::string line = "redacted:";
  for (const SecretKind& kind : kSecretKinds) {
    if (&kind != kSecretKinds) line += ",";
    line.append(" ").append(std::to_string(page.redaction.count(kind.secret).different));
    line.append(" ").append(kind.what);
  }
  return line;
}

void tell(const std::string& path, const ReportMatter& matter, const ReportPage& page,
          bool hasReplaced, const Screen& screen) {
  std::string line = "report of the ";
  line.append(kindOf(matter.subject.places));
  line += matter.subject.logId.empty()
              ? ", without a job"
              : ", without job " + matter.subject.logId + ", which the log does not show either";
  if (matter.hasJob()) line = statusOf(matter.record).logId.insert(0, "report of job ");
  line.append(": ").append(path);
  if (hasReplaced) line.append(" (in place of the report that was there)");
  std::vector<std::string> lines = {line};
  if (!matter.jobFileFault.empty()) {
    lines.push_back(matter.jobFileFault +
                    (matter.isFromLog ? ". The job is told as the log shows it" : ""));
  }
  if (page.isRedacted) lines.push_back(redactionLine(page));
  showLines(lines, screen);
}

constexpr char kOutput[] = "--output";
constexpr char kRedact[] = "--redact";

int runReport(const Given& given, const Screen& screen) {
  if (given.has(kLogIdArgument)) requireText(given.text(kLogIdArgument), "the log id");
  return report({.sharedFolder = given.text(kSharedOption),
                 .bundle = given.text(kBundleOption),
                 .logId = given.text(kLogIdArgument),
                 .output = given.text(kOutput),
                 .redact = given.has(kRedact),
                 .copy = copyOptionsOf(given)},
                screen);
}

}  // namespace

int report(const ReportOptions& options, const Screen& screen) {
  if (!options.output.empty()) requireOwn(options.output);
  const ReportMatter matter = matterOf(options);
  const std::string path =
      options.output.empty() ? defaultName(matter, options.redact) : options.output;
  const bool hasReplaced = requireOwn(path);
  const ReportPage page = reportPage(matter, options.redact);
  write(path, page.text);
  if (screen.json) {
    tellMachines(path, matter, page, hasReplaced, screen);
  } else {
    tell(path, matter, page, hasReplaced, screen);
  }
  return kSuccess;
}

Command reportCommand() {
  const std::vector<Option> own = {
      bundleOption(),
      {.names = {"-o", kOutput},
       .kind = ValueKind::file,
       .valueName = "FILE",
       .description = "The file to be written; without it one in the current folder"},
      {.names = {kRedact},
       .kind = ValueKind::none,
       .description = "Replace user names, home folders, WWNs and credentials by stand-ins"},
      jsonFlag("Show where the report is as JSON for machines")};
  std::vector<Option> options = placeOptions();
  options.insert(options.end(), own.begin(), own.end());
  return {
      .name = "report",
      .description = "Write one file for a support ticket: what happened, where, what to do",
      .options = std::move(options),
      .arguments = {{.names = {kLogIdArgument},
                     .kind = ValueKind::logId,
                     .valueName = "LOG_ID",
                     .description = "The job; without it the last one of the job file"}},
      .footer =
          "The report is one HTML page that stands for itself. A report that is there already is\n"
          "replaced; any other file is left alone.\n"
          "Exit status: 0 it is written, 2 it is not, or another file stands there, 5 there is no\n"
          "such job.\n"
          "Example:\n"
          "  kelvane-console report --shared ~/Shared --bundle /Manager/Manager.app 17\n"
          "  kelvane-console report --shared ~/Sent --offline",
      .run = runReport};
}

}  // namespace kelvane::console
