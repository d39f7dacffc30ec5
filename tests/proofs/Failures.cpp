#include "tests/proofs/Failures.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include <sys/syscall.h>

#include "tests/proofs/JobWatcher.h"
#include "tests/proofs/OutcomeLaws.h"
#include "tests/support/TempFolder.h"

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

constexpr int kShort = -1;  // in an error's place: less is read or written than was asked for

// The first requests are the runtime's own, for the exceptions that tell of those that fail: one of
// the worker's runtime and one of the simulated framework's.
constexpr std::uint64_t kFirstRequest = 3;

// A call of the worker: its kind, and which of these it is, from 1.
struct Place {
  long number = -1;
  std::uint64_t ordinal = 0;
  bool operator==(const Place&) const = default;
};

struct Fault {
  Place place = {};  // as it stands: none
  int error = 0;
  bool isForGood = false;
};

std::string textOf(const Fault& fault) {
  std::string text = fault.error == kShort ? "short" : ::strerrorname_np(fault.error);
  text.append(fault.isForGood ? " from " : " at ").append(kindOf(fault.place.number)->name);
  return text.append(" ").append(std::to_string(fault.place.ordinal));
}

// Nothing at all may come of it.
bool isHarmless(int error) { return error == EINTR || error == kShort; }

bool canBeShort(const Call& call) {
  const CallKind* kind = kindOf(call.number);
  return kind->size >= 0 && call.arguments[static_cast<std::size_t>(kind->size)] > 1;
}

bool canFail(const Call& call, int error) {
  return error == kShort ? canBeShort(call) : canGive(call, error);
}

// What stands beside a file's bytes, too.
std::string touchedPath(const Call& call) {
  const bool isOfOpenFile =
      isSynchronisation(call) || call.number == SYS_fchmod || call.number == SYS_fchown;
  return isOfOpenFile ? pathOfFile(call.process, call.arguments[0]) : changedPath(call);
}

// Without it no other program is started.
bool startsPrograms(const Call& call) {
  switch (call.number) {
    case SYS_pipe:
    case SYS_pipe2:
    case SYS_clone:
    case SYS_clone3:
    case SYS_vfork:
    case SYS_execve:
      return true;
    case SYS_fcntl:  // an end of a pipe gets another number
      return pathOfFile(call.process, call.arguments[0]).starts_with("pipe:");
    default:
      return false;
  }
}

std::set<std::string> openFiles(pid_t process) {
  std::set<std::string> numbers;
  std::error_code gone;
  for (const auto& file :
       fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", gone)) {
    numbers.insert(file.path().filename().string());
  }
  return numbers;
}

// Plays the fault, and sees which files are open at the end.
class Disturber : public JobWatcher {
 public:
  Disturber(const World& world, const Fault& fault)
      : JobWatcher(world), jobs_(world.folder / kJobFolder), fault_(fault) {}

  // Whether the call that was to fail was made.
  bool hasFailed() const { return hasFailed_; }
  // Whether that is a call without which no program is started.
  bool hasKeptFromStarting() const { return hasKeptFromStarting_; }
  // Whether no other call failed than one by which the job file was to be replaced.
  bool hasKeptFromWriting() const { return hasKeptFromWriting_; }
  // The ways in which each call can fail.
  const std::vector<std::pair<Place, std::vector<int>>>& ways() const { return ways_; }
  bool leavesFilesOpen() const { return openAtEnd_ != openAtStart_; }
  // Whether the worker told the process to end, or would have, had the system let it.
  bool wasToldToEnd(pid_t process) const { return toldToEnd_.contains(process); }

 protected:
  Decision decide(const Call& call) override {
    if (!call.isOfProgram) return {};
    if (openAtStart_.empty()) openAtStart_ = openFiles(call.process);
    if (call.number == SYS_exit_group) openAtEnd_ = openFiles(call.process);
    if (call.number == SYS_kill) toldToEnd_.insert(static_cast<pid_t>(call.arguments[0]));
    const std::vector<int> ways = waysOf(call);
    if (ways.empty()) return {};
    const Place place = {call.number, ++calls_[call.number]};
    ways_.emplace_back(place, ways);
    const bool isMeant = place == fault_.place || (fault_.isForGood && hasFailed_);
    if (!isMeant || !canFail(call, fault_.error)) return {};
    // An interrupted call is made again.
    isInterruption_ = !isInterruption_;
    if (fault_.error == EINTR && !isInterruption_) return {};
    if (!hasFailed_) noteFirst(call);
    hasFailed_ = true;
    return refusalOf(call);
  }

