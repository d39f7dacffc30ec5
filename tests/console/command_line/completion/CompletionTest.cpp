// The completion scripts: bash's at work in a real bash, the others' by what they name.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/command_line/completion/Completion.h"
#include "console/display/ShellQuoting.h"
#include "tests/support/LogLine.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using Words = std::vector<std::string>;

std::string scriptFor(const std::string& shell) { return completionScript(shell, commandTable()); }

class BashCompletion : public ::testing::Test {
 protected:
  BashCompletion() {
    std::filesystem::create_directories(folder / "an image");
    folder.write("an image.img", "");
    folder.write("other.txt", "");
  }
  // A program that keeps what it is asked, as the file "asked", and offers these lines.
  void makeConsole(const std::string& lines) {
    console =
        folder.write("bin/console", "#!/bin/sh\nprintf '%s\\n' \"$@\" > asked\ncat <<'END'\n" +
                                        lines + "END\necho no such job >&2\n");
    std::filesystem::permissions(console, std::filesystem::perms::owner_all);
  }
  // What bash offers for the last of these words, sorted.
  Words offered(const Words& words) const {
    std::string script =
        scriptFor("bash") + "COMP_TYPE=" + completionType + "\nCOMP_WORDS=(" + console;
    for (const std::string& word : words) script += " " + shellQuoted(word);
    script += ")\nCOMP_CWORD=" + std::to_string(words.size()) +
              "\n_kelvane_console\nfor word in \"${COMPREPLY[@]}\"; do echo \"$word\"; done\n";
    const auto ended =
        test::runProgram({"/usr/bin/env", "bash", "--norc", "-c", script}, folder.path());
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.err, "");
    Words found = test::splitLines(ended.out);
    std::sort(found.begin(), found.end());
    return found;
  }

  test::TempFolder folder;
  std::string console = "kelvane-console";
  std::string completionType = "9";
};

TEST_F(BashCompletion, OffersEverySubCommandFirst) {
  const Words found = offered({""});
  for (const Command& command : commandTable().commands) {
    EXPECT_EQ(std::count(found.begin(), found.end(), command.name), 1) << command.name;
  }
}

TEST_F(BashCompletion, CompletesASubCommand) {
  EXPECT_EQ(offered({"update"}), (Words{"update-fw", "update-sw"}));
}

TEST_F(BashCompletion, CompletesOptionsOfTheSubCommand) {
  EXPECT_EQ(offered({"query", "--u"}), Words{"--url"});
  EXPECT_EQ(offered({"update-fw", "--u"}), Words());
}

TEST_F(BashCompletion, OffersEveryOptionOfEverySubCommand) {
  for (const Command& command : commandTable().commands) {
    const Words found = offered({command.name, "-"});
    for (const Option& option : command.options) {
      EXPECT_EQ(std::count(found.begin(), found.end(), option.names.back()), 1)
          << command.name << " " << option.names.back();
    }
  }
}

TEST_F(BashCompletion, OffersFoldersForAFolder) {
  EXPECT_EQ(offered({"query", "--shared", ""}), Words{"an image"});
}

TEST_F(BashCompletion, OffersFilesForAPath) {
  EXPECT_EQ(offered({"query", "--worker", "o"}), Words{"other.txt"});
}

TEST_F(BashCompletion, ReadsAValueAfterAnEqualsSign) {
  EXPECT_EQ(offered({"query", "--shared", "="}), Words{"an image"});
  EXPECT_EQ(offered({"query", "--worker", "=", "o"}), Words{"other.txt"});
}

TEST_F(BashCompletion, OffersFoldersAndThenSubCommandsBehindAnOptionOfTheProgram) {
  EXPECT_EQ(offered({"--shared", "an"}), Words{"an image"});
  EXPECT_EQ(offered({"--shared", "an image", "update"}), (Words{"update-fw", "update-sw"}));
}

TEST_F(BashCompletion, OffersNothingForAValueThatIsTheUsersOwn) {
  EXPECT_EQ(offered({"query", "--log-id", ""}), Words());
}

