// The text of a job file in all its forms, by its number of records.

#include <benchmark/benchmark.h>

#include "benchmarks/worker/Samples.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::benchmarks {
namespace {

std::string jobs(const benchmark::State& state) {
  return jobFile(static_cast<std::size_t>(state.range(0)));
}

void countBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) *
                          static_cast<std::int64_t>(state.iterations()));
}

void readJson(benchmark::State& state) {
  const std::string text = jobs(state);
  for (auto _ : state) benchmark::DoNotOptimize(platform::parseJson(text));
  countBytes(state, text.size());
}
BENCHMARK(readJson)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);

void writeJson(benchmark::State& state) {
  const platform::Value value = platform::parseJson(jobs(state));
  std::size_t bytes = 0;
  for (auto _ : state) bytes = platform::printJson(value)->size();
  countBytes(state, bytes);
}
BENCHMARK(writeJson)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);

void describeJobs(benchmark::State& state) {
  const platform::Value value = platform::parseJson(jobs(state));
  std::size_t bytes = 0;
  for (auto _ : state) bytes = platform::describe(value).size();
  countBytes(state, bytes);
}
BENCHMARK(describeJobs)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kelvane::benchmarks
