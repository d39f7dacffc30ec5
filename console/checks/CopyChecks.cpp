#include "console/checks/CopyChecks.h"

#include "console/checks/Access.h"
#include "console/checks/JobFileChecks.h"
#include "console/checks/LogFileChecks.h"
#include "console/checks/RecordChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/job/LogStretch.h"

namespace kelvane::console {

using platform::Value;

namespace {

Findings copiedJobFindings(const Places& places) {
  Findings findings = concerning(places.jobFile, jobFileContentFindings(places));
  const Value records = readJsonFile(places.jobFile).value;
  if (!records.isArray()) return findings;
  const JobsLog log(places);
  append(findings, recordFindings(places.jobFile, records, {},
                                  [&log](const Value& record) { return log.stretchOf(record); }));
  return findings;
}

}  // namespace

Findings copyFindings(const Places& places) {
  Findings findings;
  if (!places.jobFile.empty()) {
    append(findings, copiedJobFindings(places));
    append(findings, lostJobFileFindings(places));
  }
  if (!places.log.empty()) append(findings, concerning(places.log, logCopyFindings(places.log)));
  if (!places.sharedFolder.empty()) {
    append(findings, sharedSettingsFindings(sharedSettingsPath(places.sharedFolder), true));
  }
  return findings;
}

}  // namespace kelvane::console
