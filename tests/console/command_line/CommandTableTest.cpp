// The table of the sub-commands: what every one of them has to declare.

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/command_line/CommandTable.h"
#include "console/commands/CommonOptions.h"
#include "console/commands/Given.h"
#include "console/job/ExitCode.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const Command& command : commandTable().commands) names.push_back(command.name);
  return names;
}

std::vector<Option> optionsAndArguments(const Command& command) {
  std::vector<Option> all = command.options;
  all.insert(all.end(), command.arguments.begin(), command.arguments.end());
  return all;
}

class CommandOfTable : public ConsoleWorld, public ::testing::WithParamInterface<std::string> {
 protected:
  static const Command& command() { return commandNamed(GetParam()); }

  // A value for each option and argument; the shared folder is the world's.
  Given givenEverything() const {
    Given given;
    for (const Option& option : optionsAndArguments(command())) {
      given.set(option.names.back(), {option.choices.empty() ? "x" : option.choices.front()});
    }
    if (given.knows(kSharedOption)) given.set(kSharedOption, {job.sharedFolder});
    return given;
  }

  int run(const Given& given) {
    return guarded(messages, screen.charset, [&] {
      if (const auto* shows = std::get_if<Shows>(&command().run)) return (*shows)(given, screen);
      return std::get<Follows>(command().run)(given, {*this, view, screen});
    });
  }
};

TEST_P(CommandOfTable, IsDescribed) {
  ASSERT_NE(command().description, "");
  EXPECT_NE(command().description.back(), '.');
}

TEST_P(CommandOfTable, HasAnExample) {
  EXPECT_THAT(command().footer, HasSubstr("Example"));
  EXPECT_THAT(command().footer, HasSubstr("kelvane-console " + command().name));
}

TEST_P(CommandOfTable, TellsOfEveryOptionAndArgument) {
  for (const Option& option : optionsAndArguments(command())) {
    ASSERT_NE(option.names.size(), 0U);
    EXPECT_NE(option.description, "") << option.names.back();
    EXPECT_EQ(option.valueName.empty(), option.kind == ValueKind::none) << option.names.back();
    EXPECT_EQ(option.choices.empty(), option.kind != ValueKind::choice) << option.names.back();
  }
}

TEST_P(CommandOfTable, NamesNoOptionOrArgumentTwice) {
  std::multiset<std::string> names;
  for (const Option& option : optionsAndArguments(command())) {
    names.insert(option.names.begin(), option.names.end());
  }
  for (const std::string& name : names) EXPECT_EQ(names.count(name), 1U) << name;
}

TEST_P(CommandOfTable, HasTheHelpFirst) { EXPECT_TRUE(isHelp(command().options.at(0))); }

TEST_P(CommandOfTable, ReadsNothingThatItDoesNotDeclare) {
  EXPECT_NE(run(givenEverything()), kInternalError) << messages.str();
}

INSTANTIATE_TEST_SUITE_P(Every, CommandOfTable, ::testing::ValuesIn(commandNames()),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(CommandTable, NamesNoSubCommandTwice) {
  const std::vector<std::string> names = commandNames();
  EXPECT_THAT(std::set<std::string>(names.begin(), names.end()), SizeIs(names.size()));
}

TEST(CommandTable, FindsASubCommandByItsName) {
  EXPECT_EQ(commandNamed("update-fw").name, "update-fw");
  EXPECT_THROW(commandNamed("update"), std::out_of_range);
}

}  // namespace
}  // namespace kelvane::console
