#include "console/commands/UpdateSw.h"

#include <filesystem>
#include <system_error>

#include "console/application/Application.h"
#include "console/checks/SettingsChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Confirmation.h"
#include "console/commands/Given.h"
#include "console/commands/JobEnd.h"
#include "console/display/Paragraphs.h"
#include "console/job/ExitCode.h"
#include "contract/JobFile.h"
#include "contract/Settings.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The folder itself where a link is given: the link would be copied.
std::string packagePath(const std::string& path) {
  std::error_code failed;
  const std::string package = existingPath(path, "package");
  const std::string resolved = std::filesystem::canonical(package, failed).string();
  return failed ? package : resolved;
}

void requireApplication(const std::string& package) {
  const std::string fault = packageFault(package);
  if (fault.empty()) return;
  throw Failure(kBadUsage, (package.empty() ? "the package's path" : "package " + package) + fault);
}

// Of a worker that is not the bundle's it is not known which settings it has.
void requirePlace(const std::string& installed, const JobOptions& job) {
  if (!installed.empty() || job.bundle.empty() || !job.worker.empty()) return;
  throw Failure(kBadUsage, productSettingsPath(job.bundle) + " names no application (\"" +
                               std::string(settings::kAppPath) +
                               "\"): the worker would replace nothing");
}

// The worker would remove the package with the application.
void refuseOwnPackage(const std::string& package, const std::string& installed) {
  std::error_code failed;
  const std::string inside = std::filesystem::weakly_canonical(package, failed).string() + "/";
  const std::string outside = std::filesystem::weakly_canonical(installed, failed).string() + "/";
  if (!installed.empty() && inside.rfind(outside, 0) == 0) {
    throw Failure(kBadUsage, "package " + package + " lies in the application at " + installed +
                                 " and would be removed with it");
  }
}

std::string versionText(const std::string& bundle) {
  const std::string version = versionOf(bundle);
  return version.empty() ? "an unknown version" : "version " + version;
}

std::string intention(const Installation& installation, const UpdateSwOptions& options) {
  const std::string version = versionText(options.package);
  const std::string& installed = installation.installed;
  if (installed.empty()) {
    return "which application the worker replaces, and which version, is not known, as " +
           installation.whyNotKnown + ": " + version + " is to take its place";
  }
  if (!platform::exists(installed)) {
    return installed + ": " + version + " is to be installed where nothing stands";
  }
  return installed + ": " + versionText(installed) + " is to be replaced by " + version;
}

// Says what is to be done, and asks before an application goes.
void announce(const Installation& installation, const UpdateSwOptions& options,
              const Surroundings& surroundings) {
  const std::string& installed = installation.installed;
  showNotice(intention(installation, options), options.job.noWait, surroundings.screen);
  if (options.yes || (!installed.empty() && !platform::exists(installed))) return;
  requireConfirmed("Remove the application and install the new one?", surroundings);
}

constexpr char kPackage[] = "package";

int runUpdateSw(const Given& given, const Surroundings& surroundings) {
  return updateSw(
      {.job = jobOptionsOf(given), .package = given.text(kPackage), .yes = given.has(kYesFlag)},
      surroundings);
}

std::vector<Option> updateSwOptions() {
  std::vector<Option> options = jobOptions();
  options.push_back(yesFlag());
  return options;
}

}  // namespace

int install(const UpdateSwOptions& options, const Submits& submit,
            const Surroundings& surroundings) {
  Installation installation = installationOf(options.job.bundle);
  const std::string& installed = installation.installed;
  requireApplication(options.package);
  requirePlace(installed, options.job);
  refuseOwnPackage(options.package, installed);
  announce(installation, options, surroundings);
  if (!installed.empty()) installation.replaced = versionOf(installed);
  const std::optional<Look> finished = submit();
  if (!finished) return kSuccess;
  return endOfInstallation(*finished, installation, options.job.sharedFolder, surroundings.screen);
}

int updateSw(const UpdateSwOptions& options, const Surroundings& surroundings) {
  UpdateSwOptions absolute = options;
  absolute.package = packagePath(options.package);
  const Value inputs = Value::dictionary({{job::kFilePath, absolute.package}});
  return install(
      absolute, [&] { return runJob(options.job, job::kUpdateSW, inputs, surroundings); },
      surroundings);
}

Command updateSwCommand() {
  return {
      .name = "update-sw",
      .description = "Replace the installed application by a new one",
      .options = updateSwOptions(),
      .arguments = {{.names = {kPackage},
                     .kind = ValueKind::folder,
                     .valueName = "APP.app",
                     .description = "The new application bundle",
                     .required = true}},
      .footer =
          "Afterwards it is compared with the package, unless --no-wait is given; where no bundle\n"
          "is given, it cannot be, and the exit status is 1.\n"
          "Example:\n"
          "  kelvane-console update-sw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
          "    ~/Shared/tmp/OnlineUpdate/SW/Manager.app",
      .run = runUpdateSw};
}

}  // namespace kelvane::console
