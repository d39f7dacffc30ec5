#include "tests/proofs/World.h"

#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>
#include <sys/stat.h>

#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/LogLine.h"

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

using platform::Value;

// --- what jobs need

Value package(World& world) {
  return Value::dictionary({{"file_path", world.folder / "Manager.app"}});
}

Value missingPackage(World& world) {
  return Value::dictionary({{"file_path", world.folder / "nowhere"}});
}

void makeServiceOf(World& world, const std::string& faults) {
  world.makeService(R"({"service": )" + faults + R"(, "packages": [
      {"product": "sw", "version": "2.0", "minimum_os": "1.0.0",
       "codebase": "https://updates.example/Manager.zip", "files": {"Manager.app": "Manager.app"}},
      {"product": "fw3", "version": "3.4.0", "codebase": "https://updates.example/fw3.zip",
       "files": {"FW_T3.img": "FW_T3.img"}}]})");
}

Value query(World& world, const std::string& faults) {
  makeServiceOf(world, faults);
  return world.parameters("fw3");
}

Value download(World& world, const std::string& faults) {
  makeServiceOf(world, faults);
  return Value::array({world.parameters("sw")});
}

Value entryOf(const std::string& image) {
  return Value::array({Value::dictionary({{"wwn", "50000000000000A1"}, {"file_path", image}})});
}

void makeController(World& world, const char* product, const std::string& faults) {
  world.writeFleet(fmt::format(
      R"([{{"wwn": "50000000000000A1", "product_id": "{}", "firmware": "1.0", "cpld": "1.0",
            "usb_bridge": "1.0", "cpld_transfer_seconds": 4, "cpld_programming_seconds": 4,
            "firmware_seconds": 8, "faults": {}}}])",
      product, faults));
}

Value standard(World& world, const std::string& faults) {
  makeController(world, "0x4301", faults);
  return entryOf(world.makeImage("standard.img", {"standard", "--product", "0x4301", "--firmware",
                                                  "2.0", "--cpld", "1.5", "--usb", "3.0"}));
}

Value qvxf(World& world, const std::string& faults) {
  makeController(world, "0x4801", faults);
  return entryOf(world.makeImage("qvxf.img", {"qvxf", "--product", "0x4801", "--firmware", "5.0"}));
}

constexpr char kFailing[] = R"([{"flash": "firmware", "do": "fail", "at": 50}])";

// Empty where workers are as they are.
std::string& presentMistake() {
  static std::string mistake;
  return mistake;
}

std::vector<Scenario> makeScenarios() {
  return {
      {"query", "a query", "getOnlineUpdateData", "FREE", 0,
       [](World& world) { return query(world, "{}"); }},
      {"query-failing", "a query that gets no catalogue", "getOnlineUpdateData", "FREE", 0,
       [](World& world) { return query(world, R"({"catalogue": "none"})"); }},
      {"query-unbegun", "a query whose engine cannot be started", "getOnlineUpdateData", "RUN", 0,
       [](World& world) {
         world.breakEngine();
         return query(world, "{}");
       }},
      {"download", "a download in the place of an older one", "downloadOnlineUpdateFile", "FREE", 0,
       [](World& world) {
         world.folder.write("shared/tmp/OnlineUpdate/SW/Manager.app/Contents/older", "1.0");
         return download(world, "{}");
       }},
      {"download-failing", "a download that lacks its package", "downloadOnlineUpdateFile", "FREE",
       259, [](World& world) { return download(world, R"({"missing_products": ["sw"]})"); }},
      {"installation", "an installation", "updateSW", "FREE", 0, package},
      {"installation-failing", "an installation of what is not there", "updateSW", "FREE", 0,
       missingPackage},
      {"standard", "CPLD, firmware and USB bridge of a standard controller", "updateFW", "FREE", 0,
       [](World& world) { return standard(world, "[]"); }},
      {"standard-failing", "a standard controller whose flash fails", "updateFW", "FREE", 0x8054,
       [](World& world) { return standard(world, kFailing); }},
      {"qvxf", "a controller that takes QVXF images", "updateFW", "FREE", 0,
       [](World& world) { return qvxf(world, "[]"); }},
      {"qvxf-failing", "the same, whose flash fails", "updateFW", "FREE", 0x8054,
       [](World& world) { return qvxf(world, kFailing); }},
  };
}

}  // namespace

const std::vector<Scenario>& scenarios() {
  static const std::vector<Scenario> all = makeScenarios();
  return all;
}

const Scenario& scenarioNamed(const std::string& name) {
  for (const Scenario& scenario : scenarios()) {
    if (scenario.name == name) return scenario;
  }
  throw std::invalid_argument("there is no job " + name);
}

World::World(const Scenario& scenario) : scenario_(scenario) {
  for (const char* unused : {"versions", "service"}) fs::remove_all(folder / unused);
  folder.write("Installed.app/Contents/old", "1.0");
  folder.write("Manager.app/Contents/deep/file", std::string(10000, 'x'));
  fs::create_symlink("version", folder / "Manager.app/Contents/link");
  writeFleet("[]");
  writeJobs(test::waitingJob(scenario.command, scenario.inputs(*this)));
  folder.write(kLogPath, "a line of an earlier job\n");
  before_ = treeOf(path());
}

void World::breakEngine() const { fs::remove(bundle / "Contents/Resources/EngineRunner"); }

bool World::endedAsMeant() const {
  const Value record = jobs().at(0);
  return record.get("state_id") == Value(scenario_.state) &&
         record.get("result") == Value::integer(scenario_.result);
}

Command World::command() const {
  Command command = {.argv = {worker, "17", shared()},
                     .folder = path(),
                     .variables = {{"TZ", "UTC"},
                                   {"ZORAPI_FLEET", folder / kFleetPath},
                                   {"ZORAPI_JOURNAL", folder / kJournalPath}}};
  if (presentMistake().empty()) return command;
  command.variables["LD_PRELOAD"] = KELVANE_CARELESS_CALLS;
  command.variables["KELVANE_MISTAKE"] = presentMistake();
  return command;
}

void World::letWaitAgain() const {
  Value record = jobs().at(0);
  record.set("state_id", "WAIT");
  writeJobs(*platform::printJson(Value::array({record})));
}

std::string World::logText() const {
  std::string text;
  for (const std::string& line : test::splitLines(log())) {
    const std::size_t time = line.starts_with('[') ? line.find(']') : 0;
    text += line.substr(time == std::string::npos ? 0 : time) + "\n";
  }
  return text;
}

Carelessness::Carelessness(std::string mistake) { presentMistake() = std::move(mistake); }

Carelessness::~Carelessness() { presentMistake().clear(); }

}  // namespace kelvane::proofs
