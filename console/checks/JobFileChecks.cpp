#include "console/checks/JobFileChecks.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

#include "console/checks/Access.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {
namespace {

constexpr std::uint64_t kLargeJobFileFrom = 10'000'000;  // bytes

std::string placeOf(const std::string& path) {
  std::error_code untold;
  const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, untold);
  return untold ? path : resolved.string();
}

// Before the first job there is no file; whoever adds it makes one.
void findMissing(const std::string& path, Findings& findings) {
  if (isLink(path)) {
    findings.push_back({Code::jobFileLinkNowhere, Severity::error,
                        path + " is a link that leads nowhere",
                        "The worker finds no job file and starts nothing.",
                        "Remove the link, or put back the file that it leads to."});
    return;
  }
  const std::string folder = platform::withoutLastComponent(path);
  if (kindOf(folder) != EntryKind::missing) return;
  findings.push_back(
      {Code::jobFileFolderMissing, Severity::warning,
       "the job file's folder " + folder + " does not exist",
       "No job was ever added here: a worker that is started finds nothing to do.",
       "Check that this is the folder that the application shares with the worker. The console "
       "makes what is missing when it adds a job."});
}

std::string meanwhile(const Places& places) {
  const std::string way = wayToLoggedJobs(places);
  return way.empty() ? way : " Meanwhile " + way + ".";
}

void findDamage(const Places& places, Findings& findings) {
  const JsonFile file = readJsonFile(places.jobFile);
  if (!file.fault.empty()) {
    const char* advice = refusal(places.jobFile, Access::read).empty()
                             ? "Mend the file, or move it away: the application starts a new one."
                             : "Give the user that runs the worker the right to read it.";
    findings.push_back({Code::jobFileDamaged, Severity::error, file.fault,
                        "The worker finds no job in it and starts nothing. A job that runs "
                        "meanwhile stays in state RUN.",
                        advice + meanwhile(places)});
  } else if (!file.value.isArray()) {
    findings.push_back(
        {Code::jobFileNoList, Severity::error,
         places.jobFile + " is an object, not an array of records",
         "The worker finds no job in it and starts nothing.",
         "Put the records into an array, or move the file away." + meanwhile(places)});
  }
}

void findLarge(const std::string& path, Findings& findings) {
  const std::uint64_t bytes = platform::fileSize(path);
  if (kindOf(path) != EntryKind::file || bytes < kLargeJobFileFrom) return;
  findings.push_back(
      {Code::jobFileLarge, Severity::warning, path + " has " + std::to_string(bytes) + " bytes",
       "Each step of a job's progress reads it whole, writes it whole, and writes it into the log "
       "four times: jobs get slow, and the log large.",
       "Remove records of finished jobs that nobody needs, while no worker runs."});
}

void findNotWritable(const std::string& path, Findings& findings) {
  const std::string cause = refusal(path, Access::write);
  if (cause.empty()) return;
  findings.push_back({Code::jobFileReadOnly, Severity::warning,
                      path + " cannot be written: " + cause,
                      "The worker replaces the file all the same, where it may change the folder; "
                      "an application that writes into the file cannot add a job.",
                      "Give the user that runs the application the right to write it."});
}

void findLink(const std::string& path, Findings& findings) {
  if (!isLink(path)) return;
  findings.push_back(
      {Code::jobFileLink, Severity::warning, path + " is a link to " + placeOf(path),
       "The worker replaces the file that the link leads to, in that file's folder. A program that "
       "replaces the job file itself takes the link away and parts the two.",
       "Put the file itself in the link's place, unless the link is wanted."});
}

}  // namespace

Findings jobFileContentFindings(const Places& places) {
  Findings findings;
  if (kindOf(places.jobFile) == EntryKind::missing) return findings;
  findDamage(places, findings);
  findLarge(places.jobFile, findings);
  return findings;
}

Findings jobFileFindings(const Places& places) {
  const std::string& path = places.jobFile;
  Findings findings = jobFileContentFindings(places);
  if (kindOf(path) == EntryKind::missing) {
    findMissing(path, findings);
  } else {
    findNotWritable(path, findings);
    findLink(path, findings);
  }
  const std::string refused = changeRefusal(platform::withoutLastComponent(placeOf(path)));
  if (!refused.empty()) {
    findings.push_back({Code::jobFileFolderFixed, Severity::error,
                        "the job file's folder cannot be changed: " + refused,
                        "Every update of a job replaces the file by a new one in this folder. None "
                        "is written, and no one is told: jobs that are started are carried out, "
                        "flashes too, and their records stay as they are.",
                        "Give the user that runs the worker the right to write in the folder."});
  }
  return findings;
}

Findings lostJobFileFindings(const Places& places) {
  if (kindOf(places.jobFile) != EntryKind::missing) return {};
  const std::string way = wayToLoggedJobs(places);
  if (way.empty()) return {};
  const char* advice =
      places.isCopy ? "Ask for the job file. Meanwhile " : "Find out who removed it. Meanwhile ";
  return {{Code::jobFileLost, Severity::warning,
           places.jobFile + " does not exist, though the log shows jobs",
           places.isCopy ? "It is not among the files of the copy, or was removed before."
                         : "The records of its jobs are lost to the application and the worker.",
           advice + way + ".", places.jobFile}};
}

Findings leftoverFindings(const std::string& path) {
  Findings findings;
  const std::string folder = platform::withoutLastComponent(placeOf(path));
  std::vector<std::string> names = platform::listFolder(folder);
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    if (name.rfind(platform::kReplacementPrefix, 0) != 0) continue;
    std::string leftover = folder;
    leftover.append("/").append(name);
    findings.push_back({Code::jobFileLeftover, Severity::warning, leftover + " is left over",
                        "A worker or a console was killed, or the computer went down, while it "
                        "wrote the job file. The job file itself is whole.",
                        "Delete it. If it was a worker, its job is still in state RUN or WAIT.",
                        path});
  }
  return findings;
}

}  // namespace kelvane::console
