#include "console/checks/CatalogueChecks.h"

#include <set>

#include "console/checks/Access.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The update engine's folder for this job; empty where there is none or the job is finished.
std::string engineFolder(const Value& record) {
  if (!record.isDictionary() || record.get(job::kStateId) == Value(job::kFree)) return {};
  const Value& inputs = record.get(job::kInputParameters);
  const bool isList = inputs.isArray() && inputs.count() > 0;
  const Value& parameters = isList ? inputs.at(0) : inputs;
  if (!parameters.isDictionary()) return {};
  const Value& folder = parameters.get(job::kFolder);
  return folder.isString() ? folder.string() : "";
}

}  // namespace

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
    findings.push_back({Severity::warning, "the catalogue " + path + " is no regular file",
                        "To the worker there is no catalogue: a query ends without output, and a "
                        "download takes nothing from it.",
                        "Remove it, unless the update engine does: it makes a new one."});
  }
  return findings;
}

}  // namespace kelvane::console
