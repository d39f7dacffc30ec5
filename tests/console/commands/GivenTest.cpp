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

TEST(Given, OtherOneCompletesOnlyWhatIsMissing) {
  Given given;
  given.declare("--size");
  given.set("--level", {"high"});
  Given other;
  other.set("--size", {"3"});
  other.set("--level", {"low"});
  given.completeFrom(other);
  EXPECT_EQ(given.text("--size"), "3");
  EXPECT_EQ(given.text("--level"), "high");
}

}  // namespace
}  // namespace kelvane::console
