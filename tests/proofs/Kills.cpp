#include "tests/proofs/Kills.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "platform/Json.h"
#include "tests/proofs/JobWatcher.h"

namespace kelvane::proofs {
namespace {

using platform::Value;

// Kills the worker before its n-th call; of its children's, those count that change something.
class Killer : public JobWatcher {
 public:
  Killer(const World& world, std::uint64_t n) : JobWatcher(world), n_(n) {}

  // What it was killed before; empty where it was not.
  const std::string& place() const { return place_; }

 protected:
  Decision decide(const Call& call) override {
    if (!call.isOfProgram && !changesSomething(call)) return {};
    if (++count_ != n_) return {};
    place_ = std::string(call.isOfProgram ? "" : "a child's ") + kindOf(call.number)->name;
    return {.kind = Decision::Kind::kill};
  }

 private:
  std::uint64_t n_;
  std::uint64_t count_ = 0;
  std::string place_;
};

constexpr char kReplacement[] = ".replace-";
constexpr char kIncoming[] = ".incoming-";
constexpr char kOutgoing[] = ".outgoing-";

std::string above(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string lastOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// What is documented to stay beside the job file and the fleet file.
bool isReplacement(const std::string& path) {
  const std::string name = lastOf(path);
  const std::string folder = above(path);
  return name.starts_with(kReplacement) && name.size() == sizeof kReplacement - 1 + 6 &&
         (folder == kJobFolder || folder.empty());
}

// The folder of the download area that the path is in, with a "/" at its end; empty for others.
std::string areaOf(const std::string& path) {
  if (!isBelow(path, kAreaPath) || path.size() == sizeof kAreaPath - 1) return {};
  const std::size_t slash = path.find('/', sizeof kAreaPath);
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// A copy that was not complete, or what was being removed.
bool isHiddenInArea(const std::string& path) {
  const std::string area = areaOf(path);
  if (area.empty()) return false;
  const std::string name = path.substr(area.size());
  return name.starts_with(kIncoming) || name.starts_with(kOutgoing);
}

bool isLeftover(const std::string& path) { return isReplacement(path) || isHiddenInArea(path); }

Tree withoutLeftovers(Tree tree) {
  std::erase_if(tree, [](const auto& each) { return isLeftover(each.first); });
  return tree;
}

// What the command starts, which goes on; "Kelvane" is a child that had not become another program
// yet.
std::set<std::string> programsOf(const std::string& command) {
  if (command == "updateFW") return {};
  if (command == "updateSW") return {"rm", "cp", "Kelvane"};
  return {"EngineRunner", "Kelvane"};
}

// The one controller of the fleet.
Value controllerIn(const Tree& tree) {
  return platform::parseJson(bytesOf(tree, kFleetPath)).get("controllers").at(0);
}

void forgetNvram(Tree& tree) {
  Value controller = controllerIn(tree);
  controller.set("nvram", "");
  Value fleet = platform::parseJson(bytesOf(tree, kFleetPath));
  fleet.set("controllers", Value::array({controller}));
  tree.at(kFleetPath).bytes = *platform::printJson(fleet);
}

// One scenario's kills.
class Kills {
 public:
  Kills(World& world, const Tell& tell)
      : world_(world), tell_(tell), baseline_(baselineOf(world)) {}

  // Whether there is such a point.
  bool at(std::uint64_t n) {
    world_.reset();
    Killer killer(world_, n);
    const Traced traced = trace(world_.command(), allCalls(), killer);
    if (killer.place().empty()) return false;
    ++tally_.points;
    std::string found = faultOfProcesses(traced);
    if (found.empty()) found = faultOfFiles(killer);
    if (found.empty()) found = faultOfLeftovers(world_.now());
    if (found.empty()) found = faultOfNextRun();
    if (found.empty()) return true;
    ++tally_.deviations;
    tell_(std::string(world_.scenario().name) + ", killed before call " + std::to_string(n) + " (" +
          killer.place() + "): " + found);
    return true;
  }

  const Tally& tally() const { return tally_; }

 private:
  std::string faultOfProcesses(const Traced& traced) const {
    const std::set<std::string> documented = programsOf(world_.scenario().command);
    for (const LeftProcess& left : traced.outlived) {
      if (!documented.contains(left.name)) return left.name + " outlived the worker";
    }
    return traced.isInTime ? "" : "what it had started does not end";
  }

  // Each file is the last of the versions put in place, and these are those of an undisturbed run.
  std::string faultOfFiles(Killer& killer) const {
    const std::pair<const char*, const std::vector<std::string>&> files[] = {
        {kJobFilePath, baseline_.jobFiles}, {kFleetPath, baseline_.fleets}};
    for (const auto& [path, all] : files) {
      const auto& seen = killer.versions(path);
      if (seen.size() >= all.size() || !std::equal(seen.begin(), seen.end(), all.begin() + 1)) {
        return std::string(path) + " had another version";
      }
      if (world_.folder.read(path) != all[seen.size()]) {
        return std::string(path) + " is none of its versions, or not the last";
      }
    }
    return {};
  }

  std::string faultOfLeftovers(const Tree& left) const {
    std::set<std::string> packages;
    for (const auto& [path, entry] : left) {
      const bool isKnown = world_.before().contains(path) || baseline_.after.contains(path) ||
                           isUnfinished(path) || isLeftover(path);
      if (!isKnown) return path + " is left over";
      const std::string area = areaOf(path);
      if (area.empty() || isHiddenInArea(path) || path == area) continue;
      packages.insert(path.substr(0, path.find('/', area.size())));
    }
    for (const std::string& package : packages) {
      const Tree whole = subtree(left, package);
      if (whole != subtree(world_.before(), package) &&
          whole != subtree(baseline_.after, package)) {
        return package + " is not whole";
      }
    }
    return {};
  }

  // What the worker's children had come to: the engine in its folder, and the copy of an
  // application.
  bool isUnfinished(const std::string& path) const {
    const bool isOfChild = isBelow(path, kEngineFolderPath) || isBelow(path, kInstalledPath);
    return isOfChild && baseline_.made.contains(path);
  }

  // The job, waiting again, ends as it would have. Where all is left as after an earlier kill, it
  // was tried there.
  std::string faultOfNextRun() {
    world_.letWaitAgain();
    const Tree left = outcomeOf(world_.now());
    if (std::find(tried_.begin(), tried_.end(), left) != tried_.end()) return {};
    tried_.push_back(left);
    JobWatcher watcher(world_);
    const Traced traced = trace(world_.command(), fewCalls(), watcher);
    if (traced.exitStatus != 0 || !traced.isInTime) return "the next worker fails";
    Tree expected = outcomeOf(baseline_.after);
    Tree seen = withoutLeftovers(outcomeOf(world_.now()));
    if (isBridgeHalfDone(left)) {
      forgetNvram(expected);
      forgetNvram(seen);
    }
    const std::string other = difference(expected, seen);
    return other.empty() ? "" : "the next worker leaves another outcome: " + other;
  }

  // Documented: a bridge whose worker was killed before it wrote the NVRAM never gets it.
  bool isBridgeHalfDone(const Tree& left) const {
    if (std::string_view(world_.scenario().command) != "updateFW") return false;
    const Value now = controllerIn(left);
    const Value end = controllerIn(baseline_.after);
    return now.get("usb_bridge") == end.get("usb_bridge") && now.get("nvram") != end.get("nvram");
  }

  World& world_;
  const Tell& tell_;
  Baseline baseline_;
  std::vector<Tree> tried_;
  Tally tally_;
};

}  // namespace

Tally proveKills(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell) {
  Kills kills(world, tell);
  for (std::uint64_t n = first; kills.at(n); n += stride) continue;
  return kills.tally();
}

}  // namespace kelvane::proofs
