#include "tests/proofs/Readers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Json.h"
#include "tests/proofs/JobWatcher.h"
#include "tests/support/Program.h"

namespace kelvane::proofs {
namespace {

using platform::Value;

// --- readings

// What one reader has seen: each text that was another than the one before.
struct Reader {
  std::uint64_t readings = 0;
  std::vector<std::string> seen;
  bool wasMissing = false;

  void readOnce(const char* path) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    wasMissing = wasMissing || file < 0;
    if (file < 0) return;
    std::string text;
    // In small pieces, so that there is time to change the file below its reader.
    std::array<char, 256> piece;
    for (ssize_t got = 0; (got = ::read(file, piece.data(), piece.size())) > 0;) {
      text.append(piece.data(), static_cast<std::size_t>(got));
    }
    ::close(file);
    ++readings;
    if (seen.empty() || seen.back() != text) seen.push_back(std::move(text));
  }
};

// What is wrong with what was seen, of which some versions may be missing; empty where nothing is.
std::string faultOfReader(const Reader& reader, const std::vector<std::string>& versions) {
  if (reader.wasMissing) return "the job file was not there";
  auto next = versions.begin();
  for (const std::string& text : reader.seen) {
    if (std::find(versions.begin(), versions.end(), text) == versions.end()) {
      return "a reader saw what is no version";
    }
    next = std::find(next, versions.end(), text);
    if (next == versions.end()) return "a reader saw an older version again";
  }
  return {};
}

std::vector<Reader> readWhileRunning(World& world) {
  std::vector<Reader> readers(std::max(2U, std::thread::hardware_concurrency()));
  const std::string path = world.folder / kJobFilePath;
  std::atomic<bool> isOver = false;
  std::vector<std::thread> threads;
  threads.reserve(readers.size());
  world.reset();
  for (Reader& reader : readers) {
    threads.emplace_back([&] {
      do {
        reader.readOnce(path.c_str());
      } while (!isOver);
    });
  }
  JobWatcher watcher(world);
  trace(world.command(), fewCalls(), watcher);
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  return readers;
}

// --- consoles

pid_t startProgram(const std::vector<std::string>& argv, const World& world) {
  const pid_t process = ::fork();
  if (process != 0) return process;
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    ::dup2(::open("/dev/null", O_WRONLY), stream);
  }
  test::becomeProgram(argv, world.path(), world.command().variables);
}

int statusOf(pid_t process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::vector<std::string> consoleQuery(const World& world, const char* whenBusy) {
  return {KELVANE_CONSOLE,
          "query",
          "--shared",
          world.folder / "shared/",
          "--bundle",
          world.bundle.path(),
          "--url",
          world.folder / "service",
          whenBusy,
          "fw3",
          "1.0"};
}

// Records that nobody who is here knows.
Value otherRecords() {
  return platform::parseJson(R"([
      {"log_id": "3", "job_id": "updateSW", "state_id": "FREE", "größe": 12345678901234567890123},
      {"log_id": "a job", "note": [0.10, 1e3, null]}])");
}

void putRecords(const World& world) {
  Value records = otherRecords();
  records.append(world.jobs().at(0));
  world.folder.write(kJobFilePath, *platform::printJson(records));
}

bool isDone(const Value& record, const char* command) {
  return record.get("job_id") == Value(command) && record.get("state_id") == Value("FREE") &&
         record.get("result") == Value::integer(0);
}

// `added` records behind those that were there.
std::string faultOfRecords(const World& world, std::size_t added) {
  const Value records = world.jobs();
  const Value others = otherRecords();
  if (!records.isArray() || records.count() != others.count() + 1 + added) {
    return "there are other records than were put in";
  }
  for (std::size_t i = 0; i < others.count(); ++i) {
    if (records.at(i) != others.at(i)) return "a record of somebody else was changed";
  }
  if (!isDone(records.at(others.count()), world.scenario().command)) return "the worker's job";
  for (std::size_t i = others.count() + 1; i < records.count(); ++i) {
    if (!isDone(records.at(i), "getOnlineUpdateData")) return "a console's job";
  }
  return {};
}

// The first engine of a round waits until it is let go.
class HeldEngine {
 public:
  explicit HeldEngine(const World& world)
      : held_(world.folder / "held"), pipe_(world.bundle / "go") {
    const std::string engine = world.bundle / "Contents/Resources/EngineRunner";
    std::filesystem::rename(engine, engine + ".real");
    const std::string script = "if mkdir held 2> /dev/null; then read -r line < '" + pipe_ +
                               "'; fi\nexec \"$0.real\" \"$@\"\n";
    world.bundle.write("Contents/Resources/EngineRunner", "#!/bin/sh\n" + script);
    ::chmod(engine.c_str(), 0755);
    if (::mkfifo(pipe_.c_str(), 0600) != 0) throw std::runtime_error("no pipe for the engine");
  }

  void awaitStart() const {
    while (!std::filesystem::exists(held_)) std::this_thread::yield();
  }
  void letGo() const { std::ofstream(pipe_) << "go\n"; }

 private:
  std::string held_;
  std::string pipe_;
};

// Two consoles that are started while a worker runs; both wait for it, or both give up.
std::string faultOfRound(const World& world, const HeldEngine& engine, bool isPatient) {
  constexpr int kBusy = 6;
  world.reset();
  putRecords(world);
  const pid_t worker = startProgram(world.command().argv, world);
  engine.awaitStart();
  std::vector<std::string> argv = consoleQuery(world, "--wait");
  if (!isPatient) std::erase(argv, "--wait");
  const std::array<pid_t, 2> consoles = {startProgram(argv, world), startProgram(argv, world)};
  std::string fault;
  std::size_t added = 0;
  if (isPatient) engine.letGo();
  for (const pid_t console : consoles) {
    const int status = statusOf(console);
    if (status == 0) ++added;
    if (status != 0 && (isPatient || status != kBusy)) fault = "a console failed";
  }
  if (!isPatient) engine.letGo();
  if (statusOf(worker) != 0) fault = "the worker failed";
  return fault.empty() ? faultOfRecords(world, added) : fault;
}

}  // namespace

Tally proveReadings(World& world, std::uint64_t readings, const Tell& tell) {
  const Baseline baseline = baselineOf(world);
  Tally tally;
  bool isAnythingSeen = false;
  // On a busy machine a short job may be over before a reader has looked twice.
  constexpr int kMostRuns = 100;
  for (int run = 0; tally.points < readings || (!isAnythingSeen && run < kMostRuns); ++run) {
    for (const Reader& reader : readWhileRunning(world)) {
      isAnythingSeen = isAnythingSeen || reader.seen.size() > 1;
      tally.points += reader.readings;
      const std::string fault = faultOfReader(reader, baseline.jobFiles);
      if (fault.empty()) continue;
      ++tally.deviations;
      tell(std::string(world.scenario().name) + ": " + fault);
    }
  }
  if (!isAnythingSeen) {
    ++tally.deviations;
    tell(std::string(world.scenario().name) + ": no reader saw the job file change");
  }
  return tally;
}

Tally proveConsoles(World& world, std::uint64_t rounds, const Tell& tell) {
  Tally tally;
  const HeldEngine engine(world);
  for (std::uint64_t round = 0; round < rounds; ++round) {
    ++tally.points;
    const std::string fault = faultOfRound(world, engine, round % 2 == 0);
    if (fault.empty()) continue;
    ++tally.deviations;
    tell("two consoles and a worker: " + fault + "\n" + world.folder.read(kJobFilePath));
  }
  return tally;
}

}  // namespace kelvane::proofs
