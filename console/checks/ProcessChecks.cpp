#include "console/checks/ProcessChecks.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "console/checks/Access.h"
#include "console/checks/BundleChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/display/Words.h"
#include "contract/Paths.h"
#include "contract/Settings.h"

namespace kelvane::console {

namespace fs = std::filesystem;

using platform::RunningProcess;

namespace {

// What follows the option among the arguments; empty where it is not there.
std::string valueOf(const RunningProcess& process, const char* option) {
  const auto end = process.arguments.end();
  const auto found = std::find(process.arguments.begin(), end, option);
  return found == end || std::next(found) == end ? "" : *std::next(found);
}

// However it is written, from the process's current folder.
bool isSame(const RunningProcess& process, const std::string& path, const std::string& other) {
  std::error_code unknown;
  return !path.empty() &&
         (path == other || fs::equivalent(fs::path(process.currentFolder) / path, other, unknown));
}

// What an installation replaces: most often the bundle itself, whose settings then go first.
std::string applicationOf(const std::string& bundle) {
  const platform::Value settings = readJsonFile(productSettingsPath(bundle)).value;
  if (!settings.isDictionary()) return bundle;
  const platform::Value& application = settings.get(settings::kAppPath);
  return application.isString() ? application.string() : bundle;
}

// "/bin/rm -Rf APPLICATION" and "/bin/cp -Rf PACKAGE APPLICATION", as the worker starts them.
bool isToolFor(const std::string& application, const RunningProcess& process) {
  const std::vector<std::string>& arguments = process.arguments;
  const bool removes = arguments.size() == 3 && arguments[0] == "/bin/rm";
  const bool copies = arguments.size() == 4 && arguments[0] == "/bin/cp";
  return (removes || copies) && arguments[1] == "-Rf" && arguments.back() == application;
}

std::string toldBy(const RunningProcess& process) {
  return " (process " + std::to_string(process.id) + ")";
}

}  // namespace

Findings engineProcessFindings(const std::string& sharedFolder,
                               const std::vector<RunningProcess>& processes) {
  Findings findings;
  for (const RunningProcess& process : processes) {
    const std::string logId = valueOf(process, "-logId");
    if (!isSame(process, valueOf(process, "-logPath"), sharedFolder + paths::kJobFile)) continue;
    if (workerRuns(logId, sharedFolder, processes)) continue;
    findings.push_back({Code::engineWithoutWorker, Severity::warning,
                        "an update engine runs for job " + logId + toldBy(process) +
                            ", and no worker for it is seen",
                        "Its worker was killed. The engine goes on and writes into the folder that "
                        "the job names; another job with that folder would meet it there.",
                        "Wait for its end, or end it, before a job is put into state WAIT again.",
                        "", logId});
  }
  return findings;
}

Findings workerProcessFindings(const std::string& sharedFolder, const std::set<std::string>& logIds,
                               const std::vector<RunningProcess>& processes) {
  std::vector<std::string> running;
  for (const std::string& logId : logIds) {
    const std::size_t count = workersNamed(logId, sharedFolder, processes);
    running.insert(running.end(), count, logId);
    // One of another name stands behind an interpreter's or a tool's, which are processes, too.
    if (count == 0 && workerRuns(logId, sharedFolder, processes)) running.push_back(logId);
  }
  if (running.size() < 2) return {};
  return {
      {Code::twoWorkers, Severity::error,
       std::to_string(running.size()) + " workers run at once, for jobs " + joined(running, ", "),
       "Each overwrites what the other writes: records lose their results, and two workers may "
       "flash one controller.",
       "Wait for their ends, and look at each job with \"explain\". Start one worker at a time.",
       sharedFolder + paths::kJobFile}};
}

Findings installationProcessFindings(const std::string& bundle,
                                     const std::vector<RunningProcess>& processes) {
  const std::string application = applicationOf(bundle);
  const std::string worker = workerIn(bundle);
  if (std::any_of(processes.begin(), processes.end(), [&](const RunningProcess& process) {
        return isSame(process, process.arguments.front(), worker);
      })) {
    return {};
  }
  Findings findings;
  for (const RunningProcess& process : processes) {
    if (!isToolFor(application, process)) continue;
    const char* what = process.arguments[0] == "/bin/rm" ? "removes " : "copies to ";
    findings.push_back({Code::toolWithoutWorker, Severity::warning,
                        process.arguments[0] + toldBy(process) + " still " + what + application +
                            ", and no worker is seen",
                        "Its worker was killed. An installation that is started meanwhile can lose "
                        "files to it.",
                        "Wait for its end before a job is put into state WAIT again.",
                        application});
  }
  return findings;
}

}  // namespace kelvane::console
