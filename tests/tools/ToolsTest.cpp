// The parts of the tools that are written in python3, by their own tests.

#include <string>

#include <gtest/gtest.h>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

void expectPassing(const std::string& name) {
  const test::TempFolder folder;
  const test::Ended ended = test::runProgram(
      {KELVANE_PYTHON, std::string(KELVANE_TOOLS_TESTS) + "/" + name}, folder.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
}

TEST(Tools, KnowSmallMistakesThatTestsShouldCatch) { expectPassing("mutants_test.py"); }

TEST(Tools, TakeNoReasonForWhatIsNotThere) { expectPassing("reasons_test.py"); }

TEST(Tools, KnowWhatWasReachedOfASource) { expectPassing("source_maps_test.py"); }

}  // namespace
}  // namespace kelvane
