#include "console/report/JobSections.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "console/display/JobText.h"
#include "console/explain/JobExplanation.h"
#include "console/job/JobStatus.h"
#include "console/job/StandardError.h"
#include "console/job/UnwrittenJob.h"
#include "console/report/HistoryDrawing.h"
#include "console/report/LogSection.h"
#include "console/report/Tables.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/Json.h"

namespace kelvane::console {

namespace {

constexpr std::size_t kMostRecordBytes = 512UL * 1024;
constexpr std::size_t kMostLogBytes = 2048UL * 1024;
constexpr std::size_t kMostListed = 100;
constexpr std::size_t kMostHistoryBytes = 1536UL * 1024;  // of the drawings and their tables
constexpr char kMixed[] =
    "Another worker wrote into the log at the same time: some of these lines may be that one's, "
    "and "
    "what is drawn of them may be wrong.";
constexpr std::size_t kMostBytesSaid = 64UL * 1024;

JobStatus statusOfJob(const ReportMatter& matter) {
  JobStatus status = statusOf(matter.record, matter.log);
  if (!matter.workerRuns && !matter.subject.places.isCopy) markWithoutWorker(status);
  return status;
}

// --- what became of it

struct Verdict {
  const char* word;
  const char* kind;  // of the banner
};

Verdict verdictOnFinished(const JobStatus& status, const Explanation& told) {
  if (status.result.empty()) return {"Unclear", "open"};
  if (!status.hasSucceeded()) return {"Failed", "bad"};
  if (told.fellShort) {
    return status.command == job::kUpdateFW ? Verdict{"Done in part", "open"}
                                            : Verdict{"Failed", "bad"};
  }
  return told.whoActs == "nobody" ? Verdict{"Done", "good"} : Verdict{"Ended", "open"};
}

Verdict verdictOn(const JobStatus& status, const Explanation& told, const ReportMatter& matter) {
  if (!matter.installationFault.empty()) return {"Failed", "bad"};
  if (status.isFinished()) return verdictOnFinished(status, told);
  const bool hasEnded = matter.log.hasEnded && !matter.log.isMixed && !matter.workerRuns;
  if (status.state == job::kRun && hasEnded) return {"Ended, and not written", "open"};
  const bool isCopy = matter.subject.places.isCopy;
  const bool isAlone = isCopy || status.hasNoWorker;
  if (isAlone && mayHaveBeenDone(matter.record, matter.log)) return {"Unclear", "bad"};
  if (isCopy) return {"Not finished", "open"};  // then, or not told
  if (!isAlone) return {status.state == job::kRun ? "Running" : "Waiting", "open"};
  return {status.state == job::kRun ? "Left undone" : "Not done", "bad"};
}

void showBanner(Html& page, const Verdict& verdict, const std::string& text) {
  page.open("p", {{"class", std::string("banner ") + verdict.kind}});
  page.label("strong", verdict.word);
  page.words(" ");
  page.text(text);
  page.close();
}

void showList(Html& page, const char* label, const std::vector<std::string>& texts) {
  if (texts.empty()) return;
  page.label("p", label, {{"class", "above"}});
  page.open("ul");
  const std::size_t listed = std::min(texts.size(), kMostListed);
  for (std::size_t i = 0; i < listed; ++i) page.element("li", texts[i]);
  page.close();
  tellLeftOut(page, texts.size() - listed, "other is", "others are");
}

// What came when the controller had shown nothing.
std::string newsBehind(const HistorySilence& silence, const ControllerHistory& controller,
                       const ReportMatter& matter) {
  const auto isThen = [&](const auto& one) { return one.at == silence.to; };
  const auto& marks = controller.marks;
  const auto mark = std::find_if(marks.begin(), marks.end(), isThen);
  if (mark != marks.end()) {
    return (mark->kind == MarkKind::fault ? "; then came " : "; then ") + mark->text;
  }
  const auto& points = controller.points;
  const bool isLast =
      silence.to >= matter.history.length && std::none_of(points.begin(), points.end(), isThen);
  if (!isLast) return "; then it went on";
  return matter.workerRuns && !matter.log.hasEnded ? ", and its worker is still at it"
                                                   : ", and the job's lines in the log end there";
}

// Of each time in which a controller showed nothing.
std::vector<std::string> silenceNotes(const ReportMatter& matter) {
  std::vector<std::string> notes;
  for (const ControllerHistory& one : matter.history.controllers) {
    for (const HistorySilence& silence : one.silences) {
      std::string note = one.wwn;
      note.append(": no change for ").append(lengthText(silence.to - silence.from));
      note.append(" from ").append(clockAt(matter.history, silence.from)).append(" on");
      note += newsBehind(silence, one, matter);
      notes.push_back(note);
    }
  }
  return notes;
}

void takeInstallationFault(const std::string& fault, Explanation& told) {
  told.meaning = "The worker ends an installation with 0 whatever became of it, but ";
  told.meaning += fault + ".";
  told.whoActs = "user";
  told.advice =
      "Mend what the system's tools complained of, such as a missing permission (the table of "
      "owners and permissions below shows whose the folders are), and add the job anew.";
  told.tryAgain = "yes, under another log_id";
}

Explanation explanationOf(const ReportMatter& matter) {
  const Places& places = matter.subject.places;
  JobCircumstances circumstances = circumstancesOf(places);
  circumstances.workerRuns = matter.workerRuns;
  circumstances.log = matter.log;
  if (matter.isFromLog) circumstances.jobFileFault.clear();
  constexpr std::size_t kMostComplaints = 5;  // all have a section of their own
  const std::size_t complaints = std::min(matter.standardError.size(), kMostComplaints);
  for (std::size_t i = 0; i < complaints; ++i) {
    circumstances.standardError.push_back(matter.standardError[i]);
  }
  Explanation told = explainJob(matter.record, circumstances);
  if (!matter.installationFault.empty()) {
    takeInstallationFault(matter.installationFault, told);
  } else if (matter.isInstalled) {
    told.fellShort = false;
    told.meaning = "The application was replaced: what stands in its place is the package.";
    told.whoActs = "nobody";
    told.advice.clear();
    told.tryAgain = "no";
  }
  return told;
}

void showControllers(Html& page, const JobStatus& status) {
  if (status.controllers.empty()) return;
  const std::size_t rows = std::min(status.controllers.size(), kMostRows);
  {
    HtmlTable table(page, "Where each controller stands",
                    {"Controller", "Phase", "CPLD", "Firmware", "Total"});
    for (const ControllerStatus& one : std::span(status.controllers).first(rows)) {
      table.addRow({one.wwn.empty() ? "(no WWN)" : one.wwn, phaseOf(one), percentText(one.cpld),
                    percentText(one.firmware), percentText(one.total)});
    }
  }
  tellLeftOut(page, status.controllers.size() - rows, "other controller is",
              "other controllers are");
}

std::string jobFileNote(const ReportMatter& matter) {
  if (!matter.isFromLog) return {};
  return matter.jobFileFault +
         ". What is told here of the job is as the log shows it, which does not tell all numbers "
         "from texts. Ask for the job file once more, or mend it.";
}

void tellOfJob(Html& page, const ReportMatter& matter) {
  const JobStatus status = statusOfJob(matter);
  const Explanation told = explanationOf(matter);
  showBanner(page, verdictOn(status, told, matter), told.subject);
  showPairs(page, {{"This means", told.meaning},
                   {"What to do", told.advice},
                   {"Who acts", told.whoActs},
                   {"Try again", told.tryAgain},
                   {"It came to", told.controller},
                   {"The log tells", told.toldBy},
                   {"Last step", told.lastStep != told.toldBy ? told.lastStep : ""},
                   {"Note", told.note},
                   {"The job file", jobFileNote(matter)}});
  showControllers(page, status);
  showList(page, "Besides:", told.details);
  showList(page, "Times without a change:", silenceNotes(matter));
  showList(page, "Errors in the job's lines of the log:", told.errors);
}

// The finding about the job file; else the first error.
const Finding* findingBehind(const ReportMatter& matter) {
  const std::string& jobFile = matter.subject.places.jobFile;
  const Finding* first = nullptr;
  for (const Finding& finding : matter.findings) {
    if (finding.severity != Severity::error) continue;
    if (finding.path == jobFile) return &finding;
    if (first == nullptr) first = &finding;
  }
  return first;
}

void tellOfNoJob(Html& page, const ReportMatter& matter) {
  if (matter.jobFileFault.empty()) {
    const Places& places = matter.subject.places;
    std::string text = "There is no job in the ";
    text += places.jobFile.empty() ? "log" : "job file";
    text.append(". This report tells of the ").append(kindOf(places)).append(" alone.");
    showBanner(page, {"No job", "open"}, text);
    return;
  }
  const std::string& logId = matter.subject.logId;
  const std::string missing =
      logId.empty() ? "" : ". The log does not show job " + logId + " either";
  showBanner(page, {"No job can be told", "bad"}, matter.jobFileFault + missing);
  if (const Finding* finding = findingBehind(matter)) {
    showPairs(page, {{"Found", finding->what},
                     {"This means", finding->meaning},
                     {"What to do", finding->advice}});
  }
}

// --- what was asked

const char* requestOf(const std::string& command) {
  if (command == job::kUpdateFW) return "Update the firmware of these controllers:";
  if (command == job::kUpdateSW) return "Replace the installed application by this package:";
  if (command == job::kGetOnlineUpdateData) return "Ask the update service what it offers:";
  if (command == job::kDownloadOnlineUpdateFile) return "Fetch packages from the update service:";
  return "A command that the worker does not know, with these parameters:";
}

// --- over time

void tellOfController(Html& page, const ReportMatter& matter, std::size_t number) {
  const ControllerHistory& one = matter.history.controllers[number];
  page.element("h3", one.wwn.empty() ? "(no WWN)" : one.wwn);
  if (!one.hasBegun) {
    page.label("p", "The worker did not come to it, as far as the log tells.");
    return;
  }
  drawHistory(page, matter.history, number);
  page.open("details");
  page.label("summary", "The same as a table");
  tabulateHistory(page, matter.history, one);
  page.close();
}

std::string logIntroduction(const ReportMatter& matter) {
  std::string text = std::to_string(matter.entries.size());
  text += matter.entries.size() == 1 ? " entry" : " entries";
  if (!matter.hasJob()) return text.insert(0, "The last ") + " of the log.";
  if (!matter.history.startedAt.empty()) {
    text.append(", from ").append(matter.history.startedAt);
    text.append(" to ").append(clockAt(matter.history, matter.history.length));
  }
  text += ". Objects are folded; the log has no dates.";
  if (matter.log.isMixed) {
    text +=
        " Another worker wrote at the same time: some of these lines may be that one's, and "
        "what is drawn of them may be wrong.";
  }
  return text;
}

}  // namespace

void tellOutcome(Html& page, const ReportMatter& matter) {
  openSection(page, "outcome", "What became of it");
  if (matter.hasJob()) {
    tellOfJob(page, matter);
  } else {
    tellOfNoJob(page, matter);
  }
  page.close();
}

void tellRequest(Html& page, const ReportMatter& matter) {
  if (!matter.hasJob()) return;
  openSection(page, "request", "What was asked");
  page.label("p", requestOf(statusOf(matter.record).command));
  showValue(page, "Parameters", matter.record.get(job::kInputParameters));
  page.close();
}

void tellHistory(Html& page, const ReportMatter& matter) {
  if (!matter.hasJob() || matter.history.controllers.empty()) return;
  openSection(page, "history", "The controllers over time");
  page.label("p",
             "As the job's lines of the log tell. Percentages that the worker writes behind a "
             "failed flash are left out.");
  if (matter.log.isMixed) page.label("p", kMixed);
  if (matter.entries.empty()) {
    page.element(
        "p", matter.logAbsence.empty() ? "The log has no lines of this job." : matter.logAbsence);
  } else {
    const std::size_t controllers = matter.history.controllers.size();
    const std::size_t most = page.markupSize() + kMostHistoryBytes;
    std::size_t number = 0;
    while (number < controllers && page.markupSize() < most)
      tellOfController(page, matter, number++);
    tellLeftOut(page, controllers - number, "other controller is", "other controllers are");
  }
  page.close();
}

void showRecord(Html& page, const ReportMatter& matter) {
  if (!matter.hasJob()) return;
  openSection(page, "record", "The record", 2 * kMostRecordBytes);
  const bool isFromLog = matter.isFromLog || matter.subject.places.jobFile.empty();
  page.label("p", std::to_string(matter.place).insert(0, "No. ") + ", counted from 0, of " +
                      std::to_string(matter.count) +
                      (isFromLog ? " as the log shows them last." : " in the job file."));
  page.element("pre", platform::printJson(matter.record).value_or("(cannot be shown)"), {},
               {.most = kMostRecordBytes});
  page.close();
}

void showLogOf(Html& page, const ReportMatter& matter) {
  openSection(page, "log", matter.hasJob() ? "The job's lines of the log" : "The end of the log",
              kMostLogBytes);
  if (!matter.logAbsence.empty()) {
    page.element("p", matter.logAbsence);
  } else if (matter.entries.empty()) {
    page.label("p", matter.hasJob() ? "The log has no lines of this job." : "The log is empty.");
  } else {
    page.label("p", logIntroduction(matter));
    const std::string leftOut = showEntries(page, matter.entries);
    if (!leftOut.empty()) page.label("p", "Left out for their size: " + leftOut + ".");
  }
  page.close();
}

void showStandardError(Html& page, const ReportMatter& matter) {
  if (matter.standardError.empty()) return;
  openSection(page, "complaints", "What the worker and its tools said on standard error");
  if (!matter.log.isFound) page.label("p", "Mind: " + std::string(kNotToldByTheLog) + ".");
  std::string text;
  for (const std::string& line : matter.standardError) text.append(line).append("\n");
  page.element("pre", text, {}, {.most = kMostBytesSaid});
  page.close();
}

}  // namespace kelvane::console
