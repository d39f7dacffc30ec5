#include "tests/proofs/OutcomeLaws.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <vector>

#include "platform/Json.h"
#include "tests/support/JobFileSchema.h"
#include "tests/support/LogLine.h"

namespace kelvane::proofs {
namespace {

using platform::Value;

constexpr char kNotKept[] = "what was flashed is not kept";

// A finished job's record may lack what its first write, which failed, would have told: documented.
// All else of it is valid.
Value completed(Value record) {
  if (record.get("state_id") != Value("FREE")) return record;
  if (!record.has("result")) record.set("result", Value::integer(0));
  if (!record.has("resultStr")) record.set("resultStr", "no error");
  const bool isInstallation = record.get("job_id") == Value("updateSW");
  if (isInstallation && !record.has("output")) record.set("output", record.get("input_parameters"));
  return record;
}

bool hasNewFirmware(const World& world) {
  const Value fleet = platform::parseJson(world.folder.read(kFleetPath));
  const Value before = platform::parseJson(bytesOf(world.before(), kFleetPath));
  const auto firmware = [](const Value& of) { return of.get("controllers").at(0).get("firmware"); };
  return firmware(fleet) != firmware(before);
}

std::string faultOfQuery(const Value& record, const Baseline& baseline) {
  const Value undisturbed = platform::parseJson(baseline.jobFiles.back()).at(0);
  const bool isSame = record.get("output") == undisturbed.get("output");
  return isSame || !record.has("output") ? "" : "the query has another output";
}

// A package that could not be described is not looked for, nor one after an error that is told.
std::string faultOfDownload(const World& world, const Value& record, const Baseline& baseline) {
  if (errorsIn(world.logText()) != errorsIn(baseline.log)) return {};
  for (const Value& package : record.get("output").elements()) {
    const bool isThere = std::filesystem::exists(package.get("file_path").string());
    if (!isThere) return "a success is told, and there is no download";
  }
  return {};
}

}  // namespace

std::string faultOfVersion(const std::string& text) {
  static std::set<std::string> sound;
  if (sound.contains(text)) return {};
  const Value records = platform::parseJson(text);
  if (!records.isArray() || records.count() != 1) return "a version of the job file has no job";
  for (const char* key : {"log_id", "job_id", "state_id", "input_parameters"}) {
    if (!records.at(0).has(key)) return std::string("a version of the job file lacks ") + key;
  }
  // The schema takes a record in any other state for one that is not the worker's.
  const Value& state = records.at(0).get("state_id");
  if (state != Value("RUN") && state != Value("FREE")) return "a version has a state of its own";
  const Value whole = Value::array({completed(records.at(0))});
  const std::vector<std::string> violations = test::validateJobFile(*platform::printJson(whole));
  if (!violations.empty()) return violations.back();
  sound.insert(text);
  return {};
}

std::string faultOfSuccess(const World& world, const Baseline& baseline, const std::string& said) {
  const Value record = world.jobs().at(0);
  if (stateOf(world) != "FREE" || record.get("result") != Value::integer(0)) return {};
  const std::string command = world.scenario().command;
  if (command == "getOnlineUpdateData") return faultOfQuery(record, baseline);
  if (command == "downloadOnlineUpdateFile") return faultOfDownload(world, record, baseline);
  if (command == "updateFW" && said.find(kNotKept) == std::string::npos && !hasNewFirmware(world)) {
    return "a success is told, and the firmware is the old one";
  }
  return {};
}

std::string stateOf(const World& world) {
  const Value state = world.jobs().at(0).get("state_id");
  return state.isString() ? state.string() : "none";
}

std::size_t errorsIn(const std::string& log) {
  const std::vector<std::string> lines = test::splitLines(log);
  return static_cast<std::size_t>(std::count_if(
      lines.begin(), lines.end(),
      [](const std::string& line) { return line.find("][error] ") != std::string::npos; }));
}

}  // namespace kelvane::proofs
