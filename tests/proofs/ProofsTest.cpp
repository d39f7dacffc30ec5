// A slice of what tools/prove-kills, prove-failures, prove-power-loss, prove-readers and
// prove-sizes prove whole.

#include <algorithm>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/proofs/Calls.h"
#include "tests/proofs/Failures.h"
#include "tests/proofs/JobWatcher.h"
#include "tests/proofs/Kills.h"
#include "tests/proofs/PowerLoss.h"
#include "tests/proofs/Readers.h"
#include "tests/proofs/Sizes.h"

namespace kelvane::proofs {
namespace {

void tell(const std::string& deviation) { ADD_FAILURE() << deviation; }

std::string nameOf(std::string name) {
  std::erase(name, '-');
  return name;
}

class EachJob : public ::testing::TestWithParam<std::string> {
 protected:
  World world{scenarioNamed(GetParam())};
};

TEST_P(EachJob, KilledAnywhereLeavesWholeFiles) {
  EXPECT_GT(proveKills(world, 97, 20, tell).points, 0U);
}

TEST_P(EachJob, EndsWhateverCallFails) { EXPECT_GT(proveCalls(world, 997, 7, tell).points, 0U); }

TEST_P(EachJob, EndsWithoutMemory) { EXPECT_GT(proveMemory(world, 997, 11, tell).points, 0U); }

TEST_P(EachJob, ShowsReadersWholeVersionsInOrder) {
  constexpr std::uint64_t kReadings = 500;
  EXPECT_GE(proveReadings(world, kReadings, tell).points, kReadings);
}

std::vector<std::string> jobNames() {
  std::vector<std::string> names;
  for (const Scenario& scenario : scenarios()) names.emplace_back(scenario.name);
  return names;
}

// All calls that the kills and failures know nothing of.
class CallCollector : public JobWatcher {
 public:
  using JobWatcher::JobWatcher;
  std::set<long> unknown;

 protected:
  Decision decide(const Call& call) override {
    if (kindOf(call.number) == nullptr) unknown.insert(call.number);
    return {};
  }
};

TEST_P(EachJob, MakesOnlyCallsThatAreKnown) {
  std::vector<long> every(1'000);
  std::iota(every.begin(), every.end(), 0);
  CallCollector collector(world);
  trace(world.command(), every, collector);
  for (const long number : collector.unknown) EXPECT_TRUE(isPassedOver(number)) << number;
}

INSTANTIATE_TEST_SUITE_P(Proofs, EachJob, ::testing::ValuesIn(jobNames()),
                         [](const auto& instance) { return nameOf(instance.param); });

class EachProgram : public ::testing::TestWithParam<std::string> {};

TEST_P(EachProgram, LeavesOldOrNewWhenThePowerFails) {
  EXPECT_GT(provePowerLoss(GetParam(), 3, tell).points, 0U);
}

INSTANTIATE_TEST_SUITE_P(Proofs, EachProgram, ::testing::ValuesIn(powerLossNames()),
                         [](const auto& instance) { return nameOf(instance.param); });

TEST(LargeJobFile, OfTenMegabytesIsKept) {
  World world(scenarioNamed("query"));
  EXPECT_EQ(proveSize(world, 10'000'000, tell).points, 1U);
}

TEST(Consoles, BesideAWorkerLoseNothing) {
  World world(scenarioNamed("download"));
  EXPECT_EQ(proveConsoles(world, 2, tell).points, 2U);
}

}  // namespace
}  // namespace kelvane::proofs
