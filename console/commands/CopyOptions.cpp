#include "console/commands/CopyOptions.h"

#include "console/commands/Arguments.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

constexpr char kOfflineFlag[] = "--offline";
constexpr char kJobFileOption[] = "--job-file";
constexpr char kLogFileOption[] = "--log-file";

std::string fileOf(const Given& given, const char* option, const std::string& what) {
  if (!given.has(option)) return {};
  if (given.isOnTheLine(kSharedOption)) {
    std::string message = option;
    throw Failure(kBadUsage, message.append(" and --shared exclude one another: the file is looked "
                                            "at in place of the folder's"));
  }
  return existingPath(given.text(option), what);
}

}  // namespace

std::vector<Option> placeOptions(const std::string& need) {
  Option shared = sharedOption();
  shared.description += need;
  shared.required = false;
  return {shared,
          {.names = {kOfflineFlag},
           .kind = ValueKind::none,
           .description = "The shared folder is a copy from another system: look at its files "
                          "alone, and at no process"},
          {.names = {kJobFileOption},
           .kind = ValueKind::file,
           .valueName = "FILE",
           .description = "A copy of the job file alone, in place of a shared folder"},
          {.names = {kLogFileOption},
           .kind = ValueKind::file,
           .valueName = "FILE",
           .description = "A copy of the log alone, in place of a shared folder"}};
}

CopyOptions copyOptionsOf(const Given& given) {
  return {.offline = given.has(kOfflineFlag),
          .jobFile = fileOf(given, kJobFileOption, "job file"),
          .logFile = fileOf(given, kLogFileOption, "log")};
}

bool hasPlaces(const std::string& sharedFolder, const CopyOptions& copy) {
  return !sharedFolder.empty() || !copy.jobFile.empty() || !copy.logFile.empty();
}

Places placesOf(const std::string& sharedFolder, const CopyOptions& copy,
                std::string (*examined)(const std::string& folder)) {
  if (!copy.jobFile.empty() || !copy.logFile.empty()) {
    return {.jobFile = copy.jobFile, .log = copy.logFile, .isCopy = true};
  }
  if (sharedFolder.empty()) {
    std::string message = "the shared folder is missing: give --shared FOLDER or set ";
    message.append(sharedOption().variable);
    throw Failure(kBadUsage, message.append("; or give files that were mailed, with --job-file and "
                                            "--log-file"));
  }
  Places places = placesIn(examined(sharedFolder));
  places.isCopy = copy.offline;
  return places;
}

}  // namespace kelvane::console
