#include "console/checks/SharedFolderChecks.h"

#include <algorithm>
#include <optional>
#include <set>

#include "console/checks/Access.h"
#include "console/checks/CatalogueChecks.h"
#include "console/checks/DownloadAreaChecks.h"
#include "console/checks/JobFileChecks.h"
#include "console/checks/LogFileChecks.h"
#include "console/checks/ProcessChecks.h"
#include "console/checks/RightsChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/job/LogFile.h"
#include "console/job/LogStretch.h"
#include "console/job/Processes.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"

namespace kelvane::console {

using platform::Value;

namespace {

// With "/" at its end nothing but a folder is there.
std::string withoutSlashes(const std::string& folder) {
  const std::size_t last = folder.find_last_not_of('/');
  return last == std::string::npos ? folder : folder.substr(0, last + 1);
}

Findings folderFindings(const std::string& folder) {
  constexpr char kMeaning[] = "The worker finds no job and starts nothing.";
  constexpr char kAdvice[] = "Name the folder that the application shares with the worker.";
  const EntryKind kind = kindOf(withoutSlashes(folder));
  if (kind == EntryKind::missing) {
    return {{Code::sharedFolderMissing, Severity::error,
             "the shared folder " + folder + " does not exist", kMeaning, kAdvice}};
  }
  if (kind != EntryKind::folder && kind != EntryKind::unreachable) {
    return {{Code::sharedFolderNoFolder, Severity::error,
             "the shared folder " + folder + " is no folder", kMeaning, kAdvice}};
  }
  const std::string cause = refusal(folder, Access::execute);
  if (cause.empty()) return {};
  return {{Code::sharedFolderClosed, Severity::error,
           "the shared folder " + folder + " cannot be entered: " + cause, kMeaning,
           "Give the user that runs the worker the right to enter it."}};
}

bool hasRunningJob(const Value& records, const WorkerRuns& workerRuns) {
  const auto& all = records.elements();
  return std::any_of(all.begin(), all.end(), [&](const Value& record) {
    if (!record.isDictionary()) return false;
    const Value& logId = record.get(job::kLogId);
    const Value& state = record.get(job::kStateId);
    const bool isFinished = state.isString() && state.string() == job::kFree;
    return !isFinished && logId.isString() && workerRuns(logId.string());
  });
}

Findings jobFileAndProcessFindings(const std::string& sharedFolder, const WorkerRuns& workerRuns) {
  const std::string path = sharedFolder + paths::kJobFile;
  const Places places = placesIn(sharedFolder);
  Findings findings = concerning(path, jobFileFindings(places));
  append(findings, lostJobFileFindings(places));
  Value records = readJsonFile(path).value;
  if (!records.isArray()) records = Value::array();
  std::optional<JobsLog> log;  // read where a record asks for it
  const LogOf logOf = [&](const Value& record) {
    if (!log) log.emplace(places);
    return log->stretchOf(record);
  };
  append(findings, recordFindings(path, records, workerRuns, logOf));
  append(findings, engineFolderFindings(records, sharedFolder));
  // A worker that runs has such files for moments.
  Findings leftovers = leftoverFindings(path);
  append(leftovers, leftoverDownloadFindings(sharedFolder));
  if (!leftovers.empty() && !hasRunningJob(records, workerRuns)) append(findings, leftovers);
  return findings;
}

std::set<std::string> logIdsIn(const std::string& sharedFolder) {
  std::set<std::string> logIds;
  const Value records = readJsonFile(sharedFolder + paths::kJobFile).value;
  if (!records.isArray()) return logIds;
  for (const Value& record : records.elements()) {
    if (!record.isDictionary() || !record.get(job::kLogId).isString()) continue;
    logIds.insert(record.get(job::kLogId).string());
  }
  return logIds;
}

}  // namespace

Findings sharedFolderFindings(const std::string& sharedFolder, const WorkerRuns& workerRuns) {
  Findings findings = concerning(sharedFolder, folderFindings(sharedFolder));
  if (!findings.empty()) return findings;
  append(findings, jobFileAndProcessFindings(sharedFolder, workerRuns));
  append(findings, concerning(logPath(sharedFolder), logFileFindings(logPath(sharedFolder))));
  append(findings, sharedSettingsFindings(sharedSettingsPath(sharedFolder)));
  append(findings,
         concerning(sharedFolder + paths::kDownloadArea, downloadAreaFindings(sharedFolder)));
  append(findings, rightsFindings(sharedFolder));
  const auto processes = platform::runningProcesses();
  append(findings, engineProcessFindings(sharedFolder, processes));
  append(findings, workerProcessFindings(sharedFolder, logIdsIn(sharedFolder), processes));
  return findings;
}

}  // namespace kelvane::console
