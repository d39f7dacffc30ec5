// The scripts of the proofs in their shortest form, with the programs that are built: what these
// say is what the scripts read.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/Script.h"

namespace kelvane::tools {
namespace {

namespace fs = std::filesystem;

using test::Ended;
using ::testing::EndsWith;
using ::testing::MatchesRegex;

struct ShortProof {
  const char* script;
  const char* every;
  std::vector<std::string> parts = {};  // all, where none is named
};

// Of a console's changes to files there are fewer than ten.
const ShortProof kShortProofs[] = {{"prove-kills", "1000000"},
                                   {"prove-failures", "1000000", {"query", "installation"}},
                                   {"prove-power-loss", "5"},
                                   {"prove-readers", "1000000", {"query", "consoles"}},
                                   {"prove-sizes", "1000000"}};

void PrintTo(const ShortProof& proof, std::ostream* out) { *out << proof.script; }

class ProofScript : public ::testing::TestWithParam<ShortProof> {};

TEST_P(ProofScript, TriesItsPartsAndTellsOfTheWhole) {
  std::vector<std::string> arguments = {"--build", KELVANE_BUILD, "--every", GetParam().every};
  arguments.insert(arguments.end(), GetParam().parts.begin(), GetParam().parts.end());
  const Ended proved = runScript(GetParam().script, arguments);
  EXPECT_EQ(proved.exitStatus, 0) << proved.out << proved.err;
  EXPECT_EQ(proved.err, "");
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("[1-9][0-9]* in [0-9]+ s: no deviation"));
}

INSTANTIATE_TEST_SUITE_P(Tools, ProofScript, ::testing::ValuesIn(kShortProofs),
                         [](const auto& instance) {
                           std::string name = instance.param.script;
                           std::erase(name, '-');
                           return name;
                         });

// All forms take minutes; these two, told as all there are, a hundred dialogues.
TEST(ProofScripts, OfTheDialoguesPlaysEachForm) {
  const test::TempFolder build;
  writeProgram(build, "tests/dialogues/prove_dialogues",
               "[ \"$1\" = forms ] && printf 'missing  none\\nnameless  one\\n' && exit\n"
               "exec '" KELVANE_BUILD "/tests/dialogues/prove_dialogues' \"$@\"\n");
  const Ended proved = runScript("prove-dialogues", {"--build", build.path()});
  EXPECT_EQ(proved.exitStatus, 0) << proved.out << proved.err;
  EXPECT_THAT(lastLine(proved.out), MatchesRegex("1[0-9]{2} dialogues in [0-9]+ s: no deviation"));
}

TEST(ProofScripts, OfTheDialoguesShowsOne) {
  const Ended shown = runScript("prove-dialogues", {"--build", KELVANE_BUILD, "one", "1"});
  EXPECT_EQ(shown.exitStatus, 0) << shown.err;
  EXPECT_THAT(shown.out, EndsWith("\nno deviation\n"));
}

TEST(ProofScripts, AreAllTriedHere) {
  std::set<std::string> tried = {"prove-dialogues", "prove-faults"};
  for (const ShortProof& proof : kShortProofs) tried.insert(proof.script);
  std::set<std::string> there;
  for (const auto& file : fs::directory_iterator(KELVANE_SOURCES "tools")) {
    const std::string name = file.path().filename();
    if (name.starts_with("prove-")) there.insert(name);
  }
  EXPECT_EQ(there, tried);
}

}  // namespace
}  // namespace kelvane::tools
