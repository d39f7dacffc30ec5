#include "console/checks/SharedFolderChecks.h"

#include <algorithm>

#include "console/checks/Access.h"
#include "console/checks/DownloadAreaChecks.h"
#include "console/checks/JobFileChecks.h"
#include "console/checks/LogFileChecks.h"
#include "console/checks/ProcessChecks.h"
#include "console/checks/RightsChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/job/LogFile.h"
#include "console/job/Processes.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"

namespace kelvane::console {

using platform::Value;

namespace {

Findings folderFindings(const std::string& folder) {
  constexpr char kMeaning[] = "The worker finds no job and starts nothing.";
  constexpr char kAdvice[] = "Name the folder that the application shares with the worker.";
  const EntryKind kind = kindOf(folder);
  if (kind == EntryKind::missing) {
    return {
        {Severity::error, "the shared folder " + folder + " does not exist", kMeaning, kAdvice}};
  }
  if (kind != EntryKind::folder && kind != EntryKind::unreachable) {
    return {{Severity::error, "the shared folder " + folder + " is no folder", kMeaning, kAdvice}};
  }
  const std::string cause = refusal(folder, Access::execute);
  if (cause.empty()) return {};
  return {{Severity::error, "the shared folder " + folder + " cannot be entered: " + cause,
           kMeaning, "Give the user that runs the worker the right to enter it."}};
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

Findings jobFindings(const std::string& sharedFolder, const WorkerRuns& workerRuns) {
  const std::string path = sharedFolder + paths::kJobFile;
  Findings findings = jobFileFindings(path);
  Value records = readJsonFile(path).value;
  if (!records.isArray()) records = Value::array();
  const LogOf logOf = [&sharedFolder](const Value& record) {
    return stretchIn(sharedFolder, record);
  };
  append(findings, recordFindings(path, records, workerRuns, logOf));
  // A worker that runs has such files for moments.
  Findings leftovers = leftoverFindings(path);
  append(leftovers, leftoverDownloadFindings(sharedFolder));
  if (!leftovers.empty() && !hasRunningJob(records, workerRuns)) append(findings, leftovers);
  return findings;
}

}  // namespace

Findings sharedFolderFindings(const std::string& sharedFolder, const WorkerRuns& workerRuns) {
  Findings findings = folderFindings(sharedFolder);
  if (!findings.empty()) return findings;
  append(findings, jobFindings(sharedFolder, workerRuns));
  append(findings, logFileFindings(logPath(sharedFolder)));
  append(findings, sharedSettingsFindings(sharedSettingsPath(sharedFolder)));
  append(findings, downloadAreaFindings(sharedFolder));
  append(findings, rightsFindings(sharedFolder));
  append(findings, engineProcessFindings(sharedFolder, platform::runningProcesses()));
  return findings;
}

}  // namespace kelvane::console
