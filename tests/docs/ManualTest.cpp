// The manual pages, held against the code and formatted.

#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/command_line/CommandTable.h"
#include "console/command_line/completion/Completion.h"
#include "console/job/ExitCode.h"
#include "console/job/StandardError.h"
#include "console/manual/ManualPage.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/support/JobFileSchema.h"
#include "tests/support/LogLine.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using test::splitLines;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using Names = std::set<std::string>;

// With version and date, as it was when the project was configured.
std::string builtPage(const std::string& name) {
  return platform::readFile(KELVANE_BUILD "/docs/man/" + name);
}

std::string consolePage() { return console::manualPage(builtPage("kelvane-console.1.in")); }

std::string pageNamed(const std::string& name) {
  return name == "kelvane-console.1" ? consolePage() : builtPage(name);
}

// What stands between this heading and the next one of its kind (".SH" or ".SS").
std::string part(const std::string& page, const std::string& heading) {
  const std::size_t start = page.find(heading + "\n");
  if (start == std::string::npos) throw std::runtime_error("no " + heading);
  return page.substr(start, page.find("\n.S", start) - start);
}

// The texts of the lines with this request: ".B name" or ".I name".
Names textsOf(const std::string& request, const std::string& page) {
  Names found;
  for (const std::string& line : splitLines(page)) {
    if (line.rfind(request + " ", 0) == 0) found.insert(line.substr(request.size() + 1));
  }
  return found;
}

// The words of the text that are numbers.
Names numbersIn(const std::string& text) {
  Names found;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (word.find_first_not_of("0123456789") == std::string::npos) found.insert(word);
  }
  return found;
}

Names exitCodes() {
  Names found;
  for (const int code : console::kExitCodes) found.insert(std::to_string(code));
  return found;
}

// The page as a terminal shows it, without bold and underlined characters.
std::string formatted(const std::string& page) {
  const test::TempFolder folder;
  const auto ended = test::runProgram(
      {"/usr/bin/env", "groff", "-man", "-Tascii", "-P-cbou", folder.write("page", page)},
      folder.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  return ended.out;
}

class ManualPageNamed : public ::testing::TestWithParam<std::string> {};

TEST_P(ManualPageNamed, IsFormattedWithoutAWarning) {
  const test::TempFolder folder;
  const auto ended = test::runProgram({"/usr/bin/env", "groff", "-man", "-Tutf8", "-ww", "-z",
                                       folder.write("page", pageNamed(GetParam()))},
                                      folder.path());
  EXPECT_EQ(ended.exitStatus, 0);
  EXPECT_EQ(ended.err, "");
}

TEST_P(ManualPageNamed, HasTheSectionsThatReadersLookFor) {
  const std::string page = pageNamed(GetParam());
  for (const char* heading : {".SH NAME", ".SH DESCRIPTION", ".SH SEE ALSO"}) {
    EXPECT_THAT(page, HasSubstr(heading));
  }
}

INSTANTIATE_TEST_SUITE_P(Manual, ManualPageNamed,
                         ::testing::Values("kelvane-console.1", "Kelvane.1", "kelvane-job-file.5",
                                           "make-image.1", "make-service.1"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::erase_if(name, [](char c) { return c == '-' || c == '.'; });
                           return name;
                         });

TEST(ConsoleManual, TellsEveryExitCodeAndNoOther) {
  EXPECT_EQ(textsOf(".B", part(consolePage(), ".SH EXIT STATUS")), exitCodes());
}

TEST(ConsoleHelp, TellsEveryExitCodeAndNoOther) {
  EXPECT_EQ(numbersIn(console::commandTable().footer), exitCodes());
}

TEST(ConsoleManual, ShowsEverySubCommandOptionAndVariable) {
  const std::string shown = formatted(consolePage());
  for (const console::Command& command : console::commandTable().commands) {
    EXPECT_THAT(shown, HasSubstr("\n   " + command.name + "\n"));
    for (const console::Option& option : command.options) {
      EXPECT_THAT(shown, HasSubstr(option.names.back()));
      EXPECT_THAT(shown, HasSubstr(option.variable));
    }
    for (const console::Option& argument : command.arguments) {
      EXPECT_THAT(shown, HasSubstr("\n       " + argument.valueName));
    }
  }
}

TEST(ConsoleManual, LeavesNoPlaceEmpty) {
  EXPECT_THAT(consolePage(), ::testing::Not(HasSubstr("@")));
}

TEST(ConsoleManual, IsBuiltAsItIsShown) {
  EXPECT_EQ(test::splitLines(platform::readFile(KELVANE_BUILT_MANUAL "kelvane-console.1")),
            test::splitLines(consolePage()));
}

TEST(Completions, AreBuiltAsTheyArePrinted) {
  const std::string folder = KELVANE_BUILT_MANUAL "completions/";
  const console::CommandTable& table = console::commandTable();
  EXPECT_EQ(platform::readFile(folder + "bash-completion/completions/kelvane-console"),
            console::bashCompletion(table));
  EXPECT_EQ(platform::readFile(folder + "zsh/site-functions/_kelvane-console"),
            console::zshCompletion(table));
  EXPECT_EQ(platform::readFile(folder + "fish/vendor_completions.d/kelvane-console.fish"),
            console::fishCompletion(table));
}

TEST(WorkerManual, NamesEveryPathAndNoOther) {
  Names paths(std::begin(paths::kBelowSharedFolder), std::end(paths::kBelowSharedFolder));
  paths.insert(std::begin(paths::kBelowBundle), std::end(paths::kBelowBundle));
  EXPECT_EQ(textsOf(".I", part(pageNamed("Kelvane.1"), ".SH FILES")), paths);
}

TEST(ConsoleManual, NamesTheFilesThatItReads) {
  EXPECT_EQ(textsOf(".I", part(consolePage(), ".SH FILES")),
            (Names{paths::kJobFile, paths::kLog, paths::kJobFile + std::string(".lock"),
                   console::standardErrorPath("", "LOG_ID")}));
}

TEST(WorkerManual, NamesEveryCommandAndNoOther) {
  Names bold = textsOf(".B", part(pageNamed("Kelvane.1"), ".SH DESCRIPTION"));
  bold.erase("Kelvane");
  EXPECT_EQ(bold, Names(std::begin(job::kCommands), std::end(job::kCommands)));
}

TEST(JobFileManual, NamesEveryKeyAndStateAndNoOther) {
  Names names(std::begin(job::kKeys), std::end(job::kKeys));
  names.insert(std::begin(job::kStates), std::end(job::kStates));
  EXPECT_EQ(textsOf(".B", pageNamed("kelvane-job-file.5")), names);
}

TEST(JobFileManual, NamesTheFileAndEveryCommand) {
  const std::string page = pageNamed("kelvane-job-file.5");
  EXPECT_THAT(textsOf(".I", page), ::testing::Contains(paths::kJobFile));
  for (const char* command : job::kCommands) EXPECT_THAT(page, HasSubstr(command));
}

TEST(JobFileManual, ShowsAJobThatAnApplicationMayAdd) {
  const std::string example = part(pageNamed("kelvane-job-file.5"), ".SH EXAMPLES");
  const std::size_t start = example.find("[\n");
  const std::string jobs = example.substr(start, example.find(".fi") - start);
  EXPECT_THAT(test::validateJobFile(jobs), IsEmpty());
  const platform::Value parsed = platform::parseJson(jobs);
  ASSERT_EQ(parsed.count(), 1U);
  EXPECT_THAT(test::validateWaitingJob(*platform::printJson(parsed.at(0))), IsEmpty());
}

}  // namespace
}  // namespace kelvane::docs
