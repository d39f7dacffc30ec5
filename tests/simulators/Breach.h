// Breaking the framework's contract, and what has to come of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/simulators/SimulatedWorld.h"

namespace kelvane::test {

// Breaks the contract in a world where the image has been examined; gives the status.
using Breach = std::function<std::uint32_t(SimulatedWorld&)>;

inline void expectBreach(SimulatedWorld& world, const std::string& text, const Breach& breach) {
  ASSERT_EQ(world.journal.violations(), std::vector<std::string>{}) << "before the breach";
  EXPECT_NE(breach(world), 0U) << "the call is refused";
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{text});
}

inline void expectBreach(const std::string& text, const Breach& breach) {
  SimulatedWorld world;
  world.upToExamined(world.standardImage());
  expectBreach(world, text, breach);
}

}  // namespace kelvane::test
