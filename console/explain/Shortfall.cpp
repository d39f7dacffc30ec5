#include "console/explain/Shortfall.h"

#include <algorithm>
#include <iterator>

#include "console/checks/SettingsChecks.h"
#include "console/display/Words.h"
#include "console/explain/FlashNotes.h"
#include "console/explain/PackageFault.h"
#include "console/job/JobStatus.h"
#include "console/job/RecordValues.h"
#include "console/job/StandardError.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr const char* kTools[] = {"rm: ", "cp: ", "/bin/rm: ", "/bin/cp: "};

bool isOfATool(const std::string& line) {
  return std::any_of(std::begin(kTools), std::end(kTools),
                     [&](const char* tool) { return line.starts_with(tool); });
}

std::string shortfallOfFirmware(const Value& record, const LogStretch& log) {
  const std::vector<std::string> names = controllersWithoutCpld(record, log);
  if (names.empty()) return {};
  return (names.size() == 1 ? "the CPLD of " : "the CPLDs of ") + joined(names, ", ") +
         (names.size() == 1 ? " was not flashed" : " were not flashed");
}

// A package that is not there now may have been there then.
std::string shortfallOfInstallation(const Value& record, const LogStretch& log,
                                    const InstallationTraces& traces) {
  std::string fault = packageFaultOf(record, traces.isCopy);
  const bool isEmpty = memberOf(record.get(job::kInputParameters), job::kFilePath) == Value("");
  const bool isSure = isEmpty || (!traces.isCopy && hasPackage(record));
  if (isSure && !fault.empty()) return fault;
  const std::string complaint = toolsComplaint(traces.standardError);
  if (!complaint.empty()) {
    const std::string where = log.isFound ? ": " : " in this run or an earlier one: ";
    return "the system's tools complained" + where + complaint;
  }
  if (fault.empty() || traces.missingApplication.empty()) return {};
  return fault + ", and no application stands at " + traces.missingApplication;
}

}  // namespace

std::string toolsComplaint(const std::vector<std::string>& standardError) {
  const auto found = std::find_if(standardError.begin(), standardError.end(), isOfATool);
  return found == standardError.end() ? "" : *found;
}

std::string shortfallOf(const Value& record, const LogStretch& log,
                        const InstallationTraces& traces) {
  const JobStatus status = statusOf(record);
  if (!status.hasSucceeded()) return {};
  if (status.command == job::kUpdateFW) return shortfallOfFirmware(record, log);
  if (status.command == job::kGetOnlineUpdateData) {
    return record.get(job::kOutput).isArray() ? "" : "the update engine left no catalogue";
  }
  return status.command == job::kUpdateSW ? shortfallOfInstallation(record, log, traces) : "";
}

std::string shortfallAt(const Places& places, const Value& record, const LogStretch& log) {
  InstallationTraces traces{.isCopy = places.isCopy};
  const JobStatus status = statusOf(record);
  const bool isInstallation = status.command == job::kUpdateSW && status.hasSucceeded();
  if (isInstallation && !places.sharedFolder.empty()) {
    traces.standardError = standardErrorOf(places.sharedFolder, record, log);
    if (!places.isCopy) traces.missingApplication = missingApplication(places.sharedFolder);
  }
  return shortfallOf(record, log, traces);
}

}  // namespace kelvane::console
