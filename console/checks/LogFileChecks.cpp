#include "console/checks/LogFileChecks.h"

#include <cstdint>

#include "console/checks/Access.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

constexpr std::size_t kPathLimit = 512;               // bytes
constexpr std::uint64_t kLargeLogFrom = 104'857'600;  // bytes
constexpr char kNothingLogged[] =
    "Nothing is logged, and jobs run all the same: what a job did cannot be told afterwards.";

Finding missing(const std::string& path) {
  Finding finding{Code::logMissing, Severity::warning, "open ", "The worker never makes the log. ",
                  "Make an empty file there."};
  finding.what.append(path).append(": No such file or directory");
  finding.meaning += kNothingLogged;
  return finding;
}

Finding notAFile(const std::string& path, EntryKind kind) {
  const char* fault = kind == EntryKind::folder ? " is a folder" : " is no regular file";
  return {Code::logNoFile, Severity::warning, path + fault, kNothingLogged,
          "Put an empty file in its place."};
}

Finding notWritable(const std::string& path, const std::string& cause) {
  return {Code::logReadOnly, Severity::warning, path + " cannot be written: " + cause,
          kNothingLogged, "Give the user that runs the worker the right to write it."};
}

Finding large(const std::string& path, std::uint64_t bytes) {
  return {Code::logLarge, Severity::warning, path + " has " + std::to_string(bytes) + " bytes",
          "It has reached 100 MiB and grows without a bound: the worker does not rotate it. On a "
          "full disk jobs can stay in state RUN.",
          "Rotate it while no job runs, with \"kelvane-console log --rotate\"."};
}

}  // namespace

Findings logFileFindings(const std::string& path) {
  if (path.size() >= kPathLimit) {
    return {
        {Code::logPathLong, Severity::error,
         path + ": the path has " + std::to_string(path.size()) + " bytes, and 511 are possible",
         "The worker ends at once, before it has looked at any job.",
         "Use a shared folder with a shorter path."}};
  }
  Findings findings = logCopyFindings(path);
  const std::string cause = kindOf(path) == EntryKind::file ? refusal(path, Access::write) : "";
  if (!cause.empty()) findings.insert(findings.begin(), notWritable(path, cause));
  return findings;
}

Findings logCopyFindings(const std::string& path) {
  Findings findings;
  const EntryKind kind = kindOf(path);
  if (kind == EntryKind::missing) {
    findings.push_back(missing(path));
  } else if (kind == EntryKind::folder || kind == EntryKind::other) {
    findings.push_back(notAFile(path, kind));
  } else if (const std::uint64_t bytes = platform::fileSize(path); bytes >= kLargeLogFrom) {
    findings.push_back(large(path, bytes));
  }
  return findings;
}

}  // namespace kelvane::console
