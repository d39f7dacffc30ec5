#include "console/commands/UpdateSw.h"

#include <filesystem>
#include <system_error>

#include "console/checks/Access.h"
#include "console/checks/SettingsChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"
#include "contract/JobFile.h"
#include "contract/Settings.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

// Where the application stands that is replaced, as the worker's settings say; empty where they do
// not. Asked before the job: the settings go with the application.
std::string installedApplication(const std::string& bundle) {
  const Value settings = readJsonFile(productSettingsPath(bundle)).value;
  if (!settings.isDictionary()) return {};
  const Value& path = settings.get(settings::kAppPath);
  return path.isString() ? path.string() : "";
}

std::string packagePath(const std::string& path) {
  std::string package = existingPath(path, "package");
  if (!platform::isFolder(package)) {
    throw Failure(kBadUsage, "package " + path + " is no application bundle: it is a file");
  }
  return package;
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

constexpr char kPackage[] = "package";

int runUpdateSw(const Given& given, const Surroundings& surroundings) {
  return updateSw({.job = jobOptionsOf(given), .package = given.text(kPackage)}, surroundings);
}

}  // namespace

int updateSw(const UpdateSwOptions& options, const Surroundings& surroundings) {
  const std::string package = packagePath(options.package);
  const std::string installed = installedApplication(options.job.bundle);
  refuseOwnPackage(package, installed);
  const Value inputs = Value::dictionary({{job::kFilePath, package}});
  const std::optional<Look> finished = runJob(options.job, job::kUpdateSW, inputs, surroundings);
  if (!finished) return kSuccess;
  if (!installed.empty() && !platform::exists(installed)) {
    throw Failure(kJobFailed, "no application stands at " + installed +
                                  ": it was removed, and the new one was not copied");
  }
  if (!installed.empty() && !surroundings.screen.json) {
    surroundings.screen.out << "installed at "
                            << displayText(installed, surroundings.screen.charset) << std::endl;
  }
  return exitCodeOf(*finished);
}

Command updateSwCommand() {
  return {.name = "update-sw",
          .description = "Replace the installed application by a new one",
          .options = jobOptions(),
          .arguments = {{.names = {kPackage},
                         .kind = ValueKind::folder,
                         .valueName = "APP.app",
                         .description = "The new application bundle",
                         .required = true}},
          .footer =
              "Example:\n"
              "  kelvane-console update-sw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
              "    ~/Shared/tmp/OnlineUpdate/SW/Manager.app",
          .run = runUpdateSw};
}

}  // namespace kelvane::console
