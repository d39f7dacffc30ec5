#include "console/report/ReportPage.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

#include "console/checks/RightsChecks.h"
#include "console/job/JobStatus.h"
#include "console/report/DiskEntries.h"
#include "console/report/Html.h"
#include "console/report/InstallationSections.h"
#include "console/report/JobSections.h"
#include "console/report/ReportStyle.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// How a report begins; isReport() looks for it.
constexpr char kBeginning[] =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n";

// No script, nothing fetched, no form; the style by its digest.
constexpr char kPolicy[] = "default-src 'none'; base-uri 'none'; form-action 'none'; style-src '";

constexpr std::size_t kMostTitleBytes = 256;

std::string titleOf(const ReportMatter& matter) {
  if (!matter.hasJob()) return std::string("Report of a ") + kindOf(matter.subject.places);
  return jobName(statusOf(matter.record).logId).insert(0, "Report of ");
}

std::string pathsOf(const Places& places) {
  if (!places.sharedFolder.empty()) return places.sharedFolder;
  if (places.jobFile.empty() || places.log.empty()) return places.jobFile + places.log;
  std::string both = places.jobFile;
  return both.append(" and ").append(places.log);
}

void addHeader(Html& page, const ReportMatter& matter) {
  page.open("header");
  page.element("h1", titleOf(matter), {}, {.most = kMostTitleBytes});
  page.open("p", {{"class", "faint"}});
  page.words("Made on " + matter.made + " by kelvane-console " + matter.subject.version + " of ");
  page.text(pathsOf(matter.subject.places));
  if (!matter.subject.bundle.empty()) {
    page.words(" and ");
    page.text(matter.subject.bundle);
  }
  page.words(".");
  page.close();
  const std::string left = notLookedAt(matter.subject.places);
  if (!left.empty()) page.label("p", "Mind: " + left + ".", {{"class", "notice"}});
  page.close();
}

struct Link {
  const char* to;
  const char* words;
  bool isShown;
};

void addContents(Html& page, const ReportMatter& matter) {
  const bool hasJob = matter.hasJob();
  const Link links[] = {{"#outcome", "What became of it", true},
                        {"#request", "What was asked", hasJob},
                        {"#history", "Over time", hasJob && !matter.history.controllers.empty()},
                        {"#complaints", "Complaints", !matter.standardError.empty()},
                        {"#findings", "Findings", true},
                        {"#record", "Record", hasJob},
                        {"#log", "Log", true},
                        {"#versions", "Versions", true},
                        {"#settings", "Settings", true},
                        {"#places", "Permissions", true}};
  page.open("nav", {{"aria-label", "Contents"}});
  page.open("ul");
  for (const Link& link : links) {
    if (!link.isShown) continue;
    page.open("li");
    page.label("a", link.words, {{"href", link.to}});
    page.close();
  }
  page.close();
  page.close();
}

Html contentOf(const ReportMatter& matter, bool isRedacted) {
  Html page;
  addContents(page, matter);
  page.open("main");
  tellOutcome(page, matter);
  tellRequest(page, matter);
  tellHistory(page, matter);
  showStandardError(page, matter);
  showFindings(page, matter);
  showRecord(page, matter);
  showLogOf(page, matter);
  showVersions(page, matter);
  showSettings(page, matter, isRedacted);
  showDiskEntries(page, matter);
  page.close();
  return page;
}

// --- the redaction

void addWwnsOf(const Value& entries, Redaction& redaction) {
  if (!entries.isArray()) return;
  for (const Value& entry : entries.elements()) {
    if (entry.isDictionary() && entry.get(job::kWwn).isString()) {
      redaction.addWwn(entry.get(job::kWwn).string());
    }
  }
}

void addThisUser(Redaction& redaction) {
  const passwd* user = ::getpwuid(::geteuid());
  if (user == nullptr) return;
  redaction.addUser(user->pw_name);
  redaction.addHome(user->pw_dir);
}

Redaction redactionFor(const Html& header, const Html& content, const ReportMatter& matter) {
  Redaction redaction;
  if (matter.hasJob()) {
    addWwnsOf(matter.record.get(job::kInputParameters), redaction);
    addWwnsOf(matter.record.get(job::kOutput), redaction);
  }
  for (const Html* part : {&header, &content}) {
    for (const Html::Text& text : part->texts()) redaction.learn(text.text, text.name);
  }
  addThisUser(redaction);
  for (const DiskEntry& place : diskEntriesOf(matter.subject.places, matter.subject.bundle)) {
    redaction.addUser(place.owner);
  }
  return redaction;
}

std::string redactionNotice(const Redaction& redaction) {
  std::string text = "Redacted. Replaced by stand-ins, the same text by the same one everywhere:";
  for (const SecretKind& kind : kSecretKinds) {
    const Redaction::Count count = redaction.count(kind.secret);
    text.append(&kind == kSecretKinds ? " " : ", ").append(kind.what);
    text.append(" ").append(std::to_string(count.different)).append(" (");
    text.append(std::to_string(count.places));
    text.append(count.places == 1 ? " place)" : " places)");
  }
  return text.append(". Other texts are as they were found: look at them before this is sent.");
}

// --- the frame

std::string frameOf(const std::string& title, const std::string& content) {
  std::string text = kBeginning;
  text.append(kReportMark).append("\n");
  text.append("<meta http-equiv=\"Content-Security-Policy\" content=\"").append(kPolicy);
  text.append(kReportStyleDigest).append("'\"/>\n");
  text.append("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n");
  text.append("<meta name=\"referrer\" content=\"no-referrer\"/>\n<title>").append(title);
  text.append("</title>\n<style>").append(kReportStyle).append("</style>\n</head>\n<body>\n");
  return text.append(content).append("\n</body>\n</html>\n");
}

}  // namespace

ReportPage reportPage(const ReportMatter& matter, bool isRedacted) {
  Html title;
  title.text(titleOf(matter), {.most = kMostTitleBytes});
  Html header;
  addHeader(header, matter);
  const Html content = contentOf(matter, isRedacted);
  ReportPage page{{}, isRedacted, {}};
  if (!isRedacted) {
    page.text = frameOf(title.printed(), header.printed() + content.printed());
    return page;
  }
  page.redaction = redactionFor(header, content, matter);
  const Html::Filter filter = [&page](const Html::Text& text) {
    return page.redaction.applied(text.text, text.name, text.shown);
  };
  const std::string above = header.printed(filter);
  const std::string body = content.printed(filter);
  Html notice;  // when everything is counted
  notice.label("p", redactionNotice(page.redaction), {{"class", "notice"}});
  page.text = frameOf(title.printed(filter), above + notice.printed() + body);
  return page;
}

bool isReport(const std::string& path) {
  std::string expected = kBeginning;
  expected += kReportMark;
  std::error_code untold;
  if (!std::filesystem::is_regular_file(path, untold)) return false;
  std::string found(expected.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  return file.read(found.data(), static_cast<std::streamsize>(found.size())) && found == expected;
}

}  // namespace kelvane::console
