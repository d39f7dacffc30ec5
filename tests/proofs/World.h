// The real worker in a bundle, with what its job needs around it; the same at every start.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/end_to_end/OnlineInstallation.h"
#include "tests/proofs/Tracer.h"
#include "tests/proofs/Tree.h"

namespace kelvane::proofs {

class World;

struct Scenario {
  const char* name;
  const char* meaning;
  const char* command;
  const char* state;                              // the job's at its end
  std::int64_t result;                            // with "FREE"
  std::function<platform::Value(World&)> inputs;  // puts in place what they need, too
};

const std::vector<Scenario>& scenarios();
// Raises where there is none of that name.
const Scenario& scenarioNamed(const std::string& name);

class World : public OnlineInstallation {
 public:
  explicit World(const Scenario& scenario);
  void TestBody() override {}

  const Scenario& scenario() const { return scenario_; }
  const std::string& path() const { return folder.path(); }
  // As everything stood before the first start of the worker.
  void reset() const { putBack(before_, path()); }
  const Tree& before() const { return before_; }
  Tree now() const { return treeOf(path()); }
  // Whether the job's record is as the scenario says.
  bool endedAsMeant() const;
  // Starts the worker.
  Command command() const;
  // Of the job file as it is, with its one job waiting again.
  void letWaitAgain() const;
  // The log without its times.
  std::string logText() const;

  // For the scenarios.
  using Installation::bundle;
  using Installation::folder;
  using Installation::jobs;
  using Installation::makeImage;
  using Installation::writeFleet;
  using OnlineInstallation::makeService;
  using OnlineInstallation::parameters;
  void breakEngine() const;

 private:
  const Scenario& scenario_;
  Tree before_;
};

// While it lives, workers are loaded with this mistake of CarelessCalls.cpp.
class Carelessness {
 public:
  explicit Carelessness(std::string mistake);
  Carelessness(const Carelessness&) = delete;
  Carelessness& operator=(const Carelessness&) = delete;
  ~Carelessness();
};

// Where things stand below a world's folder.
constexpr char kJobFolder[] = "shared/utility/command";
constexpr char kJobFilePath[] = "shared/utility/command/BGPLog.json";
constexpr char kLogPath[] = "shared/utility/logs/TarselVistrelUtility.txt";
constexpr char kFleetPath[] = "fleet.json";
constexpr char kJournalPath[] = "journal";
constexpr char kAreaPath[] = "shared/tmp/OnlineUpdate";
constexpr char kEngineFolderPath[] = "engine's folder";
constexpr char kInstalledPath[] = "Installed.app";

}  // namespace kelvane::proofs
