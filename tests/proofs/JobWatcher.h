// What is seen of the files that a job replaces, while its worker runs; no time passes.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/proofs/Tracer.h"
#include "tests/proofs/World.h"

namespace kelvane::proofs {

class JobWatcher : public Watcher {
 public:
  explicit JobWatcher(const World& world) : world_(world) {}

  Decision before(const Call& call) final;
  void after(const Call& call, long result) final;

  // Every version of the file that was put in place, in their order.
  const std::vector<std::string>& versions(const std::string& path) { return versions_[path]; }
  // What has to stand there: the last version, or what stood there before.
  std::string last(const std::string& path);
  // Paths that were made at some time.
  const std::set<std::string>& made() const { return made_; }

 protected:
  // Of every call since the worker has begun, its children's too.
  virtual Decision decide(const Call& /*call*/) { return {}; }

 private:
  static Decision usual(const Call& call);
  void keepPath(const std::string& path);
  void keepVersion(const Call& call);

  const World& world_;
  bool hasBegun_ = false;
  std::map<std::string, std::vector<std::string>> versions_;
  std::set<std::string> made_;
};

// The calls by which a watcher sees the worker's sleeps and what it puts in place, and no others.
std::vector<long> fewCalls();

// What a run without disturbance does and leaves.
struct Baseline {
  std::vector<std::string> jobFiles;  // its versions, with the first one
  std::vector<std::string> fleets;
  Tree after;
  std::set<std::string> made;
  std::string log;
};

// Raises where the job does not end as its scenario says.
Baseline baselineOf(World& world);

// The tree without what is no matter of a job's outcome: its log and the framework's journal.
Tree outcomeOf(Tree tree);

}  // namespace kelvane::proofs