 private:
  void noteFirst(const Call& call) {
    hasKeptFromStarting_ = startsPrograms(call);
    hasKeptFromWriting_ =
        !fault_.isForGood && changesSomething(call) && isBelow(touchedPath(call), jobs_);
  }

  static std::vector<int> waysOf(const Call& call) {
    std::vector<int> ways;
    const CallKind* kind = kindOf(call.number);
    for (const int error : kind->errors) {
      if (canGive(call, error)) ways.push_back(error);
    }
    if (canBeShort(call)) ways.push_back(kShort);
    return ways;
  }

  Decision refusalOf(const Call& call) const {
    if (fault_.error == kShort) {
      const int size = kindOf(call.number)->size;
      const auto asked = static_cast<long>(call.arguments[static_cast<std::size_t>(size)]);
      return {Decision::Kind::shorten, fault_.isForGood ? (asked + 1) / 2 : 1, size};
    }
    // The file is closed all the same.
    const bool isDone = call.number == SYS_close;
    return {isDone ? Decision::Kind::answerInstead : Decision::Kind::answer, -fault_.error};
  }

  std::string jobs_;
  Fault fault_;
  bool hasFailed_ = false;
  bool hasKeptFromStarting_ = false;
  bool hasKeptFromWriting_ = false;
  bool isInterruption_ = false;
  std::map<long, std::uint64_t> calls_;  // of each kind
  std::vector<std::pair<Place, std::vector<int>>> ways_;
  std::set<pid_t> toldToEnd_;
  std::set<std::string> openAtStart_;
  std::set<std::string> openAtEnd_;
};

// One scenario's failures.
class Failures {
 public:
  Failures(World& world, const Tell& tell)
      : world_(world), tell_(tell), baseline_(baselineOf(world)) {
    world_.reset();
    Disturber census(world_, {});
    trace(command(), allCalls(), census);
    ways_ = census.ways();
    kept_ = liveMemory();
    if (kept_ <= 0) throw std::runtime_error("the worker's memory is not counted");
  }

  std::vector<Fault> faults() const {
    std::vector<Fault> all;
    for (const auto& [place, errors] : ways_) {
      for (const int error : errors) {
        for (const bool isForGood : {false, true}) all.push_back({place, error, isForGood});
      }
    }
    return all;
  }

  // How often a pipe is read hangs on how fast the engine writes: a call that one run lacks is made
  // in another.
  void play(const Fault& fault) {
    constexpr int kTries = 20;
    for (int i = 0; i < kTries; ++i) {
      if (hasPlayed(fault)) return;
    }
    deviate(textOf(fault) + ": no such call was made");
  }

  // Whether so much memory was asked for.
  bool playMemory(std::uint64_t request, bool isForGood) {
    world_.reset();
    Command refusing = command();
    const std::string done = world_.folder / "done";
    refusing.variables["KELVANE_FAULT_DONE"] = done;
    refusing.variables[isForGood ? "KELVANE_FAULT_MEMORY_FROM" : "KELVANE_FAULT_MEMORY"] =
        std::to_string(request);
    Disturber disturber(world_, {});
    std::vector<long> calls = fewCalls();
    calls.push_back(SYS_kill);
    calls.push_back(SYS_exit_group);
    const Traced traced = trace(refusing, calls, disturber);
    if (!fs::exists(done)) return false;
    judge(traced, disturber,
          (isForGood ? "memory from request " : "memory at request ") + std::to_string(request),
          false);
    if (!isForGood) judgeLeftovers("memory at request " + std::to_string(request));
    return true;
  }

  const Tally& tally() const { return tally_; }

 private:
  bool hasPlayed(const Fault& fault) {
    world_.reset();
    Disturber disturber(world_, fault);
    const Traced traced = trace(command(), allCalls(), disturber);
    if (!disturber.hasFailed()) return false;
    judge(traced, disturber, textOf(fault), isHarmless(fault.error));
    const bool isRemoval = fault.place.number == SYS_unlink || fault.place.number == SYS_unlinkat;
    if (!fault.isForGood && !isRemoval) judgeLeftovers(textOf(fault));
    return true;
  }

  // The worker, its memory counted.
  Command command() const {
    std::error_code none;
    fs::remove(counts_ / "live", none);
    Command counted = world_.command();
    // Behind what makes a worker careless.
    counted.variables["LD_PRELOAD"].append(" ").append(KELVANE_MEMORY_INTERPOSER);
    counted.variables["KELVANE_LIVE_MEMORY"] = counts_ / "live";
    counted.err = counts_ / "said";
    return counted;
  }

