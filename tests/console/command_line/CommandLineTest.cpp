// The command line: what is given reaches the sub-command, and bad usage is refused.

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/command_line/CommandLine.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/commands/Submission.h"
#include "console/job/ExitCode.h"

namespace kelvane::console {
namespace {

using Words = std::vector<std::string>;

constexpr char kVariable[] = "KELVANE_TEST_SIZE";

// A program with the sub-commands "add", which shows, and "follow", which follows.
class CommandLineTest : public ::testing::Test {
 protected:
  CommandLineTest() {
    table.name = "tool";
    table.options = {{.names = {"--everywhere"}},
                     {.names = {"--size"}, .valueName = "BYTES", .variable = kVariable}};
    Command add{.name = "add", .description = "Adds"};
    add.options = {jsonFlag(),
                   {.names = {"--size"}, .valueName = "BYTES", .variable = kVariable},
                   {.names = {"-l", "--level"},
                    .kind = ValueKind::choice,
                    .valueName = "LEVEL",
                    .choices = {"low", "high"}}};
    add.arguments = {{.names = {"files"}, .valueName = "FILE", .required = true, .repeated = true}};
    add.run = [this](const Given& values, const Screen& screen) {
      given = values;
      json = screen.json;
      return 7;
    };
    Command follow{.name = "follow", .description = "Follows"};
    follow.options = {{.names = {"--size"}, .valueName = "BYTES", .variable = kVariable}};
    follow.run = [this](const Given& values, const Surroundings& surroundings) {
      given = values;
      followed = surroundings.clock.now().count() > 0;
      return 8;
    };
    Command weigh{.name = "weigh", .description = "Weighs"};
    weigh.options = follow.options;
    weigh.options[0].required = true;
    weigh.run = add.run;
    table.commands = {add, follow, weigh};
  }
  ~CommandLineTest() override { ::unsetenv(kVariable); }

  int run(const Words& words) const {
    std::vector<const char*> argv = {"tool"};
    for (const std::string& word : words) argv.push_back(word.c_str());
    return CommandLine(table).run(static_cast<int>(argv.size()), argv.data());
  }
  // What standard error shows of it.
  std::string refusal(const Words& words) const {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(run(words), kBadUsage);
    return ::testing::internal::GetCapturedStderr();
  }

  // What is raised of it.
  std::string failure(const Words& words) const {
    try {
      ADD_FAILURE() << run(words);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.exitCode(), kBadUsage);
      return failure.what();
    }
    return "";
  }

  CommandTable table;
  Given given;
  bool json = false;
  bool followed = false;
};

TEST_F(CommandLineTest, RunsTheSubCommandWithItsArguments) {
  EXPECT_EQ(run({"add", "a", "b"}), 7);
  EXPECT_EQ(given.texts("files"), (Words{"a", "b"}));
}

TEST_F(CommandLineTest, OptionsReachTheSubCommandByTheirLastName) {
  run({"add", "-l", "high", "a", "--size=3"});
  EXPECT_EQ(given.text("--level"), "high");
  EXPECT_EQ(given.text("--size"), "3");
}

TEST_F(CommandLineTest, WhatIsNotGivenIsKnownAndEmpty) {
  run({"add", "a"});
  EXPECT_FALSE(given.has("--size"));
  EXPECT_EQ(given.text("--size"), "");
  EXPECT_FALSE(json);
}

TEST_F(CommandLineTest, TheFlagForMachinesIsTheScreens) {
  run({"add", "--json", "a"});
  EXPECT_TRUE(json);
}

TEST_F(CommandLineTest, VariableStandsInForAnOption) {
  ::setenv(kVariable, "5", 1);
  run({"add", "a"});
  EXPECT_EQ(given.text("--size"), "5");
}

TEST_F(CommandLineTest, OptionGoesBeforeItsVariableWhateverOtherSubCommandsTake) {
  ::setenv(kVariable, "5", 1);
  run({"add", "--size", "6", "a"});
  EXPECT_EQ(given.text("--size"), "6");
}

TEST_F(CommandLineTest, OptionBeforeTheSubCommandReachesIt) {
  run({"--everywhere", "x", "add", "a"});
  EXPECT_EQ(given.text("--everywhere"), "x");
}

TEST_F(CommandLineTest, OptionOfASubCommandMayStandBeforeIt) {
  EXPECT_EQ(run({"--size", "6", "weigh"}), 7);
  EXPECT_EQ(given.text("--size"), "6");
  ::setenv(kVariable, "5", 1);
  EXPECT_EQ(run({"--size=6", "weigh"}), 7);
  EXPECT_EQ(given.text("--size"), "6");
  EXPECT_TRUE(given.isOnTheLine("--size"));
}

TEST_F(CommandLineTest, WhatTheVariableHasIsNotOnTheLine) {
  ::setenv(kVariable, "5", 1);
  EXPECT_EQ(run({"weigh"}), 7);
  EXPECT_EQ(given.text("--size"), "5");
  EXPECT_FALSE(given.isOnTheLine("--size"));
}

TEST_F(CommandLineTest, ValueThatIsGivenTwiceHasToBeOne) {
  EXPECT_EQ(failure({"--size", "6", "weigh", "--size", "7"}), "--size is given twice: 6 and 7");
  EXPECT_EQ(failure({"add", "a", "--size", "6", "--size=7"}), "--size is given twice: 6 and 7");
  EXPECT_EQ(run({"--size", "6", "weigh", "--size", "6"}), 7);
}

TEST_F(CommandLineTest, MissingOptionNamesItsVariable) {
  EXPECT_EQ(failure({"weigh"}),
            "weigh needs --size BYTES; the environment variable KELVANE_TEST_SIZE can name it");
}

TEST_F(CommandLineTest, SubCommandThatFollowsHasAClock) {
  EXPECT_EQ(run({"follow"}), 8);
  EXPECT_TRUE(followed);
}

TEST_F(CommandLineTest, RefusesAMissingArgument) {
  EXPECT_EQ(refusal({"add"}), "tool: add needs FILE\nRun with --help for more information.\n");
}

TEST_F(CommandLineTest, RefusalsBeginWithTheProgramsName) {
  EXPECT_EQ(refusal({"add", "--loud", "a"}).rfind("tool: ", 0), 0U);
  EXPECT_EQ(refusal({}).rfind("tool: ", 0), 0U);
}

TEST_F(CommandLineTest, RefusesAnOptionWithAnEmptyValue) {
  EXPECT_EQ(failure({"add", "a", "--size", ""}), "--size is given without a value");
  EXPECT_EQ(failure({"--size", "", "weigh"}), "--size is given without a value");
}

TEST_F(CommandLineTest, RefusesWhatIsNoneOfTheChoices) {
  EXPECT_NE(refusal({"add", "--level", "loud", "a"}).find("loud not in {low,high}"),
            std::string::npos);
}

TEST_F(CommandLineTest, NamesASubCommandThatThereIsNot) {
  EXPECT_EQ(refusal({"take"}).find("tool: there is no sub-command take\n"), 0U);
  EXPECT_EQ(refusal({"--size", "6", "take"}).find("tool: there is no sub-command take\n"), 0U);
}

}  // namespace
}  // namespace kelvane::console
