#include "console/checks/CatalogueChecks.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "console/checks/Access.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The update engine's folder for this job; empty where there is none or the job is finished.
std::string engineFolder(const Value& record) {
  if (!record.isDictionary() || record.get(job::kStateId) == Value(job::kFree)) return {};
  return engineFolderOf(record.get(job::kInputParameters));
}

}  // namespace

bool isConsolesEngineFolder(const std::string& folder, const std::string& sharedFolder) {
  std::error_code unknown;
  return !sharedFolder.empty() &&
         std::filesystem::equivalent(folder, sharedFolder + kConsolesEngineFolder, unknown);
}

// Only of jobs that no engine has begun: what stands there is somebody else's.
std::string engineFolderFault(const Value& record, const std::string& sharedFolder) {
  const std::string folder = engineFolder(record);
  if (folder.empty() || record.get(job::kStateId) != Value(job::kWait)) return {};
  const std::vector<std::string> names = platform::listFolder(folder);
  if (names.empty() || isConsolesEngineFolder(folder, sharedFolder)) return {};
  const std::string first = *std::min_element(names.begin(), names.end());
  return "the update engine's folder " + folder + " is not empty: it holds " +
         (names.size() == 1 ? first : first + " and others");
}

Findings engineFolderFindings(const Value& records, const std::string& sharedFolder) {
  Findings findings;
  for (const Value& record : records.elements()) {
    const std::string fault = engineFolderFault(record, sharedFolder);
    if (fault.empty()) continue;
    findings.push_back({Code::engineFolderInUse, Severity::warning, fault, kEngineFolderMeaning,
                        "Add the job anew with a folder of its own, which need not be there yet.",
                        engineFolder(record), stringOf(record.get(job::kLogId))});
  }
  return findings;
}

Findings catalogueFindings(const Value& records, const std::string& name) {
  std::set<std::string> folders;
  for (const Value& record : records.elements()) folders.insert(engineFolder(record));
  folders.erase("");
  Findings findings;
  for (const std::string& folder : folders) {
    std::string path = folder;
    path.append("/").append(name).append(".plist");
    const EntryKind kind = kindOf(path);
    if (kind != EntryKind::folder && kind != EntryKind::other) continue;
    findings.push_back({Code::catalogueNoFile, Severity::warning,
                        "the catalogue " + path + " is no regular file",
                        "To the worker there is no catalogue: a query ends without output, and a "
                        "download takes nothing from it.",
                        "Remove it, unless the update engine does: it makes a new one.", path});
  }
  return findings;
}

}  // namespace kelvane::console
