// What is drawn reaches what it is drawn from.

#include <cstdint>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/properties/Drawn.h"

namespace kelvane::properties {
namespace {

TEST(Drawn, EachOfARangeComesWhateverTheSize) {
  for (const int size : {0, 12, rc::kNominalSize}) {
    std::set<int> seen;
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
      seen.insert(between(0, 5)(rc::Random(seed), size).value());
    }
    EXPECT_THAT(seen, ::testing::ElementsAre(0, 1, 2, 3, 4)) << size;
  }
}

}  // namespace
}  // namespace kelvane::properties
