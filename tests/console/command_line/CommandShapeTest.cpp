// The command line as plain data.

#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "console/command_line/CommandLine.h"
#include "console/command_line/CommandShape.h"

namespace kelvane::console {
namespace {

using Words = std::vector<std::string>;

class CommandShapeTest : public ::testing::Test {
 protected:
  // The shape of an application's one option or argument besides the help.
  OptionShape shapeOfOnly() {
    const CommandShape shape = shapeOf(app);
    return shape.arguments.empty() ? shape.options.at(1) : shape.arguments.at(0);
  }

  CLI::App app{"A tool.", "tool"};
  std::string value;
  std::vector<std::string> values;
  bool flag = false;
};

TEST_F(CommandShapeTest, HelpIsAnOptionWithTwoNames) {
  EXPECT_EQ(shapeOf(app).options.at(0).names, (Words{"-h", "--help"}));
}

TEST_F(CommandShapeTest, FlagTakesNoValue) {
  app.add_flag("--json", flag, "For machines");
  EXPECT_EQ(shapeOfOnly().valueName, "");
  EXPECT_EQ(kindOf(shapeOfOnly()), ValueKind::none);
  EXPECT_EQ(shapeOfOnly().description, "For machines");
}

TEST_F(CommandShapeTest, OptionTellsItsValueAndItsVariable) {
  app.add_option("--shared", value)->type_name("FOLDER")->envname("SHARED")->required();
  EXPECT_EQ(shapeOfOnly().valueName, "FOLDER");
  EXPECT_EQ(shapeOfOnly().variable, "SHARED");
  EXPECT_TRUE(shapeOfOnly().required);
  EXPECT_FALSE(shapeOfOnly().repeated);
}

TEST_F(CommandShapeTest, LimitedValueHasChoices) {
  app.add_option("--level", value)->type_name("LEVEL")->check(CLI::IsMember(Words{"a", "b"}));
  EXPECT_EQ(shapeOfOnly().valueName, "LEVEL");
  EXPECT_EQ(shapeOfOnly().choices, (Words{"a", "b"}));
  EXPECT_EQ(kindOf(shapeOfOnly()), ValueKind::choice);
}

TEST_F(CommandShapeTest, ArgumentHasNoNames) {
  app.add_option("images", values)->type_name("IMAGE");
  EXPECT_EQ(shapeOfOnly().names, Words());
  EXPECT_TRUE(shapeOfOnly().repeated);
  EXPECT_FALSE(shapeOfOnly().required);
}

TEST_F(CommandShapeTest, SubCommandsKeepTheirOrderAndTheirFooter) {
  app.add_subcommand("zip", "Zips")->footer("Example");
  app.add_subcommand("add", "Adds");
  const CommandShape shape = shapeOf(app);
  ASSERT_EQ(shape.commands.size(), 2U);
  EXPECT_EQ(shape.commands[0].name, "zip");
  EXPECT_EQ(shape.commands[0].footer, "Example");
  EXPECT_EQ(shape.commands[1].description, "Adds");
}

TEST_F(CommandShapeTest, WhatTheHelpDoesNotShowIsLeftOut) {
  app.add_option("--secret", value)->group("");
  app.add_subcommand("hidden", "Hidden")->group("");
  EXPECT_EQ(shapeOf(app).options.size(), 1U);
  EXPECT_TRUE(shapeOf(app).commands.empty());
}

TEST(KindOf, TheValuesNameTells) {
  const auto kindOfNamed = [](const std::string& name) {
    OptionShape option;
    option.valueName = name;
    return kindOf(option);
  };
  EXPECT_EQ(kindOfNamed("FOLDER"), ValueKind::folder);
  EXPECT_EQ(kindOfNamed("APP.app"), ValueKind::folder);
  EXPECT_EQ(kindOfNamed("PATH"), ValueKind::file);
  EXPECT_EQ(kindOfNamed("FILE"), ValueKind::file);
  EXPECT_EQ(kindOfNamed("WWN=IMAGE"), ValueKind::assignedFile);
  EXPECT_EQ(kindOfNamed("ID"), ValueKind::text);
}

TEST(CommandLineShape, EveryCommandIsDescribedAndHasAnExample) {
  const CommandLine commandLine;
  const CommandShape app = shapeOf(commandLine.app());
  for (const CommandShape& command : app.commands) {
    EXPECT_FALSE(command.description.empty()) << command.name;
    EXPECT_NE(command.footer.find("kelvane-console " + command.name), std::string::npos)
        << command.name;
  }
}

}  // namespace
}  // namespace kelvane::console
