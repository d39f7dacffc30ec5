// What was given on the command line, by name.

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/commands/Given.h"

namespace kelvane::console {
namespace {

TEST(Given, NameThatNobodyDeclaredIsAMistake) {
  const Given given;
  EXPECT_FALSE(given.knows("--size"));
  EXPECT_THROW(given.has("--size"), std::out_of_range);
  EXPECT_THROW(given.text("--size"), std::out_of_range);
  EXPECT_THROW(given.texts("--size"), std::out_of_range);
}

TEST(Given, WhatStandsInIsTakenWhereNothingWasGiven) {
  Given given;
  given.declare("--size");
  EXPECT_EQ(given.text("--size", "3"), "3");
  given.set("--size", {""});
  EXPECT_EQ(given.text("--size", "3"), "");
}

TEST(Given, WhatAnotherOneHasStandsBefore) {
  Given given;
  given.declare("--size");
  given.set("--level", {"high"});
  Given other;
  other.set("--size", {"3"});
  other.set("--level", {"low"});
  given.addFrom(other);
  EXPECT_EQ(given.text("--size"), "3");
  EXPECT_EQ(given.texts("--level"), (Given::Values{"low", "high"}));
}

TEST(Given, WhatTheEnvironmentHasStandsInAndIsNotOnTheLine) {
  Given given;
  given.declare("--size");
  given.set("--level", {"high"});
  EXPECT_FALSE(given.isOnTheLine("--size"));
  given.fallBack("--size", "5");
  given.fallBack("--level", "low");
  EXPECT_EQ(given.text("--size"), "5");
  EXPECT_FALSE(given.isOnTheLine("--size"));
  EXPECT_EQ(given.text("--level"), "high");
  EXPECT_TRUE(given.isOnTheLine("--level"));
}

}  // namespace
}  // namespace kelvane::console
