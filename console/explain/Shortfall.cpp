#include "console/explain/Shortfall.h"

#include <algorithm>
#include <iterator>

#include "console/display/Words.h"
#include "console/explain/FlashNotes.h"
#include "console/job/JobStatus.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr const char* kTools[] = {"rm: ", "cp: ", "/bin/rm: ", "/bin/cp: "};

bool isOfATool(const std::string& line) {
  return std::any_of(std::begin(kTools), std::end(kTools),
                     [&](const char* tool) { return line.starts_with(tool); });
}

std::string shortfallOfFirmware(const Value& record, const LogStretch& log) {
  const std::vector<std::string> names = controllersWithoutCpld(record, log);
  if (names.empty()) return {};
  return (names.size() == 1 ? "the CPLD of " : "the CPLDs of ") + joined(names, ", ") +
         (names.size() == 1 ? " was not flashed" : " were not flashed");
}

}  // namespace

std::string toolsComplaint(const std::vector<std::string>& standardError) {
  const auto found = std::find_if(standardError.begin(), standardError.end(), isOfATool);
  return found == standardError.end() ? "" : *found;
}

std::string shortfallOf(const Value& record, const LogStretch& log,
                        const std::vector<std::string>& standardError) {
  const JobStatus status = statusOf(record);
  if (!status.hasSucceeded()) return {};
  if (status.command == job::kUpdateFW) return shortfallOfFirmware(record, log);
  if (status.command == job::kGetOnlineUpdateData) {
    return record.get(job::kOutput).isArray() ? "" : "the update engine left no catalogue";
  }
  if (status.command != job::kUpdateSW) return {};
  const Value package = memberOf(record.get(job::kInputParameters), job::kFilePath);
  if (package == Value("")) return "the path of its package is empty";
  const std::string complaint = toolsComplaint(standardError);
  return complaint.empty() ? "" : "the system's tools complained: " + complaint;
}

}  // namespace kelvane::console
