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

using Text = std::string (*)(const platform::Value& value);

std::string json(const platform::Value& value) { return platform::printJson(value).value_or(""); }

std::string dump(const platform::Value& value) { return platform::describe(value); }

// Of values that remember no text yet.
void makeText(benchmark::State& state, Text text) {
  const std::string file = jobs(state);
  std::size_t bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const platform::Value value = platform::parseJson(file);
    state.ResumeTiming();
    bytes = text(value).size();
  }
  countBytes(state, bytes);
}
BENCHMARK_CAPTURE(makeText, json, json)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(makeText, dump, dump)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);

// Once more, of values that have not changed since.
void repeatText(benchmark::State& state, Text text) {
  const platform::Value value = platform::parseJson(jobs(state));
  std::size_t bytes = 0;
  for (auto _ : state) bytes = text(value).size();
  countBytes(state, bytes);
}
BENCHMARK_CAPTURE(repeatText, json, json)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(repeatText, dump, dump)->Arg(3)->Arg(2'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kelvane::benchmarks
