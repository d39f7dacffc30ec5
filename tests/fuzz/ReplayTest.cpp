// Every fuzz target with its seeds: inputs that are worth looking at, and all that a fuzzer has
// ever found fault with.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::fuzz {
namespace {

using ::testing::HasSubstr;

std::vector<std::string> allTargets() {
  std::istringstream words(KELVANE_FUZZ_TARGETS);
  std::vector<std::string> targets;
  for (std::string target; words >> target;) targets.push_back(target);
  return targets;
}

test::Ended replayed(const std::string& target, const std::string& seeds) {
  return test::runProgram({KELVANE_FUZZ_PROGRAMS "fuzz_" + target, seeds}, "/");
}

class SeedsOf : public ::testing::TestWithParam<std::string> {};

TEST_P(SeedsOf, KeepTheLaws) {
  const test::Ended ended = replayed(GetParam(), KELVANE_FUZZ_SOURCES "seeds/" + GetParam());
  EXPECT_EQ(ended.signal, 0) << ended.err;
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr(" seeds\n"));
}

// What a replay takes is bound by how much there is to put in, not by a clock: with these a second
// or less.
TEST_P(SeedsOf, AreFewAndSmall) {
  constexpr std::size_t kMost = 64;
  constexpr std::uintmax_t kMostBytes = 32768;
  std::size_t count = 0;
  std::uintmax_t size = 0;
  for (const auto& seed :
       std::filesystem::directory_iterator(KELVANE_FUZZ_SOURCES "seeds/" + GetParam())) {
    ++count;
    size += seed.file_size();
  }
  EXPECT_GT(count, 0U);
  EXPECT_LE(count, kMost);
  EXPECT_LE(size, kMostBytes);
}

INSTANTIATE_TEST_SUITE_P(Target, SeedsOf, ::testing::ValuesIn(allTargets()),
                         [](const auto& one) { return one.param; });

TEST(Replay, FailsWhereThereAreNoSeeds) {
  const test::TempFolder empty;
  const test::Ended ended = replayed("json", empty.path());
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_EQ(ended.out, "0 seeds\n");
  EXPECT_EQ(replayed("json", empty / "missing").exitStatus, 1);
}

}  // namespace
}  // namespace kelvane::fuzz
