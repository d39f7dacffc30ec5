// A whole process that finds no job of its log id, by the number of records in the job file.

#include <cstdlib>
#include <vector>

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/worker/Samples.h"

namespace kelvane::benchmarks {
namespace {

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

void wholeProcess(benchmark::State& state) {
  const WorkerInFolder there(jobFile(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) {
    runWorker({KELVANE_WORKER, "none", there.path("")});
    there.emptyLog();
  }
}
BENCHMARK(wholeProcess)->Arg(3)->Arg(2'000)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kelvane::benchmarks
