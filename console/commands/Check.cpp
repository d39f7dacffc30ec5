#include "console/commands/Check.h"

#include <algorithm>

#include "console/checks/Access.h"
#include "console/checks/BundleChecks.h"
#include "console/checks/CatalogueChecks.h"
#include "console/checks/CopyChecks.h"
#include "console/checks/Framework.h"
#include "console/checks/SettingsChecks.h"
#include "console/checks/SharedFolderChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/display/Colour.h"
#include "console/display/JsonText.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "console/job/Processes.h"
#include "contract/Paths.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

const char* nameOf(Severity severity) { return severity == Severity::error ? "error" : "warning"; }

Value asValue(const Finding& finding) {
  return Value::dictionary({{"code", nameOf(finding.code)},
                            {"severity", nameOf(finding.severity)},
                            {"path", displayText(finding.path, Charset::utf8)},
                            {"job", displayText(finding.job, Charset::utf8)},
                            {"what", displayText(finding.what, Charset::utf8)},
                            {"meaning", displayText(finding.meaning, Charset::utf8)},
                            {"advice", displayText(finding.advice, Charset::utf8)}});
}

void showJson(const Findings& findings, const Screen& screen) {
  Value all = Value::array();
  for (const Finding& finding : findings) all.append(asValue(finding));
  screen.out << jsonText(all) << std::endl;
}

void show(const Finding& finding, const Screen& screen) {
  const Colour colour = finding.severity == Severity::error ? Colour::red : Colour::yellow;
  showParagraphs({std::string(nameOf(finding.severity)) + ": " + finding.what, colour},
                 {{"means", finding.meaning}, {"to do", finding.advice}}, screen);
}

std::string counted(std::ptrdiff_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

void showSum(const Findings& findings, const Screen& screen) {
  const auto errors = std::count_if(findings.begin(), findings.end(), [](const Finding& one) {
    return one.severity == Severity::error;
  });
  const auto warnings = static_cast<std::ptrdiff_t>(findings.size()) - errors;
  screen.out << counted(errors, "error") << ", " << counted(warnings, "warning") << std::endl;
}

constexpr char kNotInACopy[] =
    "as this is a copy: processes, the bundle, who may read and write what, and what stands at the "
    "paths in the files: images, the update engine, downloads";

std::string orNone(const std::string& path) { return path.empty() ? "is not at hand" : path; }

std::vector<Paragraph> lookedAt(const Places& places, const std::string& bundle) {
  const bool isMissing = !places.jobFile.empty() && !platform::exists(places.jobFile);
  const std::string& sharedFolder = places.sharedFolder;
  std::vector<Paragraph> all = {
      {"job file", orNone(places.jobFile) + (isMissing ? " (there is none yet)" : "")},
      {"log", orNone(places.log)},
      {"settings", orNone(sharedFolder.empty() ? "" : sharedSettingsPath(sharedFolder))}};
  if (places.isCopy) {
    all.push_back({"not looked at", kNotInACopy});
    return all;
  }
  if (bundle.empty()) {
    all.push_back({"bundle", "none was given, none was looked at"});
    return all;
  }
  all.push_back({"bundle", bundle});
  all.push_back({"worker", workerIn(bundle)});
  all.push_back({"product", productSettingsPath(bundle)});
  all.push_back({"framework", frameworkPath(bundle)});
  return all;
}

// The jobs name the folders, the bundle's settings the catalogue.
Findings cataloguesOfJobs(const std::string& sharedFolder, const std::string& bundle) {
  const Value records = readJsonFile(sharedFolder + paths::kJobFile).value;
  const Value settings = readJsonFile(productSettingsPath(bundle)).value;
  if (!records.isArray() || !settings.isDictionary()) return {};
  const Value& name = settings.get("online_update_plist_name");
  return name.isString() ? catalogueFindings(records, name.string()) : Findings();
}

// The bundle's path without "/" at its end.
int runCheck(const Given& given, const Screen& screen) {
  return check({.sharedFolder = given.text(kSharedOption),
                .bundle = given.text(kBundleOption),
                .copy = copyOptionsOf(given)},
               screen);
}

}  // namespace

Findings findingsOf(const std::string& sharedFolder, const std::string& bundle,
                    const WorkerRuns& workerRuns) {
  Findings findings = sharedFolderFindings(sharedFolder, workerRuns);
  if (bundle.empty()) return findings;
  append(findings, cataloguesOfJobs(sharedFolder, bundle));
  append(findings, bundleFindings(bundle));
  return findings;
}

Findings findingsOf(const Places& places, const std::string& bundle) {
  if (places.isCopy) return copyFindings(places);
  return findingsOf(places.sharedFolder, bundle, [&places](const std::string& logId) {
    return workerRuns(logId, places.sharedFolder);
  });
}

int check(const CheckOptions& options, const Screen& screen) {
  const bool isCopy = options.copy.offline;  // a folder that is no copy may be a finding itself
  const Places places =
      placesOf(options.sharedFolder, options.copy, isCopy ? workersShared : asPrefix);
  const std::string bundle = withoutSlashAtEnd(options.bundle);
  const Findings findings = findingsOf(places, bundle);
  if (screen.json) {
    showJson(findings, screen);
  } else if (findings.empty()) {
    showParagraphs({"no findings", Colour::green}, lookedAt(places, bundle), screen);
  } else {
    for (const Finding& finding : findings) show(finding, screen);
    showSum(findings, screen);
    if (places.isCopy) showLines({std::string("not looked at, ") + kNotInACopy}, screen);
  }
  return findings.empty() ? kSuccess : kFindings;
}

Command checkCommand() {
  std::vector<Option> options = placeOptions();
  options.insert(options.end(),
                 {bundleOption(), jsonFlag("Show the findings as JSON for machines")});
  return {.name = "check",
          .description = "Examine a shared folder and a bundle as the worker will see them",
          .options = options,
          .footer =
              "Of a copy no processes, rights and bundle are looked at, and nothing that the\n"
              "files name.\n"
              "Exit status: 0 no findings, 1 findings. With --json each finding has a code, which\n"
              "stays the same from version to version.\n"
              "Examples:\n"
              "  kelvane-console check --shared ~/Shared --bundle /Manager/Manager.app\n"
              "  kelvane-console check --shared ~/Copies/Shared --offline",
          .run = runCheck};
}

}  // namespace kelvane::console
