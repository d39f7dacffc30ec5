#include "tests/end_to_end/Installation.h"

#include <filesystem>

#include "platform/Json.h"
#include "tests/support/JobFileSchema.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane {

using platform::Value;
using test::splitLines;

namespace fs = std::filesystem;

namespace {

std::string digits(const Value& entry, const char* key) { return entry.get(key).digits(); }

}  // namespace

Installation::Installation() {
  install(KELVANE_WORKER, "Contents/Resources/Kelvane");
  install(KELVANE_ZORAPI, "Contents/Frameworks/libZORAPI.so");
  bundle.write("Contents/Resources/Config/setting.json", "{}");
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
  fs::create_directories(shared() + "utility/command");
  fs::create_directories(folder / "versions");
  environment = {{"LD_PRELOAD", KELVANE_INTERPOSER},
                 // The interposer comes before a sanitizer's runtime, which minds by default.
                 {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                 {"TZ", "UTC"},
                 {"ZORAPI_FLEET", folder / "fleet.json"},
                 {"ZORAPI_JOURNAL", folder / "journal"},
                 {"KELVANE_TEST_SLEEPS", folder / "sleeps"},
                 {"KELVANE_TEST_WRITES", folder / "writes"},
                 {"KELVANE_TEST_VERSIONS", folder / "versions"}};
}

void Installation::install(const std::string& file, const std::string& name) const {
  const fs::path target = bundle / name;
  fs::create_directories(target.parent_path());
  fs::copy_file(file, target);
}

void Installation::writeFleet(const std::string& controllers, const std::string& faults) const {
  folder.write("fleet.json", R"({"clock": "queries", "seconds_per_query": 2, "controllers": )" +
                                 controllers + R"(, "faults": )" + faults + "}");
}

Value Installation::fleet() const { return platform::parseJson(folder.read("fleet.json")); }

std::string Installation::makeImage(const std::string& name,
                                    std::vector<std::string> options) const {
  options.insert(options.begin(), KELVANE_MAKE_IMAGE);
  options.push_back(folder / name);
  const test::Ended made = test::runProgram(options, folder.path());
  EXPECT_EQ(made.exitStatus, 0) << made.err;
  return folder / name;
}

void Installation::writeJobs(const std::string& json) const { folder.write(test::kJobFile, json); }

Value Installation::jobs() const { return platform::parseJson(folder.read(test::kJobFile)); }

test::Ended Installation::runWorker(const std::vector<std::string>& arguments) const {
  validateVersions();
  fs::remove_all(folder / "versions");
  fs::create_directories(folder / "versions");
  fs::remove(folder / "sleeps");
  fs::remove(folder / "writes");
  std::vector<std::string> argv = {worker};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  return test::runProgram(argv, folder.path(), environment);
}

void Installation::updateFirmware(
    const std::vector<std::pair<std::string, std::string>>& inputs) const {
  Value entries = Value::array();
  for (const auto& [wwn, image] : inputs) {
    entries.append(Value::dictionary({{"wwn", wwn}, {"file_path", image}}));
  }
  writeJobs(test::waitingJob("updateFW", entries));
  const test::Ended ended = runWorker({"17", shared()});
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(ended.err, "");
}

std::vector<Value> Installation::versions() const {
  std::vector<Value> found;
  for (const std::string& name : folder.names("versions")) {
    found.push_back(platform::parseJson(folder.read("versions/" + name)));
  }
  return found;
}

void Installation::validateVersions() const {
  for (const std::string& name : folder.names("versions")) {
    const std::string text = folder.read("versions/" + name);
    for (const std::string& violation : test::validateJobFile(text)) {
      ADD_FAILURE() << violation << " in the job file\n" << text;
    }
  }
}

std::vector<std::string> Installation::progress() const {
  std::vector<std::string> found;
  for (const Value& version : versions()) {
    const Value& job = version.at(0);
    std::string text = job.get("state_id").string();
    for (const Value& entry : job.get("output").elements()) {
      text += " " + digits(entry, "total_percentage") + "/" + digits(entry, "cpld_percentage") +
              "/" + digits(entry, "fw_percentage");
    }
    if (found.empty() || found.back() != text) found.push_back(text);
  }
  return found;
}

std::vector<std::string> Installation::sleeps() const { return splitLines(folder.read("sleeps")); }

std::vector<std::string> Installation::writes() const { return splitLines(folder.read("writes")); }

std::vector<std::string> Installation::violations() const {
  std::vector<std::string> found;
  for (const std::string& line : splitLines(folder.read("journal"))) {
    if (platform::parseJson(line).has("violation")) found.push_back(line);
  }
  return found;
}

std::vector<std::string> Installation::calls() const {
  std::vector<std::string> found;
  for (const std::string& line : splitLines(folder.read("journal"))) {
    const Value record = platform::parseJson(line);
    if (!record.has("violation")) found.push_back(record.get("function").string());
  }
  return found;
}

}  // namespace kelvane
