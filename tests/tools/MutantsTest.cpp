// The mistakes that tools/mutate can make in the sources as they are, and what it says of them.

#include <gtest/gtest.h>

#include "tests/support/LogLine.h"
#include "tests/tools/Script.h"

namespace kelvane::tools {
namespace {

// It fails where a mistake that need not be caught, with its reason, cannot be made any more.
TEST(Mutate, NumbersAllMistakesAndFindsThoseThatHaveAReason) {
  const test::Ended listed = runScript("mutate", {"--list"});
  EXPECT_EQ(listed.exitStatus, 0) << listed.err;
  const std::vector<std::string> mistakes = test::splitLines(listed.out);
  ASSERT_GT(mistakes.size(), 3000U);
  EXPECT_TRUE(mistakes.back().starts_with("#" + std::to_string(mistakes.size()) + " platform/"))
      << mistakes.back();
}

TEST(Mutate, TellsWhatBecameOfThem) {
  const test::TempFolder folder;
  const test::Ended ended =
      test::runProgram({KELVANE_PYTHON, KELVANE_TOOLS_TESTS "/mutate_test.py"}, folder.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
}

}  // namespace
}  // namespace kelvane::tools