  // How many pieces of it the last worker has not given back.
  std::int64_t liveMemory() const {
    const std::string count = counts_.read("live");
    std::int64_t pieces = 0;
    if (count.size() == sizeof pieces) std::memcpy(&pieces, count.data(), sizeof pieces);
    return pieces;
  }

  void judge(const Traced& traced, Disturber& disturber, const std::string& place,
             bool changesNothing) {
    ++tally_.points;
    std::string found = faultOf(traced, disturber);
    if (found.empty() && disturber.leavesFilesOpen()) found = "a file stays open";
    if (found.empty()) found = faultOfMemory();
    if (found.empty()) found = faultOfFiles(disturber);
    if (found.empty()) found = faultOfSuccess(world_, baseline_, counts_.read("said"));
    if (found.empty()) found = faultOfSilence(disturber);
    if (found.empty() && changesNothing) found = differenceOf(disturber);
    if (!found.empty()) deviate(place + ": " + found);
  }

  // A version that is not put in place is removed.
  void judgeLeftovers(const std::string& place) {
    for (const char* folder : {kJobFolder, ""}) {
      for (const std::string& name : world_.folder.names(folder)) {
        if (name.starts_with(".replace-")) deviate(place + ": a version is left over");
      }
    }
  }

  void deviate(const std::string& how) {
    ++tally_.deviations;
    tell_(std::string(world_.scenario().name) + ", " + how);
  }

  // Who was told to end may take its time.
  static std::string faultOf(const Traced& traced, const Disturber& disturber) {
    if (!traced.isInTime) return "the worker, or what it has started, does not end";
    if (traced.signal != 0) return std::string("ended by ") + ::strsignal(traced.signal);
    for (const LeftProcess& left : traced.outlived) {
      if (!disturber.wasToldToEnd(left.process)) return left.name + " is left running";
    }
    return traced.exitStatus == 0 ? "" : "exit status " + std::to_string(traced.exitStatus);
  }

  // Some is the runtime's until the end.
  std::string faultOfMemory() const {
    const std::int64_t more = liveMemory() - kept_;
    return more > 0 ? std::to_string(more) + " pieces of memory are not given back" : "";
  }

  std::string faultOfFiles(Disturber& disturber) const {
    for (const char* path : {kJobFilePath, kFleetPath}) {
      if (world_.folder.read(path) != disturber.last(path)) {
        return std::string(path) + " is not the version put in place last";
      }
    }
    for (const std::string& version : disturber.versions(kJobFilePath)) {
      std::string fault = faultOfVersion(version);
      if (!fault.empty()) return fault;
    }
    return {};
  }

  // A job whose program cannot be started stays as it was begun; of a write that fails no word is
  // said.
  std::string faultOfSilence(const Disturber& disturber) const {
    const std::string state = stateOf(world_);
    if (disturber.hasKeptFromStarting() && state != "RUN") {
      return "a job that could not start its program is " + state;
    }
    if (disturber.hasKeptFromWriting() && errorsIn(world_.logText()) != errorsIn(baseline_.log)) {
      return "a write that failed is told";
    }
    return {};
  }

  std::string differenceOf(Disturber& disturber) const {
    std::vector<std::string> versions = disturber.versions(kJobFilePath);
    versions.insert(versions.begin(), baseline_.jobFiles.front());
    if (versions != baseline_.jobFiles) return "the job file had other versions";
    std::string other = difference(outcomeOf(baseline_.after), outcomeOf(world_.now()));
    if (!other.empty()) return other;
    return world_.logText() == baseline_.log ? "" : "the log is another";
  }

  World& world_;
  const Tell& tell_;
  Baseline baseline_;
  test::TempFolder counts_;
  std::int64_t kept_ = 0;
  std::vector<std::pair<Place, std::vector<int>>> ways_;
  Tally tally_;
};

}  // namespace

Tally proveCalls(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell) {
  Failures failures(world, tell);
  const std::vector<Fault> faults = failures.faults();
  for (std::uint64_t i = first - 1; i < faults.size(); i += stride) failures.play(faults[i]);
  return failures.tally();
}

Tally proveMemory(World& world, std::uint64_t stride, std::uint64_t first, const Tell& tell) {
  Failures failures(world, tell);
  for (const bool isForGood : {false, true}) {
    std::uint64_t request = kFirstRequest - 1 + first;
    while (failures.playMemory(request, isForGood)) request += stride;
  }
  return failures.tally();
}

}  // namespace kelvane::proofs
