// What the worker costs beside the controllers' time: the text of a large job file in all its
// forms, one progress step, and whole processes.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Kelvane.h"
#include "log/iLog.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TempFolder.h"

namespace {

using kelvane::platform::Value;

// A job file of about so many bytes; the running job is its last record.
std::string jobFile(std::size_t bytes) {
  Value jobs = Value::array();
  for (std::size_t size = 0; size < bytes; size += 400) {
    const Value entry = Value::dictionary({{"wwn", "5000A1B2C3D4E5F6"},
                                           {"file_path", "/Users/someone/Downloads/image.img"},
                                           {"fw_percentage", Value::integer(100)},
                                           {"note", Value::number("0.10")}});
    jobs.append(Value::dictionary({{"log_id", "job-" + std::to_string(size)},
                                   {"job_id", "updateFW"},
                                   {"state_id", "FREE"},
                                   {"output", Value::array({entry})},
                                   {"result", Value::integer(0)}}));
  }
  const Value entry = Value::dictionary({{"wwn", "A"}, {"file_path", "/i"}});
  jobs.append(Value::dictionary(
      {{"log_id", "17"}, {"state_id", "RUN"}, {"output", Value::array({entry})}}));
  return *kelvane::platform::printJson(jobs);
}

void countBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) *
                          static_cast<std::int64_t>(state.iterations()));
}

void readJson(benchmark::State& state) {
  const std::string text = jobFile(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(kelvane::platform::parseJson(text));
  countBytes(state, text.size());
}
BENCHMARK(readJson)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void writeJson(benchmark::State& state) {
  const Value jobs =
      kelvane::platform::parseJson(jobFile(static_cast<std::size_t>(state.range(0))));
  std::size_t bytes = 0;
  for (auto _ : state) bytes = kelvane::platform::printJson(jobs)->size();
  countBytes(state, bytes);
}
BENCHMARK(writeJson)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void describeJobs(benchmark::State& state) {
  const Value jobs =
      kelvane::platform::parseJson(jobFile(static_cast<std::size_t>(state.range(0))));
  std::size_t bytes = 0;
  for (auto _ : state) bytes = kelvane::platform::describe(jobs).size();
  countBytes(state, bytes);
}
BENCHMARK(describeJobs)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// One percentage into the job file: two reads, one write, and the log's dumps.
void progressStep(benchmark::State& state) {
  const kelvane::test::TempFolder folder;
  folder.write("utility/command/BGPLog.json", jobFile(static_cast<std::size_t>(state.range(0))));
  const std::string log = folder.write("utility/logs/TarselVistrelUtility.txt", "");
  kelvane::test::FakeHost host;
  kelvane::Kelvane worker(host);
  worker.init(folder.path() + "/");
  const Value update =
      Value::dictionary({{"wwn", "A"}, {"fw_percentage", kelvane::platform::Value::integer(37)}});
  for (auto _ : state) {
    worker.updateFWUpdateStatus(update, "17");
    std::filesystem::resize_file(log, 0);
  }
  kelvane::setLogPath("");
}
BENCHMARK(progressStep)->Arg(1 << 10)->Arg(1 << 17)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void runWorker(const std::vector<std::string>& arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_t process = 0;
  if (::posix_spawn(&process, argv[0], nullptr, nullptr, argv.data(), environ) != 0) std::abort();
  int status = 0;
  ::waitpid(process, &status, 0);
}

// A whole process that finds no job of its log id.
void wholeProcess(benchmark::State& state) {
  const kelvane::test::TempFolder folder;
  folder.write("utility/command/BGPLog.json", jobFile(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) runWorker({KELVANE_WORKER, "none", folder.path() + "/"});
}
BENCHMARK(wholeProcess)->Arg(1 << 10)->Arg(1 << 20)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