TEST_F(BashCompletion, OffersFoldersForAnApplication) {
  EXPECT_EQ(offered({"update-sw", "an"}), Words{"an image"});
}

TEST_F(BashCompletion, OffersImagesBehindAController) {
  EXPECT_EQ(offered({"update-fw", "5000A1", "=", "an"}), (Words{"an image", "an image.img"}));
}

TEST_F(BashCompletion, OffersWordsWhereThereAreFew) {
  EXPECT_EQ(offered({"completion", ""}), (Words{"bash", "fish", "zsh"}));
  EXPECT_EQ(offered({"completion", "z"}), Words{"zsh"});
}

TEST_F(BashCompletion, AsksTheConsoleForLogIds) {
  makeConsole("17\tupdateFW, FREE\n2\tupdateSW, WAIT\n");
  EXPECT_EQ(offered({"show", "--shared", "=", "my\\ shared", ""}),
            (Words{"17  updateFW, FREE", "2  updateSW, WAIT"}));
  EXPECT_EQ(folder.read("asked"), "values\njobs\n--\nshow\n--shared\n=\nmy\\ shared\n");
  EXPECT_EQ(offered({"log", "--job", ""}).size(), 2U);
  EXPECT_EQ(offered({"log", "--job", "=", "1"}), Words{"17"});
}

TEST_F(BashCompletion, AsksTheConsoleForProducts) {
  makeConsole("manager\t2.0\nfw 3\t\n");
  EXPECT_EQ(offered({"query", "m"}), Words{"manager"});
  EXPECT_EQ(folder.read("asked"), "values\nproducts\n--\nquery\n");
  EXPECT_EQ(offered({"download", "fw"}), Words{"fw\\ 3"});
}

TEST_F(BashCompletion, OffersValuesAloneWhereTheyArePutInOneAfterTheOther) {
  makeConsole("17\tupdateFW, FREE\n2\tupdateSW, WAIT\n");
  for (const char* type : {"37", "42"}) {
    completionType = type;
    EXPECT_EQ(offered({"show", ""}), (Words{"17", "2"}));
  }
}

TEST_F(BashCompletion, OffersOptionsWhereAValueCouldStandToo) {
  makeConsole("17\tupdateFW, FREE\n");
  EXPECT_EQ(offered({"show", "--sh"}), Words{"--shared"});
}

TEST_F(BashCompletion, LeavesTheUsersVariablesAlone) {
  const auto ended = test::runProgram(
      {"/usr/bin/env", "bash", "--norc", "-c",
       scriptFor("bash") + "word=mine\nCOMP_WORDS=(kelvane-console q)\nCOMP_CWORD=1\n"
                           "_kelvane_console\necho $word $command $COMPREPLY"},
      folder.path());
  EXPECT_EQ(ended.out, "mine query\n");
}

class CompletionFor : public ::testing::TestWithParam<std::string> {
 protected:
  static bool names(const std::string& text) {
    return scriptFor(GetParam()).find(text) != std::string::npos;
  }
  // An option as the shell's script names it: fish has its own way.
  static std::string asNamed(const std::string& option) {
    return GetParam() == "fish" ? " -l " + option.substr(2) + " " : option;
  }
};

TEST_P(CompletionFor, NamesEverySubCommandAndOption) {
  for (const Command& command : commandTable().commands) {
    EXPECT_TRUE(names(command.name)) << command.name;
    for (const Option& option : command.options) {
      EXPECT_TRUE(names(asNamed(option.names.back()))) << option.names.back();
    }
  }
}

TEST(FishCompletion, OffersSubCommandsBehindAnOptionOfTheProgram) {
  EXPECT_NE(scriptFor("fish").find("'not __fish_seen_subcommand_from devices query "),
            std::string::npos);
  EXPECT_EQ(scriptFor("fish").find("__fish_use_subcommand"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(EveryShell, CompletionFor, ::testing::ValuesIn(completionShells()),
                         [](const auto& test) { return test.param; });

TEST(Completion, KnowsNoOtherShell) {
  EXPECT_THROW(completionScript("dash", CommandTable()), std::out_of_range);
}

}  // namespace
}  // namespace kelvane::console
