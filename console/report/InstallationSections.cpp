#include "console/report/InstallationSections.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <sys/utsname.h>
#include <unistd.h>

#include "console/application/Application.h"
#include "console/checks/Access.h"
#include "console/checks/BundleChecks.h"
#include "console/checks/Framework.h"
#include "console/checks/RightsChecks.h"
#include "console/checks/SettingsChecks.h"
#include "console/report/DiskEntries.h"
#include "console/report/Tables.h"
#include "contract/Paths.h"
#include "contract/Settings.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr char kUntold[] = "(it tells none)";
constexpr std::size_t kMostSettingsBytes = 64UL * 1024;

std::string bundleAdvice(const ReportMatter& matter) {
  return matter.subject.places.isCopy ? "No bundle goes with a copy."
                                      : "No bundle was given (--bundle): it was not looked at.";
}

// --- findings

void showFinding(Html& page, const Finding& finding) {
  const bool isError = finding.severity == Severity::error;
  page.open("li", {{"class", isError ? "finding error" : "finding"}});
  page.open("p");
  page.label("strong", isError ? "error" : "warning");
  page.words(" ");
  page.text(finding.what);
  page.words(" ");
  page.label("code", nameOf(finding.code));
  page.close();
  showPairs(page, {{"This means", finding.meaning}, {"What to do", finding.advice}});
  page.close();
}

// --- versions

std::string orUntold(const std::string& version) { return version.empty() ? kUntold : version; }

// Of a library the version that its real name ends with: "libZORAPI.so.2.1".
std::string versionInName(const std::string& path) {
  std::error_code untold;
  const std::string name = std::filesystem::canonical(path, untold).filename().string();
  const std::size_t digit = name.find_first_of("0123456789");
  return untold || digit == std::string::npos ? "" : name.substr(digit);
}

// Of a framework on macOS what its property list tells.
std::string versionBeside(const std::string& library) {
  return versionOfPropertyList(platform::withoutLastComponent(library) + "/Resources/Info.plist");
}

std::string frameworkVersion(const std::string& library) {
  const std::string told = versionBeside(library);
  return orUntold(told.empty() ? versionInName(library) : told);
}

// The engine that the shared folder's settings lead to; empty where they do not, or to one of
// another system.
std::string enginePath(const Places& places) {
  if (places.isCopy) return {};
  const Value settings = readJsonFile(sharedSettingsPath(places.sharedFolder)).value;
  if (!settings.isDictionary()) return {};
  const Value& application = settings.get(settings::kAppPath);
  if (!application.isString()) return {};
  return application.string() + "/" + paths::kEngine;
}

void addFile(HtmlTable& table, const char* what, const std::string& version,
             const std::string& path) {
  const DiskEntry place = diskEntryAt(path);
  const std::string size = place.size.empty() ? place.kind : place.size + " bytes";
  table.addRow({what, version, path, size, place.modified});
}

std::string systemText() {
  struct utsname names = {};
  if (::uname(&names) != 0) return kUntold;
  return std::string(names.sysname) + " " + names.release + " " + names.machine;
}

// --- settings

// What can be read is shown as it was understood, so that nothing in it hides from the redaction.
void showSettingsFile(Html& page, const char* heading, const std::string& path, bool isRedacted) {
  page.label("h3", heading);
  page.element("p", path);
  const JsonFile file = readJsonFile(path);
  if (file.fault.empty()) {
    page.element("pre", platform::printJson(file.value).value_or("(cannot be shown)"), {},
                 {.most = kMostSettingsBytes});
    return;
  }
  page.element("p", file.fault);
  if (!platform::exists(path)) return;
  if (isRedacted) {
    page.label("p", "It is left out: what is to be replaced in it cannot be told for sure.");
    return;
  }
  try {
    page.element("pre", platform::readFile(path), {}, {.most = kMostSettingsBytes});
  } catch (const platform::Exception&) {
    return;  // the fault has told why
  }
}

}  // namespace

void showFindings(Html& page, const ReportMatter& matter) {
  openSection(page, "findings", "What check finds");
  if (matter.findings.empty()) {
    page.label("p", "No findings.");
  } else {
    page.open("ul", {{"class", "findings"}});
    const std::size_t shown = std::min(matter.findings.size(), kMostRows);
    for (std::size_t i = 0; i < shown; ++i) showFinding(page, matter.findings[i]);
    page.close();
    tellLeftOut(page, matter.findings.size() - shown, "other is", "others are");
  }
  if (matter.subject.bundle.empty()) page.label("p", bundleAdvice(matter));
  page.close();
}

void showVersions(Html& page, const ReportMatter& matter) {
  const std::string& bundle = matter.subject.bundle;
  openSection(page, "versions", "Versions");
  {
    HtmlTable table(page, "Versions", {"What", "Version", "File", "Size", "Modified"});
    table.addRow({"console", matter.subject.version, "kelvane-console", "", ""});
    if (!bundle.empty()) {
      addFile(table, "application", orUntold(versionOf(bundle)), bundle);
      addFile(table, "worker", kUntold, workerIn(bundle));
      const std::string framework = frameworkPath(bundle);
      addFile(table, "framework", frameworkVersion(framework), framework);
    }
    const std::string engine = enginePath(matter.subject.places);
    if (!engine.empty()) addFile(table, "update engine", kUntold, engine);
    table.addRow({"system that made the report", systemText(), "", "", ""});
  }
  page.label("p",
             "Nothing is started for this: where a piece tells no version, its size and the time "
             "of its last change stand for it.");
  if (bundle.empty()) page.label("p", bundleAdvice(matter));
  page.close();
}

void showSettings(Html& page, const ReportMatter& matter, bool isRedacted) {
  openSection(page, "settings", "Settings");
  const std::string& shared = matter.subject.places.sharedFolder;
  if (shared.empty()) {
    page.label("p", "No shared folder is at hand.");
  } else {
    showSettingsFile(page, "Of the shared folder", sharedSettingsPath(shared), isRedacted);
  }
  if (matter.subject.bundle.empty()) {
    page.label("p", bundleAdvice(matter));
  } else {
    showSettingsFile(page, "Of the product", productSettingsPath(matter.subject.bundle),
                     isRedacted);
  }
  page.close();
}

void showDiskEntries(Html& page, const ReportMatter& matter) {
  openSection(page, "places", "Owners and permissions");
  if (matter.subject.places.isCopy) {
    page.label("p", "A copy's owners and permissions tell nothing of what it was made of.");
    page.close();
    return;
  }
  page.open("p");
  page.words("The report was made by ");
  page.text(userName(::geteuid()));
  page.words(". Times are local, as at its head.");
  page.close();
  {
    HtmlTable table(page, "Owners and permissions",
                    {"Path", "Kind", "Permissions", "Owner", "Group", "Size", "Modified"});
    for (const DiskEntry& one : diskEntriesOf(matter.subject.places, matter.subject.bundle)) {
      table.addRow(
          {one.path, one.kind, one.permissions, one.owner, one.group, one.size, one.modified});
    }
  }
  if (matter.subject.bundle.empty()) page.label("p", bundleAdvice(matter));
  page.close();
}

}  // namespace kelvane::console
