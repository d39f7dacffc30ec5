// What the pieces of the worker's work cost by themselves, in one process; whole processes are
// measured by `run`.

#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
