#include "console/commands/JobEnd.h"

#include <vector>

#include "console/application/Application.h"
#include "console/application/InstallationFault.h"
#include "console/checks/SettingsChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/Submission.h"
#include "console/display/JsonText.h"
#include "console/display/Packages.h"
#include "console/explain/PackageFault.h"
#include "console/job/ExitCode.h"
#include "console/job/RecordValues.h"
#include "console/job/StandardError.h"
#include "contract/JobFile.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

std::vector<std::string> complaintsAbout(const Look& finished, const std::string& sharedFolder) {
  return standardErrorInShort(existingShared(sharedFolder), finished.status.logId);
}

// --- online updates

void requireCatalogue(const Look& finished, const std::string& sharedFolder, const Screen& screen) {
  const bool isQuery = finished.status.command == job::kGetOnlineUpdateData;
  if (!isQuery || finished.record.get(job::kOutput).isArray()) return;
  // With another result than 0 it was shown already.
  const bool isTold = !finished.status.hasSucceeded() && !screen.json;
  throw Failure(kJobFailed, "the update engine left no catalogue",
                isTold ? std::vector<std::string>() : complaintsAbout(finished, sharedFolder));
}

// --- installations

std::string packageOf(const Look& finished) {
  return stringOf(memberOf(finished.record.get(job::kInputParameters), job::kFilePath));
}

std::string faultOfUnknown(const std::string& whyNotKnown) {
  std::string fault =
      "whether the application was replaced is not known: the worker's result tells nothing of it, "
      "and ";
  fault += whyNotKnown;
  return fault +
         ". Look at the application; with the worker's bundle in --bundle it is compared with the "
         "package";
}

// As far as that can be told.
std::string faultAfterwards(const Look& finished, const Installation& one,
                            const std::string& sharedFolder) {
  // The bundle's settings may have gone with the application.
  const std::string place =
      one.installed.empty() ? missingApplication(existingShared(sharedFolder)) : one.installed;
  if (!place.empty() && !platform::exists(place)) {
    return installationFault(packageOf(finished), place);
  }
  std::string fault = packageFaultOf(finished.record, false);
  if (fault.empty() && packageOf(finished).empty()) fault = "its record names no package";
  if (fault.empty() && one.installed.empty()) return faultOfUnknown(one.whyNotKnown);
  if (fault.empty()) return installationFault(packageOf(finished), one.installed);
  if (one.installed.empty()) return fault;
  return fault.append(". What stands at ")
      .append(one.installed)
      .append(" was not compared with it");
}

// For machines, behind the record.
void showInstallation(const Look& finished, const Installation& one, const std::string& fault,
                      const Screen& screen) {
  Value told = Value::dictionary();
  if (!one.installed.empty()) {
    told.set("path", displayText(one.installed, Charset::utf8));
    told.set("is_package", Value::boolean(fault.empty()));
  }
  const std::string version = versionOf(packageOf(finished));
  if (!one.replaced.empty()) told.set("replaced_version", displayText(one.replaced, Charset::utf8));
  if (!version.empty()) told.set("package_version", displayText(version, Charset::utf8));
  if (!fault.empty()) told.set("fault", displayText(fault, Charset::utf8));
  screen.out << jsonLine(Value::dictionary(
                    {{job::kLogId, finished.status.logId}, {"console_installation", told}}))
             << std::endl;
}

}  // namespace

int endOfJob(const Look& finished, const std::string& sharedFolder, const Screen& screen) {
  requireCatalogue(finished, sharedFolder, screen);
  if (!screen.json) showPackages(finished.record, screen);
  return exitCodeOf(finished);
}

Installation installationOf(const std::string& bundle) {
  Installation one;
  if (bundle.empty()) {
    one.whyNotKnown = "no bundle is given";
    return one;
  }
  one.installed = installedApplication(bundle);
  if (one.installed.empty()) {
    one.whyNotKnown = productSettingsPath(bundle) + " names no application";
  }
  return one;
}

int endOfInstallation(const Look& finished, const Installation& installation,
                      const std::string& sharedFolder, const Screen& screen) {
  const std::string fault = faultAfterwards(finished, installation, sharedFolder);
  if (screen.json) showInstallation(finished, installation, fault, screen);
  // The system's tools tell nowhere else what went wrong.
  if (!fault.empty()) throw Failure(kJobFailed, fault, complaintsAbout(finished, sharedFolder));
  if (!screen.json) {
    screen.out << "installed at " << displayText(installation.installed, screen.charset)
               << std::endl;
  }
  return exitCodeOf(finished);
}

}  // namespace kelvane::console
