#include "tests/proofs/JobWatcher.h"

#include <csignal>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/syscall.h>

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

constexpr const char* kReplacedFiles[] = {kJobFilePath, kFleetPath};

// The worker's first act.
bool isBeginning(const Call& call) {
  return call.number == SYS_rt_sigaction && call.isOfProgram &&
         (call.arguments[0] == SIGXFSZ || call.arguments[0] == SIGPIPE);
}

bool makesEntry(const Call& call) {
  return (call.number == SYS_openat && (call.arguments[2] & O_CREAT) != 0) ||
         call.number == SYS_mkdirat || call.number == SYS_mkdir || call.number == SYS_symlinkat;
}

std::string madeBy(const Call& call) {
  if (isRename(call)) return targetOf(call);
  if (call.number == SYS_symlinkat) return pathOf(call, 1, 2);
  return call.number == SYS_mkdir ? pathOf(call, -1, 0) : pathOf(call, 0, 1);
}

}  // namespace

Decision JobWatcher::before(const Call& call) {
  hasBegun_ = hasBegun_ || isBeginning(call);
  if (!hasBegun_) return {};
  const Decision decision = decide(call);
  return decision.kind == Decision::Kind::proceed ? usual(call) : decision;
}

Decision JobWatcher::usual(const Call& call) {
  if (isSleep(call) || isSynchronisation(call)) return {.kind = Decision::Kind::answer};
  if (isRename(call) || makesEntry(call)) return {.kind = Decision::Kind::watch};
  return {};
}

void JobWatcher::after(const Call& call, long result) {
  if (result < 0) return;
  keepPath(madeBy(call));
  if (isRename(call)) keepVersion(call);
}

// With all that was moved along.
void JobWatcher::keepPath(const std::string& path) {
  if (!isBelow(path, world_.path())) return;
  const std::string name = path.substr(world_.path().size() + 1);
  made_.insert(name);
  if (!fs::is_directory(fs::symlink_status(path))) return;
  for (const auto& [below, entry] : treeOf(path)) {
    std::string moved = name;
    made_.insert(moved.append("/").append(below));
  }
}

void JobWatcher::keepVersion(const Call& call) {
  for (const char* path : kReplacedFiles) {
    if (targetOf(call) == world_.folder / path) versions_[path].push_back(world_.folder.read(path));
  }
}

std::string JobWatcher::last(const std::string& path) {
  const std::vector<std::string>& all = versions_[path];
  return all.empty() ? bytesOf(world_.before(), path) : all.back();
}

std::vector<long> fewCalls() {
  return {SYS_rt_sigaction, SYS_clock_nanosleep, SYS_fsync,    SYS_syncfs,
          SYS_rename,       SYS_renameat,        SYS_renameat2};
}

Baseline baselineOf(World& world) {
  world.reset();
  JobWatcher watcher(world);
  const Traced traced = trace(world.command(), allCalls(), watcher);
  Baseline baseline;
  baseline.jobFiles = watcher.versions(kJobFilePath);
  baseline.jobFiles.insert(baseline.jobFiles.begin(), bytesOf(world.before(), kJobFilePath));
  baseline.fleets = watcher.versions(kFleetPath);
  baseline.fleets.insert(baseline.fleets.begin(), bytesOf(world.before(), kFleetPath));
  baseline.after = world.now();
  baseline.made = watcher.made();
  baseline.log = world.logText();
  if (traced.exitStatus != 0 || !traced.isInTime || !world.endedAsMeant()) {
    throw std::runtime_error(std::string(world.scenario().name) +
                             ": undisturbed, the job does not end as it should:\n" +
                             bytesOf(baseline.after, kJobFilePath));
  }
  return baseline;
}

Tree outcomeOf(Tree tree) {
  tree.erase(kLogPath);
  tree.erase(kJournalPath);
  return tree;
}

}  // namespace kelvane::proofs
