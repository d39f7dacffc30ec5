#include "tests/proofs/Failures.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <vector>

#include <sys/syscall.h>

#include "platform/Json.h"
#include "tests/proofs/JobWatcher.h"
#include "tests/support/JobFileSchema.h"

namespace kelvane::proofs {
namespace {

namespace fs = std::filesystem;

constexpr int kShort = -1;  // in an error's place: less is read or written than was asked for

// The first requests are the runtime's own, for the exceptions that tell of those that fail: one of
// the worker's runtime and one of the simulated framework's.
constexpr std::uint64_t kFirstRequest = 3;

struct Fault {
  std::uint64_t call = 0;  // its number among those of the worker that can fail; 0: none
  int error = 0;
  bool isForGood = false;
};

std::string textOf(const Fault& fault) {
  return std::string(fault.error == kShort ? "short" : ::strerrorname_np(fault.error)) +
         (fault.isForGood ? " from call " : " at call ") + std::to_string(fault.call);
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
  Disturber(const World& world, const Fault& fault) : JobWatcher(world), fault_(fault) {}

  // The name of the call that failed first; empty where none did.
  const std::string& place() const { return place_; }
  // By call, the ways in which it can fail.
  const std::vector<std::vector<int>>& ways() const { return ways_; }
  bool leavesFilesOpen() const { return openAtEnd_ != openAtStart_; }

 protected:
  Decision decide(const Call& call) override {
    if (!call.isOfProgram) return {};
    if (openAtStart_.empty()) openAtStart_ = openFiles(call.process);
    if (call.number == SYS_exit_group) openAtEnd_ = openFiles(call.process);
    const std::vector<int> ways = waysOf(call);
    if (ways.empty()) return {};
    ways_.push_back(ways);
    const std::uint64_t number = ways_.size();
    const bool isMeant = number == fault_.call || (fault_.isForGood && number > fault_.call);
    if (fault_.call == 0 || !isMeant || !canFail(call, fault_.error)) return {};
    if (number != fault_.call && place_.empty()) return {};
    // An interrupted call is made again.
    isInterruption_ = !isInterruption_;
    if (fault_.error == EINTR && !isInterruption_) return {};
    if (place_.empty()) place_ = kindOf(call.number)->name;
    return refusalOf(call);
  }

 private:
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

  Fault fault_;
  std::string place_;
  bool isInterruption_ = false;
  std::vector<std::vector<int>> ways_;
  std::set<std::string> openAtStart_;
  std::set<std::string> openAtEnd_;
};

// Documented of a finished job whose first write failed; any other record is valid.
bool isNotWhole(const platform::Value& record) {
  return record.get("state_id") == platform::Value("FREE") &&
         !(record.has("result") && record.has("resultStr") && record.has("output"));
}

// What is wrong with a version of the job file; empty where nothing is.
std::string faultOfVersion(const std::string& text) {
  static std::set<std::string> sound;
  if (sound.contains(text)) return {};
  const platform::Value records = platform::parseJson(text);
  if (!records.isArray() || records.count() != 1) return "a version of the job file has no job";
  for (const char* key : {"log_id", "job_id", "state_id", "input_parameters"}) {
    if (!records.at(0).has(key)) return std::string("a version of the job file lacks ") + key;
  }
  const std::vector<std::string> violations = test::validateJobFile(text);
  if (!violations.empty() && !isNotWhole(records.at(0))) return violations.back();
  sound.insert(text);
  return {};
}

// One scenario's failures.
class Failures {
 public:
  Failures(World& world, const Tell& tell)
      : world_(world), tell_(tell), baseline_(baselineOf(world)) {
    world_.reset();
    Disturber census(world_, {});
    trace(world_.command(), allCalls(), census);
    ways_ = census.ways();
  }

  std::vector<Fault> faults() const {
    std::vector<Fault> all;
    for (std::size_t i = 0; i < ways_.size(); ++i) {
      for (const int error : ways_[i]) {
        for (const bool isForGood : {false, true}) all.push_back({i + 1, error, isForGood});
      }
    }
    return all;
  }

  void play(const Fault& fault) {
    world_.reset();
    Disturber disturber(world_, fault);
    const Traced traced = trace(world_.command(), allCalls(), disturber);
    if (disturber.place().empty()) return;
    judge(traced, disturber, disturber.place() + ", " + textOf(fault), isHarmless(fault.error));
    const bool canTidyUp = !fault.isForGood && !disturber.place().starts_with("unlink");
    if (canTidyUp) judgeLeftovers(textOf(fault));
  }

  // Whether so much memory was asked for.
  bool playMemory(std::uint64_t request, bool isForGood) {
    world_.reset();
    Command command = world_.command();
    const std::string done = world_.folder / "done";
    command.variables["LD_PRELOAD"] = KELVANE_MEMORY_INTERPOSER;
    command.variables["KELVANE_FAULT_DONE"] = done;
    command.variables[isForGood ? "KELVANE_FAULT_MEMORY_FROM" : "KELVANE_FAULT_MEMORY"] =
        std::to_string(request);
    Disturber disturber(world_, {});
    std::vector<long> calls = fewCalls();
    calls.push_back(SYS_exit_group);
    const Traced traced = trace(command, calls, disturber);
    if (!fs::exists(done)) return false;
    judge(traced, disturber,
          (isForGood ? "memory from request " : "memory at request ") + std::to_string(request),
          false);
    if (!isForGood) judgeLeftovers("memory at request " + std::to_string(request));
    return true;
  }

  const Tally& tally() const { return tally_; }

 private:
  void judge(const Traced& traced, Disturber& disturber, const std::string& place,
             bool changesNothing) {
    ++tally_.points;
    std::string found = faultOf(traced);
    if (found.empty() && disturber.leavesFilesOpen()) found = "a file stays open";
    if (found.empty()) found = faultOfFiles(disturber);
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

  static std::string faultOf(const Traced& traced) {
    if (!traced.isInTime) return "the worker, or what it has started, does not end";
    if (traced.signal != 0) return std::string("ended by ") + ::strsignal(traced.signal);
    return traced.exitStatus == 0 ? "" : "exit status " + std::to_string(traced.exitStatus);
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
  std::vector<std::vector<int>> ways_;
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
