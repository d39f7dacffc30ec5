// The catalogue in both its forms: parsed, and one product's rule chosen, the one in its middle.

#include <benchmark/benchmark.h>

#include "benchmarks/worker/Samples.h"
#include "platform/PropertyList.h"
#include "tests/support/PropertyLists.h"

namespace kelvane::benchmarks {
namespace {

using Form = std::string (*)(const std::string& content);

void parseCatalogue(benchmark::State& state, Form form) {
  const std::string bytes = form(catalogue(static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) benchmark::DoNotOptimize(platform::parsePropertyList(bytes));
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) *
                          static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK_CAPTURE(parseCatalogue, xml, test::xmlPropertyList)
    ->Arg(10)
    ->Arg(1'000)
    ->Arg(50'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseCatalogue, binary, test::binaryPropertyList)
    ->Arg(10)
    ->Arg(1'000)
    ->Arg(50'000)
    ->Unit(benchmark::kMillisecond);

// Of a file that has not changed since it was parsed.
void chooseRule(benchmark::State& state, Form form) {
  const auto rules = static_cast<std::size_t>(state.range(0));
  WorkerInFolder there("[]", R"({"online_update_plist_name": "Offers"})");
  there.folder().write("Offers.plist", form(catalogue(rules)));
  const platform::Value parameters = platform::Value::dictionary(
      {{"productid", "product-" + std::to_string(rules / 2)}, {"folder", there.folder().path()}});
  for (auto _ : state) {
    const platform::Value rule = there.worker().getUpdateEngineDataInDownloadFolder(parameters);
    if (!rule.has("Version")) state.SkipWithError("the rule was not found");
  }
}
BENCHMARK_CAPTURE(chooseRule, xml, test::xmlPropertyList)
    ->Arg(10)
    ->Arg(1'000)
    ->Arg(50'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(chooseRule, binary, test::binaryPropertyList)
    ->Arg(10)
    ->Arg(1'000)
    ->Arg(50'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kelvane::benchmarks
