// One product's rule: the catalogue read, in both its forms, and the rule in its middle chosen.

#include <benchmark/benchmark.h>

#include "benchmarks/worker/Samples.h"
#include "tests/support/PropertyLists.h"

namespace kelvane::benchmarks {
namespace {

using Form = std::string (*)(const std::string& content);

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
