#include "tests/proofs/PowerLoss.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>

#include <sys/syscall.h>

#include "tests/proofs/Disk.h"
#include "tests/proofs/DiskRecorder.h"
#include "tests/proofs/JobWatcher.h"
#include "tests/proofs/World.h"
#include "tests/support/Program.h"

namespace kelvane::proofs {
namespace {

// A file that is replaced: what its name shows is one of the versions from `sure` on.
struct Replaced {
  std::string path;
  std::vector<std::string> versions;
  std::size_t sure = 0;

  std::string faultIn(const Tree& state) const {
    const auto found = state.find(path);
    if (found == state.end()) return path + " is gone";
    const bool isVersion = std::find(versions.begin() + static_cast<std::ptrdiff_t>(sure),
                                     versions.end(), found->second.bytes) != versions.end();
    return isVersion ? "" : path + " is neither old nor new";
  }
};

// A program, what it replaces, and what else has to hold.
struct Subject {
  std::string name;
  std::string scenario;  // of the world it is in
  std::function<Command(const World&)> command;
  std::vector<std::string> replaced;
  std::function<void(const World&)> prepare = {};
};

Command console(const World& world, std::vector<std::string> arguments) {
  Command command = world.command();
  arguments.insert(arguments.begin(), KELVANE_CONSOLE);
  command.argv = std::move(arguments);
  return command;
}

Command add(const World& world) {
  return console(world, {"update-fw", "--shared", world.folder / "shared/", "--worker", "/bin/true",
                         "--even-so", "--no-wait", "A1=" + world.folder / "FW_T3.img"});
}

Command remove(const World& world) {
  return console(world, {"remove", "--shared", world.folder / "shared/", "17"});
}

constexpr char kReportPath[] = "report.html";

Command report(const World& world) {
  return console(world, {"report", "--shared", world.folder / "shared/", "--output",
                         world.folder / kReportPath, "17"});
}

// The log has changed since.
void writeEarlierReport(const World& world) {
  const Command command = report(world);
  const test::Ended ended = test::runProgram(command.argv, command.folder, command.variables);
  if (ended.exitStatus != 0) throw std::runtime_error("report: " + ended.err);
  world.folder.write(kLogPath, "another line of an earlier job\n");
}

Command makeImageAnew(const World& world) {
  Command command = world.command();
  command.argv = {KELVANE_MAKE_IMAGE,       "qvxf", "--product", "0x4801", "--firmware", "6.0",
                  world.folder / "qvxf.img"};
  return command;
}

const std::vector<Subject>& subjects() {
  const auto worker = [](const World& world) { return world.command(); };
  static const std::vector<Subject> all = {
      {"query", "query", worker, {kJobFilePath}},
      {"download", "download", worker, {kJobFilePath}},
      {"installation", "installation", worker, {kJobFilePath}},
      {"standard", "standard", worker, {kJobFilePath, kFleetPath}},
      {"qvxf", "qvxf", worker, {kJobFilePath, kFleetPath}},
      {"console-add", "query", add, {kJobFilePath}},
      {"console-remove", "query", remove, {kJobFilePath}},
      {"console-report", "query", report, {kReportPath}, writeEarlierReport},
      {"make-image", "qvxf", makeImageAnew, {"qvxf.img"}},
  };
  return all;
}

const Subject& subjectNamed(const std::string& name) {
  for (const Subject& subject : subjects()) {
    if (subject.name == name) return subject;
  }
  throw std::invalid_argument("there is no program " + name);
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash);
}

// As a disk tells it: without permissions.
Tree asOnDisk(const Tree& tree) { return Disk(tree).now(); }

Tree packagesIn(const Tree& tree) {
  Tree found = subtree(tree, std::string(kAreaPath) + "/SW");
  std::erase_if(found, [](const auto& each) { return each.first.starts_with("/."); });
  return found;
}

// Every package in the download area is whole: the older or the newer.
std::string faultOfPackages(const Tree& state, const Tree& before, const Tree& after) {
  const Tree packages = packagesIn(state);
  for (const auto& [path, entry] : packages) {
    if (path.empty() || path.find('/', 1) != std::string::npos) continue;
    const Tree whole = subtree(packages, path);
    if (whole != subtree(packagesIn(before), path) && whole != subtree(packagesIn(after), path)) {
      return "package " + path + " is not whole";
    }
  }
  return {};
}

// One run of a program, and all states of the disk in it.
class Run {
 public:
  Run(const Subject& subject, std::uint64_t stride, const Tell& tell)
      : subject_(subject), world_(scenarioNamed(subject.scenario)), stride_(stride), tell_(tell) {}

