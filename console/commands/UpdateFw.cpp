#include "console/commands/UpdateFw.h"

#include "console/checks/Access.h"
#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Confirmation.h"
#include "console/commands/DryRun.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"
#include "contract/JobFile.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The worker takes no more of an image's path: a longer one would lead to another file.
constexpr std::size_t kMostPathBytes = 255;

Value inputEntry(const std::string& update) {
  const std::size_t sign = update.find('=');
  if (sign == std::string::npos) {
    throw Failure(kBadUsage, "\"" + update + "\" is not of the form WWN=IMAGE");
  }
  const std::string wwn = update.substr(0, sign);
  requireText(wwn, "the WWN of \"" + update + "\"");
  return Value::dictionary(
      {{job::kWwn, wwn}, {job::kFilePath, existingImage(update.substr(sign + 1))}});
}

Value inputParameters(const std::vector<std::string>& updates) {
  if (updates.empty()) throw Failure(kBadUsage, "no WWN=IMAGE is given");
  Value inputs = Value::array();
  for (const std::string& update : updates) inputs.append(inputEntry(update));
  return inputs;
}

int dryRun(const JobOptions& job, const Value& inputs, const Screen& screen) {
  if (job.bundle.empty()) {
    throw Failure(kBadUsage, "--dry-run asks the bundle's framework, and no bundle is given");
  }
  return showRehearsal(rehearseIn(job.bundle, existingShared(job.sharedFolder), inputs), screen);
}

// How the job would go, as far as it can be told; whether it can succeed.
bool showOutlook(const JobOptions& job, const Value& inputs, const Screen& screen) {
  try {
    const Value all = rehearseIn(job.bundle, existingShared(job.sharedFolder), inputs);
    showEntries(all, screen);
    return canSucceed(all);
  } catch (const Failure& failure) {
    screen.out << displayText(std::string("how it would go cannot be told: ") + failure.what(),
                              screen.charset)
               << std::endl;
    return true;
  }
}

constexpr char kUpdates[] = "updates";
constexpr char kDryRunFlag[] = "--dry-run";

int runUpdateFw(const Given& given, const Surroundings& surroundings) {
  return updateFw({.job = jobOptionsOf(given),
                   .updates = given.texts(kUpdates),
                   .dryRun = given.has(kDryRunFlag),
                   .yes = given.has(kYesFlag)},
                  surroundings);
}

std::vector<Option> updateFwOptions() {
  std::vector<Option> options = jobOptions();
  options.push_back({.names = {kDryRunFlag},
                     .kind = ValueKind::none,
                     .description = "Show how it would go, as far as that can be told without "
                                    "flashing, and submit nothing"});
  options.push_back(yesFlag());
  return options;
}

}  // namespace

std::string existingImage(const std::string& path) {
  std::string image = existingPath(path, "image");
  if (platform::isFolder(image)) throw Failure(kBadUsage, "image " + path + " is a folder");
  if (kindOf(image) == EntryKind::other) {
    throw Failure(kBadUsage, "image " + path + " is no regular file");
  }
  if (const std::string cause = refusal(image, Access::read); !cause.empty()) {
    throw Failure(kBadUsage, "image " + path + " cannot be read: " + cause);
  }
  if (image.size() > kMostPathBytes) {
    throw Failure(kBadUsage, "image " + image + ": the path is longer than " +
                                 std::to_string(kMostPathBytes) + " bytes");
  }
  return image;
}

void announceUpdate(const JobOptions& job, const Value& inputs, const Surroundings& surroundings) {
  if (surroundings.screen.answers == nullptr) return;
  const bool canSucceed = job.bundle.empty() || showOutlook(job, inputs, surroundings.screen);
  requireConfirmed(canSucceed ? "Flash?" : "It would fail. Submit it all the same?", surroundings);
}

int updateFw(const UpdateFwOptions& options, const Surroundings& surroundings) {
  const Value inputs = inputParameters(options.updates);
  if (options.dryRun) return dryRun(options.job, inputs, surroundings.screen);
  if (!options.yes) announceUpdate(options.job, inputs, surroundings);
  const std::optional<Look> finished = runJob(options.job, job::kUpdateFW, inputs, surroundings);
  return finished ? exitCodeOf(*finished) : kSuccess;
}

Command updateFwCommand() {
  return {.name = "update-fw",
          .description = "Update the firmware of controllers",
          .options = updateFwOptions(),
          .arguments = {{.names = {kUpdates},
                         .kind = ValueKind::assignedFile,
                         .valueName = "WWN=IMAGE",
                         .description = "A controller and the image it gets",
                         .required = true,
                         .repeated = true}},
          .footer =
              "A dry run asks the bundle's framework for the controllers, and whether the images\n"
              "are for them; its exit status is 0, or 1 where an entry would fail. In a terminal\n"
              "the same is shown before the job is submitted, and the user is asked.\n"
              "Example:\n"
              "  kelvane-console update-fw --shared ~/Shared --bundle /Manager/Manager.app \\\n"
              "    5000A1B2C3D4E5F6=controller.img",
          .run = runUpdateFw};
}

}  // namespace kelvane::console
