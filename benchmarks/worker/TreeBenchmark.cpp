// A tree of small files taken into a folder, over the copy that the last time made.

#include <filesystem>

#include <benchmark/benchmark.h>

#include "benchmarks/worker/Samples.h"

namespace kelvane::benchmarks {
namespace {

void synchroniseTree(benchmark::State& state) {
  WorkerInFolder there("[]");
  for (std::int64_t number = 0; number < state.range(0); ++number) {
    there.folder().write(
        "source/Manager.app/part-" + std::to_string(number / 100) + "/" + std::to_string(number),
        std::string(500, 'x'));
  }
  std::filesystem::create_directory(there.path("target"));
  for (auto _ : state) there.worker().syncFiles(there.path("source"), there.path("target"));
  if (!std::filesystem::exists(there.path("target/Manager.app/part-0/0"))) {
    state.SkipWithError("the tree was not copied");
  }
}
BENCHMARK(synchroniseTree)->Arg(100)->Arg(2'000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace kelvane::benchmarks
