#include "console/checks/SettingsChecks.h"

#include <filesystem>
#include <system_error>

#include "console/checks/Access.h"
#include "console/job/RecordValues.h"
#include "contract/Paths.h"
#include "contract/Settings.h"
#include "platform/File.h"

namespace kelvane::console {

namespace fs = std::filesystem;

using platform::Value;

namespace {

constexpr char kNoEngine[] =
    "The update engine cannot be started: queries and downloads stay in state RUN, with an error "
    "line in the log. Firmware jobs and installations are not concerned.";
constexpr char kNoProduct[] =
    "All product settings are missing to the worker: an installation replaces nothing, a query "
    "ends without output, a download leaves its packages where they are. Firmware jobs are not "
    "concerned.";
constexpr char kUnusable[] =
    "The worker gives the step up that reads it: an installation is not started, a download ends "
    "with 259.";

constexpr ProductSetting kProductSettings[] = {
    {settings::kAppPath, Severity::error,
     "An installation removes and copies nothing, and ends with 0 all the same."},
    {settings::kCatalogueName, Severity::error,
     "The catalogue is not found: a query ends without output, and a download takes nothing from "
     "it."},
    {settings::kProductIdSw, Severity::warning,
     "The application counts as firmware: its download goes to tmp/OnlineUpdate/FW, and no system "
     "version is looked at."},
    {settings::kAppName, Severity::warning,
     "The package of the application is not found in its download, unless the catalogue names it."},
    {settings::kProductIdKorfw, Severity::warning,
     "Downloads of this product go to tmp/OnlineUpdate/FW instead of KORFW."},
    {settings::kProductIdZentanfw, Severity::warning,
     "Downloads of this product go to tmp/OnlineUpdate/FW instead of ZENTANAS."},
    {settings::kProductIdTarsel2fw, Severity::warning,
     "The package of this product is looked for under the catalogue's name for it, not as "
     "FW_QRX550.img."},
    {settings::kProductIdTarsel3fw, Severity::warning,
     "The package of this product is looked for under the catalogue's name for it, not as "
     "FW_T3.img."},
};

// The settings in the file; nothing, and a finding, where there is no object in it.
Value readSettings(const std::string& path, const char* meaning, Findings& findings) {
  JsonFile file = readJsonFile(path);
  if (file.fault.empty() && !file.value.isDictionary()) {
    file.fault = path + " is an array, not an object";
  }
  if (file.fault.empty()) return file.value;
  findings.push_back({Code::settingsUnreadable, Severity::error, file.fault, meaning,
                      "Install the application anew, or write the file as the settings' reference "
                      "page shows it."});
  return {};
}

// Of a copy it is not known whether the file was left out or is missing to the worker as well.
Findings notSent(const std::string& path) {
  return {{Code::settingsUnreadable, Severity::warning,
           path + " is not among the files of the copy",
           "Whether it is there for the worker, and what it says, is not known.",
           "Ask for it where the update engine is concerned: queries and downloads."}};
}

Finding engineFinding(const std::string& what) {
  return {Code::engineMissing, Severity::error, what, kNoEngine,
          "Make AppPath the bundle that has the update engine in Contents/Resources."};
}

void findEngine(const std::string& settings, const std::string& application, Findings& findings) {
  const std::string engine = application + "/" + paths::kEngine;
  if (kindOf(application) != EntryKind::folder) {
    findings.push_back(
        engineFinding(settings + ": AppPath leads to " + application + ", which is no bundle"));
  } else if (kindOf(engine) == EntryKind::missing) {
    findings.push_back(engineFinding("the update engine " + engine + " does not exist"));
  } else if (kindOf(engine) == EntryKind::folder || kindOf(engine) == EntryKind::other) {
    findings.push_back(engineFinding("the update engine " + engine + " is no file"));
  } else if (const std::string cause = refusal(engine, Access::execute); !cause.empty()) {
    findings.push_back({Code::engineNotExecutable, Severity::error,
                        "the update engine " + engine + " cannot be executed: " + cause, kNoEngine,
                        "Make it executable for the user that runs the worker."});
  } else if (const std::string fault = programFault(engine); !fault.empty()) {
    findings.push_back(
        engineFinding("the update engine " + engine + " cannot be started: " + fault));
  }
}

void findKeys(const std::string& path, const Value& settings, Findings& findings) {
  for (const ProductSetting& setting : kProductSettings) {
    const Value& value = settings.get(setting.key);
    if (value.isString()) continue;
    const std::string name = path + ": \"" + setting.key + "\"";
    if (value.isNothing()) {
      findings.push_back({Code::settingMissing, setting.severity, name + " is missing",
                          setting.missing, "Add the key with the product's value, a string."});
    } else {
      findings.push_back({Code::settingNoString, Severity::error, name + " is no string", kUnusable,
                          "Make it a string."});
    }
  }
}

// The first folder below the application, or itself, whose entries the user cannot remove.
std::string fixedPart(const std::string& application) {
  std::error_code untold;
  std::string cause = changeRefusal(application);
  for (fs::recursive_directory_iterator entry(application, untold), end;
       cause.empty() && !untold && entry != end; entry.increment(untold)) {
    std::error_code unknown;
    if (!entry->is_directory(unknown) || entry->is_symlink(unknown)) continue;
    cause = changeRefusal(entry->path().string());
  }
  return cause;
}

void findFixedParts(const std::string& application, Findings& findings) {
  const std::string fixed = fixedPart(application);
  if (fixed.empty()) return;
  findings.push_back(
      {Code::applicationFixed, Severity::error, "the application cannot be replaced: " + fixed,
       "An installation removes and copies what it may, and ends with 0 all the same: the old "
       "application stays, or a mixture of both.",
       "Give the user that runs the worker the right to write in all folders of the application.",
       application});
}

void findApplication(const std::string& path, const std::string& application, Findings& findings) {
  if (kindOf(application) != EntryKind::folder) {
    findings.push_back(
        {Code::applicationMissing, Severity::warning,
         path + ": AppPath leads to " + application + ", where no application stands",
         "An installation replaces nothing; it only copies the new application there, where the "
         "folder above it exists.",
         "Make AppPath the installed application."});
    return;
  }
  const std::string refused = changeRefusal(platform::withoutLastComponent(application));
  if (refused.empty()) {
    findFixedParts(application, findings);
    return;
  }
  findings.push_back({Code::applicationFolderFixed, Severity::error,
                      "the application's folder cannot be changed: " + refused,
                      "An installation can neither remove the application nor copy the new one to "
                      "its place, and ends with 0 all the same.",
                      "Give the user that runs the worker the right to write in the folder."});
}

}  // namespace

std::string installedApplication(const std::string& bundle) {
  const Value settings = readJsonFile(productSettingsPath(bundle)).value;
  return stringOf(memberOf(settings, settings::kAppPath));
}

std::string missingApplication(const std::string& sharedFolder) {
  const Value settings = readJsonFile(sharedSettingsPath(sharedFolder)).value;
  std::string application = stringOf(memberOf(settings, settings::kAppPath));
  return kindOf(application) == EntryKind::missing ? application : "";
}

std::string sharedSettingsPath(const std::string& sharedFolder) {
  return sharedFolder + paths::kSharedSettings;
}

std::string productSettingsPath(const std::string& bundle) {
  return bundle + "/" + paths::kProductSettings;
}

std::span<const ProductSetting> productSettings() { return kProductSettings; }

Findings sharedSettingsFindings(const std::string& path, bool isCopy) {
  Findings findings;
  if (isCopy && kindOf(path) == EntryKind::missing) return concerning(path, notSent(path));
  const Value settings = readSettings(path, kNoEngine, findings);
  if (!settings.isDictionary()) return concerning(path, findings);
  const Value& application = settings.get(settings::kAppPath);
  if (application.isString()) {
    if (!isCopy) findEngine(path, application.string(), findings);
  } else {
    findings.push_back(engineFinding(path + ": \"AppPath\" " +
                                     (application.isNothing() ? "is missing" : "is no string")));
  }
  return concerning(path, findings);
}

Findings productSettingsFindings(const std::string& path) {
  Findings findings;
  const Value settings = readSettings(path, kNoProduct, findings);
  if (!settings.isDictionary()) return concerning(path, findings);
  findKeys(path, settings, findings);
  const Value& application = settings.get(settings::kAppPath);
  if (application.isString()) findApplication(path, application.string(), findings);
  return concerning(path, findings);
}

}  // namespace kelvane::console
