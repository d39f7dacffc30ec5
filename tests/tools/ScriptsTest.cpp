// What the scripts of the long checks make of what the programs say that they run: programs for the
// shell stand in for those, good and bad ones.

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/LogLine.h"
#include "tests/tools/Script.h"

namespace kelvane::tools {
namespace {

namespace fs = std::filesystem;

using test::Ended;
using test::splitLines;
using test::TempFolder;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::MatchesRegex;
using ::testing::Not;

// --- prove-faults, prove-dialogues

// The proof of two parts, "good" and "bad", the second of which is said to end so.
Ended proveParts(const std::string& bad) {
  const TempFolder build;
  writeProgram(build, "tests/proofs/prove_faults",
               "case $2 in\n"
               "  parts) printf 'good\\nbad\\n' ;;\n"
               "  good) echo 'good     3 failing calls, no deviation' ;;\n"
               "  bad) " +
                   bad +
                   " ;;\n"
                   "esac\n");
  return runScript("prove-faults", {"kills", "--build", build.path()});
}

TEST(ProveFaults, AddsUpWhatItsPartsTried) {
  const Ended proved = proveParts("echo 'bad     4 kills, no deviation'");
  EXPECT_EQ(proved.exitStatus, 0) << proved.err;
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("7 in [0-9]+ s: no deviation"));
}

TEST(ProveFaults, FailsWhereAPartDeviates) {
  const Ended proved = proveParts("echo 'bad     4 states of the disk, 2 deviate'; exit 1");
  EXPECT_EQ(proved.exitStatus, 1);
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("7 in [0-9]+ s: 2 deviate"));
}

TEST(ProveFaults, FailsWhereAPartDoesNotComeToItsEnd) {
  const Ended proved = proveParts("echo 'bad, killed before call 5: gone'; kill -9 $$");
  EXPECT_EQ(proved.exitStatus, 1);
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("3 in [0-9]+ s; some parts did not .*"));
}

TEST(ProveFaults, FailsWhereAPartTriedNothing) {
  const Ended proved = proveParts("echo 'bad     0 kills, no deviation'; exit 1");
  EXPECT_EQ(proved.exitStatus, 1);
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("3 in [0-9]+ s; 1 parts have no such point.*"));
}

TEST(ProveFaults, HandsItsProgramKindPartAndStride) {
  const TempFolder build;
  writeProgram(build, "tests/proofs/prove_faults",
               "echo \"$*\" >> '" + build / "asked" + "'; echo 'a     1 kills, no deviation'\n");
  const std::vector<std::string> arguments = {"--build", build.path(), "--every", "9", "query"};
  EXPECT_EQ(runScript("prove-failures", arguments).exitStatus, 0);
  std::vector<std::string> asked = splitLines(build.read("asked"));
  std::sort(asked.begin(), asked.end());
  EXPECT_THAT(asked, ::testing::ElementsAre("calls query 9", "memory query 9"));
}

Ended proveForms(const std::string& bad) {
  const TempFolder build;
  writeProgram(build, "tests/dialogues/prove_dialogues",
               "case $1 in\n"
               "  forms) printf 'good  a form\\nbad  another\\n' ;;\n"
               "  good) echo 'good     3 dialogues, no deviation' ;;\n"
               "  bad) " +
                   bad +
                   " ;;\n"
                   "esac\n");
  return runScript("prove-dialogues", {"--build", build.path()});
}

TEST(ProveDialogues, FailsWhereAFormDeviates) {
  const Ended proved = proveForms("echo 'bad     4 dialogues, 2 deviate'; exit 1");
  EXPECT_EQ(proved.exitStatus, 1);
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("7 dialogues in [0-9]+ s: 2 deviate"));
}

TEST(ProveDialogues, FailsWhereAFormDoesNotComeToItsEnd) {
  const Ended proved = proveForms("kill -9 $$");
  EXPECT_EQ(proved.exitStatus, 1);
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("3 dialogues in [0-9]+ s; some forms did not .*"));
}

// --- fuzz

TEST(Fuzz, ListsEachTargetThatIsBuilt) {
  const Ended listed = runScript("fuzz", {"list"});
  EXPECT_EQ(listed.exitStatus, 0);
  std::istringstream targets(KELVANE_FUZZ_TARGETS);
  const std::vector<std::string> built{std::istream_iterator<std::string>(targets), {}};
  EXPECT_THAT(splitLines(listed.out), ::testing::UnorderedElementsAreArray(built));
}

constexpr char kFuzzed[] =
    "echo '#9 INITED cov: 7 ft: 8 corp: 1/9b'; echo '#12 DONE cov: 34 ft: 56 corp: 2/18b'\n"
    "echo 'stat::number_of_executed_units: 12'; echo 'stat::new_units_added: 5'\n";

// The target "json", fuzzed by this program.
Ended fuzzJson(const TempFolder& build, const std::string& program) {
  writeProgram(build, "tests/fuzz/fuzz_json", program);
  return runScript("fuzz", {"--build", build.path(), "--seconds", "1", "json"});
}

