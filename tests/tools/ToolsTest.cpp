// The parts of the tools that are written in python3, by their own tests; the one that feeds the
// fuzz targets, with a program in a fuzzer's place.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
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

// The tool's one line about a target.
std::string fuzzed(const test::TempFolder& build) {
  const test::Ended ended = test::runProgram(
      {KELVANE_SOURCES "tools/fuzz", "--build", build.path(), "--seconds", "1", "names"},
      build.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  return ended.out;
}

void makeFuzzer(const test::TempFolder& build, const std::string& comment) {
  const std::string program = "tests/fuzz/fuzz_names";
  build.write(program, "#!/bin/sh\n# " + comment + R"(
echo '#12 DONE   cov: 345 ft: 678'
echo 'stat::number_of_executed_units: 9012'
echo 'stat::new_units_added:          3'
)");
  std::filesystem::permissions(build / program, std::filesystem::perms::owner_all);
}

TEST(Fuzz, TellsWhatTheFuzzerTold) {
  const test::TempFolder build;
  makeFuzzer(build, "a program");
  EXPECT_EQ(fuzzed(build),
            "names               9012 runs    345 reached     3 new    0 min spent    0 of it by "
            "this program   no finding\n");
}

TEST(Fuzz, TellsTheMinutesOfTheProgramAsItIsApart) {
  const test::TempFolder build;
  makeFuzzer(build, "a program");
  fuzzed(build);
  const std::string spent = build.read("spent/names");
  const std::string sum = spent.substr(spent.rfind(' '));
  build.write("spent/names", "480 120" + sum + "1200 0 another\n300 0\n");
  EXPECT_THAT(fuzzed(build), ::testing::HasSubstr("35 min spent   10 of it by this program"));
  makeFuzzer(build, "another program");
  EXPECT_THAT(fuzzed(build), ::testing::HasSubstr("35 min spent    0 of it by this program"));
}

}  // namespace
}  // namespace kelvane
