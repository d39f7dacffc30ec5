// A slice of what tools/prove-kills, prove-failures, prove-power-loss, prove-readers and
// prove-sizes prove whole.

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tests/proofs/Failures.h"
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
