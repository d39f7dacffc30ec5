// The completions at work: in real shells, with the real console.

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/PseudoTerminal.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Shell {
  const char* name;
  std::vector<std::string> options;
  const char* setup;  // takes the completions over, and makes the prompt "ready> "
};

void PrintTo(const Shell& shell, std::ostream* out) { *out << shell.name; }

const std::vector<Shell>& shells() {
  static const std::vector<Shell> all = {
      {"bash",
       {"--norc", "--noprofile", "-i"},
       "source <(kelvane-console completion bash); PS1='rea''dy> '"},
      {"fish",
       {"--no-config", "-i"},
       "kelvane-console completion fish | source; function fish_prompt; echo -n 'rea''dy> '; end"},
      {"zsh",
       {"-f", "-i"},
       "autoload -Uz compinit; compinit -D -u; source <(kelvane-console completion zsh); "
       "PS1='rea''dy> '"}};
  return all;
}

constexpr char kTwoTabs[] = "\t\t";
constexpr char kEraseLine[] = "\x15";

class CompletionIn : public ::testing::TestWithParam<Shell> {
 protected:
  CompletionIn() {
    folder.write("my shared/utility/command/BGPLog.json", R"([
      {"log_id": "2", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0,
       "output": [{"ProductID": "manager", "Version": "2.0"},
                  {"ProductID": "fw3", "Version": "3.4.0"},
                  {"ProductID": "fw3", "Version": "3.5.0"}]},
      {"log_id": "17", "job_id": "updateFW", "state_id": "FREE", "result": 32852}])");
    const std::string programs = std::filesystem::path(KELVANE_CONSOLE).parent_path();
    const char* path = std::getenv("PATH");
    environment = {{"HOME", folder.path()},
                   {"PATH", programs + ":" + (path == nullptr ? "/usr/bin:/bin" : path)}};
    argv.push_back(GetParam().name);
    argv.insert(argv.end(), GetParam().options.begin(), GetParam().options.end());
  }

  // Whether the shell shows this text once the line was typed into it.
  bool shows(const std::string& text, const std::string& line) {
    test::PseudoTerminal terminal(argv, folder.path(), {160, 24, true}, environment);
    terminal.type(std::string(GetParam().setup) + "\n");
    if (!terminal.waitFor("ready> ")) return false;
    terminal.type(line);
    const bool found = terminal.waitFor(text);
    output = terminal.output();
    return found;
  }

  test::TempFolder folder;
  std::vector<std::string> argv = {"/usr/bin/env"};
  std::map<std::string, std::string> environment;
  std::string output;
};

TEST_P(CompletionIn, OffersLogIdsWithCommandAndState) {
  EXPECT_TRUE(shows("updateFW, FREE, 32852 (0x8054)",
                    std::string("kelvane-console show --shared my\\ shared ") + kTwoTabs));
}

TEST_P(CompletionIn, OffersLogIdsToAnOption) {
  EXPECT_TRUE(shows("updateFW, FREE, 32852 (0x8054)",
                    std::string("kelvane-console log --shared 'my shared' --job ") + kTwoTabs));
}

TEST_P(CompletionIn, OffersTheProductsOfTheLastQueryInTheFolderOfTheEnvironment) {
  environment["KELVANE_SHARED"] = folder / "my shared";
  EXPECT_TRUE(shows("3.4.0, 3.5.0", std::string("kelvane-console query ") + kTwoTabs));
}

TEST_P(CompletionIn, ShowsNoErrorWhereThereIsNothingToOffer) {
  EXPECT_TRUE(shows("done", std::string("kelvane-console show --shared /nowhere ") + kTwoTabs +
                                kEraseLine + "echo do''ne\n"));
  EXPECT_THAT(output, Not(HasSubstr("does not exist")));
}

INSTANTIATE_TEST_SUITE_P(EveryShell, CompletionIn, ::testing::ValuesIn(shells()),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace kelvane