TEST(Fuzz, TellsWhatATargetTookAndReached) {
  const TempFolder build;
  const Ended fuzzed = fuzzJson(build, kFuzzed);
  EXPECT_EQ(fuzzed.exitStatus, 0) << fuzzed.err;
  EXPECT_THAT(
      fuzzed.out,
      MatchesRegex(
          "json +12 runs +34 reached +5 new +0 min spent +0 of it by this program +no finding\n"));
}

TEST(Fuzz, FailsWhereSomethingIsFound) {
  const TempFolder build;
  const std::string finding = build / "findings/json/crash-1";
  const Ended fuzzed =
      fuzzJson(build, kFuzzed + ("echo 'x; Test unit written to " + finding + "'; exit 77\n"));
  EXPECT_NE(fuzzed.exitStatus, 0);
  EXPECT_THAT(fuzzed.out, HasSubstr("FOUND " + finding + " (see "));
}

TEST(Fuzz, GivesATargetItsSecondsItsWordsAndItsSeeds) {
  const TempFolder build;
  fuzzJson(build, "echo \"$*\"\n");
  EXPECT_THAT(build.read("logs/json"),
              AllOf(HasSubstr("-max_total_time=1 "), HasSubstr(" -dict=tests/fuzz/words/json "),
                    HasSubstr(build / "corpus/json tests/fuzz/seeds/json\n")));
}

TEST(Fuzz, KnowsNoOtherTargets) {
  EXPECT_EQ(runScript("fuzz", {"--build", "/nowhere", "jsn"}).exitStatus, 2);
}

// --- check-all

TEST(CheckAll, SaysOfEachStepWhatItIs) {
  const Ended told = runScript("check-all", {"steps"});
  EXPECT_EQ(told.exitStatus, 0);
  const std::vector<std::string> steps = splitLines(told.out);
  EXPECT_EQ(steps.size(), 11U);
  for (const std::string& step : steps) EXPECT_THAT(step, MatchesRegex("[a-z0-9+-]+ +[a-z].+"));
}

TEST(CheckAll, KnowsNoOtherSteps) {
  EXPECT_EQ(runScript("check-all", {"no-such-step"}).exitStatus, 2);
}

// A project whose tools are stand-ins that pass, but for the one that is said not to.
class CheckAllInFolder : public ::testing::Test {
 protected:
  CheckAllInFolder() {
    copyTools(project);
    for (const auto& file : fs::directory_iterator(project / "tools")) {
      const std::string name = file.path().filename();
      const bool isStep = name.starts_with("check-") || name.starts_with("prove-") ||
                          name == "coverage" || name == "mutate" || name == "fuzz";
      if (isStep && name != "check-all") put(name, "echo \"ran " + name + " $*\"\n");
    }
  }

  void put(const std::string& name, const std::string& text) const {
    writeProgram(project, "tools/" + name, text);
  }
  Ended check(std::vector<std::string> steps) const {
    steps.insert(steps.begin(), project / "tools/check-all");
    return test::runProgram(steps, project.path());
  }

  TempFolder project;
};

TEST_F(CheckAllInFolder, RunsTheStepsAndPassesWhereAllPass) {
  const Ended checked = check({"memory", "fuzz", "coverage", "mutants"});
  EXPECT_EQ(checked.exitStatus, 0) << checked.out << checked.err;
  EXPECT_THAT(splitLines(checked.out),
              IsSupersetOf({ContainsRegex("^ran check-memory"), ContainsRegex("^ran fuzz"),
                            ContainsRegex("^ran coverage"), ContainsRegex("^ran mutate"),
                            ContainsRegex("^memory +[0-9]+ s  passed"),
                            ContainsRegex("^mutants +[0-9]+ s  passed")}));
}

TEST_F(CheckAllInFolder, DrawsMutantsByTheDayAndTellsHow) {
  const std::vector<std::string> said = splitLines(check({"mutants"}).out);
  const auto ran = std::find_if(said.begin(), said.end(), [](const std::string& line) {
    return line.starts_with("ran mutate ");
  });
  ASSERT_NE(ran, said.end());
  EXPECT_THAT(*ran, MatchesRegex("ran mutate --count 20 --seed 20[0-9]{6}"));
  EXPECT_THAT(said, Contains("tools/" + ran->substr(4)));
}

TEST_F(CheckAllInFolder, GoesOnAfterAStepThatFailsAndFails) {
  put("check-memory", "echo 'one leak'; exit 1\n");
  const Ended checked = check({"memory", "coverage"});
  EXPECT_EQ(checked.exitStatus, 1);
  EXPECT_THAT(splitLines(checked.out),
              IsSupersetOf({ContainsRegex("^memory +[0-9]+ s  FAILED"),
                            ContainsRegex("^coverage +[0-9]+ s  passed")}));
  EXPECT_EQ(project.read("build/check-all/memory.log"), "one leak\n");
}

TEST_F(CheckAllInFolder, RunsEachProofAndFailsByOne) {
  EXPECT_THAT(
      splitLines(check({"proofs"}).out),
      AllOf(IsSupersetOf({"ran prove-dialogues ", "ran prove-failures ", "ran prove-kills ",
                          "ran prove-power-loss ", "ran prove-readers ", "ran prove-sizes "}),
            Not(Contains("ran prove-faults "))));
  put("prove-readers", "exit 1\n");
  EXPECT_EQ(check({"proofs"}).exitStatus, 1);
}

}  // namespace
}  // namespace kelvane::tools
