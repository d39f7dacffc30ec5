// What the console's manual page is made of.

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "console/manual/ManualPage.h"

namespace kelvane::console {
namespace {

constexpr char kFrame[] =
    ".\\\" @SYNOPSIS@\n.\\\" @COMMANDS@\n.\\\" @OPTIONS@\n.\\\" @ENVIRONMENT@\nend\n";

class ManualPage : public ::testing::Test {
 protected:
  ManualPage() {
    table.name = "tool";
    table.commands.resize(2);
    table.commands[0].name = "add";
    table.commands[1].name = "take-out";
  }
  static Option option(const std::string& name, const std::string& valueName) {
    return {
        .names = {name}, .valueName = valueName, .description = "What " + name.substr(2) + " does"};
  }
  std::string page() const { return manualPage(kFrame, table); }
  bool shows(const std::string& text) const { return page().find(text) != std::string::npos; }
  std::size_t countOf(const std::string& text) const {
    const std::string all = page();
    std::size_t count = 0;
    for (std::size_t at = all.find(text); at != std::string::npos; at = all.find(text, at + 1)) {
      ++count;
    }
    return count;
  }

  CommandTable table;
};

TEST_F(ManualPage, KeepsWhatIsWrittenByHand) { EXPECT_TRUE(shows("\nend\n")); }

TEST_F(ManualPage, RefusesAFrameWithoutAPlaceForAPart) {
  EXPECT_THROW(manualPage("end\n", table), std::runtime_error);
}

TEST_F(ManualPage, SynopsisBracketsWhatMayBeLeftOut) {
  table.commands[0].options = {option("--size", "BYTES"), option("--all", "")};
  table.commands[0].options[0].required = true;
  EXPECT_TRUE(shows("\\fBtool add\\fR\n\\fB\\-\\-size\\fR \\fIBYTES\\fR\n[\\fB\\-\\-all\\fR]\n"));
}

TEST_F(ManualPage, SynopsisHasDotsForSeveralValues) {
  table.commands[0].arguments = {{.names = {"files"}, .valueName = "FILE", .repeated = true}};
  EXPECT_TRUE(shows("[\\fIFILE\\fR ...]\n"));
}

TEST_F(ManualPage, OptionOfOneCommandStandsWithIt) {
  table.commands[0].options = {option("--size", "BYTES")};
  EXPECT_TRUE(shows(".TP\n\\fB\\-\\-size\\fR \\fIBYTES\\fR\nWhat size does.\n.SS take\\-out"));
  EXPECT_EQ(countOf("What size does."), 1U);
}

TEST_F(ManualPage, OptionOfSeveralCommandsIsDescribedOnce) {
  table.commands[0].options = {option("--all", "")};
  table.commands[1].options = table.commands[0].options;
  EXPECT_EQ(countOf("What all does."), 1U);
  EXPECT_GT(page().find("What all does."), page().find(".SS take\\-out"));
}

TEST_F(ManualPage, TellsTheChoices) {
  table.commands[0].options = {option("--level", "LEVEL")};
  table.commands[0].options[0].choices = {"low", "high"};
  EXPECT_TRUE(shows("What level does.\nOne of: low, high.\n"));
}

TEST_F(ManualPage, NamesEachVariableOnce) {
  table.commands[0].options = {option("--all", "")};
  table.commands[0].options[0].variable = "TOOL_ALL";
  table.commands[1].options = table.commands[0].options;
  EXPECT_EQ(countOf("\\fBTOOL_ALL\\fR\nStands in for \\fB\\-\\-all\\fR"), 1U);
}

TEST_F(ManualPage, NamesTheVariableOfAnOptionBeforeTheSubCommand) {
  table.options = {option("--all", "")};
  table.options[0].variable = "TOOL_ALL";
  EXPECT_TRUE(shows("\\fBTOOL_ALL\\fR\nStands in for \\fB\\-\\-all\\fR"));
}

TEST_F(ManualPage, ExamplesKeepTheirLines) {
  table.commands[0].footer = "Example:\n  tool add \\\n    more";
  EXPECT_TRUE(shows(".PP\nExample:\n.RS 4\n.nf\ntool add \\e\n  more\n.fi\n.RE\n"));
}

TEST(AsRoff, KeepsSignsThatMeanSomethingInTheSource) {
  EXPECT_EQ(asRoff(".hidden\n'quoted'"), "\\&.hidden\n\\&'quoted'");
  EXPECT_EQ(asRoff("a\\b --c"), "a\\eb \\-\\-c");
}

}  // namespace
}  // namespace kelvane::console
