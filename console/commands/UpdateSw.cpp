#include "console/commands/UpdateSw.h"

#include <filesystem>
#include <system_error>

#include "console/application/Application.h"
#include "console/application/InstallationFault.h"
#include "console/checks/SettingsChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Confirmation.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"
#include "console/job/StandardError.h"
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
  const std::string fault = applicationFault(package);
  if (fault.empty()) return;
  throw Failure(kBadUsage, "package " + package + " is no application bundle: " + fault);
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

// Says what is to be done, and asks before an application goes.
void announce(const std::string& installed, const UpdateSwOptions& options,
              const Surroundings& surroundings) {
  const Screen& screen = surroundings.screen;
  const bool replaces = platform::exists(installed);
  std::string line = installed + ": ";
  if (replaces) line += versionText(installed) + " is replaced by ";
  line += versionText(options.package);
  if (!replaces) line += " is installed where nothing stands";
  if (!screen.json) screen.out << displayText(line, screen.charset) << std::endl;
  if (!replaces || options.yes) return;
  requireConfirmed("Remove the application and install the new one?", surroundings);
}

// What the system's tools said is the only trace of what went wrong.
void requireInstalled(const std::string& installed, const UpdateSwOptions& options,
                      const Look& finished) {
  const std::string fault = installationFault(options.package, installed);
  if (fault.empty()) return;
  throw Failure(
      kJobFailed, fault,
      standardErrorInShort(existingShared(options.job.sharedFolder), finished.status.logId));
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
  // Asked before the job: the settings go with the application.
  const std::string installed = installedApplication(options.job.bundle);
  requireApplication(options.package);
  requirePlace(installed, options.job);
  refuseOwnPackage(options.package, installed);
  if (!installed.empty()) announce(installed, options, surroundings);
  const std::optional<Look> finished = submit();
  if (!finished) return kSuccess;
  const Screen& screen = surroundings.screen;
  if (!installed.empty()) requireInstalled(installed, options, *finished);
  if (!screen.json) {
    screen.out << (installed.empty() ? "where the application stands is not known: it was not "
                                       "compared with the package"
                                     : "installed at " + displayText(installed, screen.charset))
               << std::endl;
  }
  return exitCodeOf(*finished);
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
  return {.name = "update-sw",
          .description = "Replace the installed application by a new one",
          .options = updateSwOptions(),
          .arguments = {{.names = {kPackage},
                         .kind = ValueKind::folder,
                         .valueName = "APP.app",
                         .description = "The new application bundle",
                         .required = true}},
          .footer =
              "Afterwards it is compared with the package, unless --no-wait is given.\n"
              "Example:\n"
              "  kelvane-console update-sw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
              "    ~/Shared/tmp/OnlineUpdate/SW/Manager.app",
          .run = runUpdateSw};
}

}  // namespace kelvane::console
