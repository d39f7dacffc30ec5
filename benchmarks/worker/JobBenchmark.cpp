// A line of the log, and one percentage into the job file: two reads, one write, and the dumps in
// the log.

#include <benchmark/benchmark.h>

#include "benchmarks/worker/Samples.h"
#include "log/iLog.h"

namespace kelvane::benchmarks {
namespace {

void logLine(benchmark::State& state) {
  WorkerInFolder there("[]");
  for (auto _ : state) {
    KELVANE_LOG("updateFW:", "fshProg.fp_u8Status = %d, fshProg.fp_u8Stage = %d", 0, 3);
  }
}
BENCHMARK(logLine)->Unit(benchmark::kMicrosecond);

void progressUpdate(benchmark::State& state) {
  WorkerInFolder there(jobFile(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) {
    there.worker().updateFWUpdateStatus(progress(), "17");
    there.emptyLog();
  }
}
BENCHMARK(progressUpdate)->Arg(3)->Arg(100)->Arg(2'000)->Arg(20'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kelvane::benchmarks