  Tally prove() {
    const bool isJob = subject_.name == subject_.scenario;
    if (isJob) after_ = asOnDisk(baselineOf(world_).after);
    world_.reset();
    if (subject_.prepare) subject_.prepare(world_);
    before_ = asOnDisk(world_.now());
    for (const std::string& path : subject_.replaced) {
      replaced_.push_back({path, {bytesOf(before_, path)}});
    }
    Disk disk(before_);
    DiskRecorder recorder(world_.path(), disk, [&](const std::string& path, const Call& call) {
      take(disk, path, call);
    });
    const Traced traced = trace(subject_.command(world_), allCalls(), recorder);
    requireTruth(traced, disk);
    return tally_;
  }

 private:
  void take(const Disk& disk, const std::string& path, const Call& call) {
    const Tree now = disk.now();
    for (Replaced& each : replaced_) {
      const std::string text = bytesOf(now, each.path);
      if (text != each.versions.back()) each.versions.push_back(text);
      const bool isMadeToLast =
          call.number == SYS_syncfs || (isSynchronisation(call) && path == folderOf(each.path));
      if (isMadeToLast) each.sure = each.versions.size() - 1;
    }
    isSourceLeaving_ = isSourceLeaving_ ||
                       (call.isOfProgram && isBelow(path, kEngineFolderPath) && !disk.exists(path));
    if (++changes_ % stride_ != 0) return;
    disk.afterPowerLoss([&](const Disk::State& state) { judge(state, path, call); });
  }

  void judge(const Disk::State& state, const std::string& path, const Call& call) {
    ++tally_.points;
    const std::string found = faultIn(state);
    if (found.empty()) return;
    ++tally_.deviations;
    tell_(subject_.name + ", power lost after change " + std::to_string(changes_) + " (" +
          kindOf(call.number)->name + " " + path + "): " + found);
  }

  std::string faultIn(const Disk::State& state) const {
    for (const Replaced& each : replaced_) {
      std::string found = each.faultIn(state.tree);
      if (!found.empty()) return found;
    }
    if (!bytesOf(state.tree, kLogPath).starts_with(bytesOf(before_, kLogPath))) {
      return "the log has lost what it held";
    }
    if (!after_) return {};
    // What is replaced loses its name before its contents, which helps where there is an order.
    std::string found = state.isInOrder ? faultOfPackages(state.tree, before_, *after_) : "";
    return found.empty() ? faultOfJob(state.tree) : found;
  }

  // What a job that is "FREE" has put in place is there, whole; and so is a download before what it
  // comes from goes.
  std::string faultOfJob(const Tree& state) const {
    const bool isFree = bytesOf(state, kJobFilePath) == bytesOf(*after_, kJobFilePath);
    if ((isFree || isSourceLeaving_) && packagesIn(state) != packagesIn(*after_)) {
      return "the download is not there";
    }
    if (isFree && subtree(state, kInstalledPath) != subtree(*after_, kInstalledPath)) {
      return "the application is not there";
    }
    return {};
  }

  void requireTruth(const Traced& traced, const Disk& disk) {
    const std::string other = difference(asOnDisk(world_.now()), disk.now());
    if (traced.exitStatus != 0 || !other.empty()) {
      throw std::runtime_error(subject_.name + ": exit status " +
                               std::to_string(traced.exitStatus) + "; recorded: " + other);
    }
    for (const Replaced& each : replaced_) {
      if (each.versions.size() < 2 || each.sure != each.versions.size() - 1) {
        throw std::runtime_error(subject_.name + " has not replaced " + each.path);
      }
    }
  }

  const Subject& subject_;
  World world_;
  std::uint64_t stride_;
  const Tell& tell_;
  Tree before_;
  std::optional<Tree> after_;  // of a worker's job
  std::vector<Replaced> replaced_;
  bool isSourceLeaving_ = false;
  std::uint64_t changes_ = 0;
  Tally tally_;
};

}  // namespace

std::vector<std::string> powerLossNames() {
  std::vector<std::string> names;
  for (const Subject& subject : subjects()) names.push_back(subject.name);
  return names;
}

Tally provePowerLoss(const std::string& name, std::uint64_t stride, const Tell& tell) {
  return Run(subjectNamed(name), stride, tell).prove();
}

}  // namespace kelvane::proofs
