// The manual pages, held against the code and formatted.

#include <set>
#include <sstream>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/command_line/CommandLine.h"
#include "console/command_line/completion/Completion.h"
#include "console/job/JobRecord.h"
#include "console/manual/ManualPage.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "tests/docs/HeaderNames.h"
#include "tests/docs/Page.h"
#include "tests/support/JobFileSchema.h"
#include "tests/support/LogLine.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::splitLines;

using Names = std::set<std::string>;

constexpr char kWorkerSources[] = "Modules/Mac/FWUpdater/Kelvane_mac/";

// With version and date, as it was when the project was configured.
std::string builtPage(const std::string& name) {
  return platform::readFile(KELVANE_BUILD "/docs/man/" + name);
}

std::string consolePage() {
  const console::CommandLine commandLine;
  return console::manualPage(builtPage("kelvane-console.1.in"),
                             console::shapeOf(commandLine.app()));
}

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

Names asSet(const std::vector<std::string>& names) { return {names.begin(), names.end()}; }

// The words of the text that are numbers.
Names numbersIn(const std::string& text) {
  Names found;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (word.find_first_not_of("0123456789") == std::string::npos) found.insert(word);
  }
  return found;
}

// The values of the exit codes in the console's header.
Names exitCodes() {
  Names found;
  for (const std::string& line : splitLines(readSource("console/job/ExitCode.h"))) {
    const std::size_t sign = line.find(" = ");
    if (line.rfind("inline constexpr int k", 0) != 0 || sign == std::string::npos) continue;
    found.insert(line.substr(sign + 3, line.find(';') - sign - 3));
  }
  return found;
}

// The page as a terminal shows it, without bold and underlined characters.
std::string formatted(const std::string& page) {
  const testing::TempFolder folder;
  const auto ended = testing::runProgram(
      {"/usr/bin/env", "groff", "-man", "-Tascii", "-P-cbou", folder.write("page", page)},
      folder.path());
  EXPECT_EQ(ended.exitStatus, 0) << ended.err;
  return ended.out;
}

class ManualPageNamed : public ::testing::TestWithParam<std::string> {};

TEST_P(ManualPageNamed, IsFormattedWithoutAWarning) {
  const testing::TempFolder folder;
  const auto ended = testing::runProgram({"/usr/bin/env", "groff", "-man", "-Tutf8", "-ww", "-z",
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
  const console::CommandLine commandLine;
  EXPECT_EQ(numbersIn(commandLine.app().get_footer()), exitCodes());
}

TEST(ConsoleManual, ShowsEverySubCommandOptionAndVariable) {
  const console::CommandLine commandLine;
  const std::string shown = formatted(consolePage());
  for (const CLI::App* command : commandLine.app().get_subcommands({})) {
    EXPECT_THAT(shown, HasSubstr("\n   " + command->get_name() + "\n"));
    for (const CLI::Option* option : command->get_options()) {
      EXPECT_THAT(shown, HasSubstr(option->get_positional() ? "" : option->get_lnames().at(0)));
      EXPECT_THAT(shown, HasSubstr(option->get_envname()));
    }
  }
}

TEST(ConsoleManual, LeavesNoPlaceEmpty) {
  EXPECT_THAT(consolePage(), ::testing::Not(HasSubstr("@")));
}

TEST(ConsoleManual, IsBuiltAsItIsShown) {
  EXPECT_EQ(testing::splitLines(platform::readFile(KELVANE_BUILT_MANUAL "kelvane-console.1")),
            testing::splitLines(consolePage()));
}

TEST(Completions, AreBuiltAsTheyArePrinted) {
  const std::string folder = KELVANE_BUILT_MANUAL "completions/";
  const console::CommandLine commandLine;
  const auto shape = console::shapeOf(commandLine.app());
  EXPECT_EQ(platform::readFile(folder + "bash-completion/completions/kelvane-console"),
            console::bashCompletion(shape));
  EXPECT_EQ(platform::readFile(folder + "zsh/site-functions/_kelvane-console"),
            console::zshCompletion(shape));
  EXPECT_EQ(platform::readFile(folder + "fish/vendor_completions.d/kelvane-console.fish"),
            console::fishCompletion(shape));
}

// Where the paths on the pages come from.
std::string sourcesWithPaths() {
  return readSource(std::string(kWorkerSources) + "jobs/JobRunner.cpp") +
         readSource(std::string(kWorkerSources) + "online_update/DownloadArea.cpp") +
         readSource(std::string(kWorkerSources) + "CMakeLists.txt") +
         readSource("console/checks/BundleChecks.cpp") + console::job::kFileName;
}

TEST(WorkerManual, NamesNoFileThatTheProgramsDoNot) {
  const Names paths = textsOf(".I", part(pageNamed("Kelvane.1"), ".SH FILES"));
  EXPECT_THAT(paths, ::testing::Contains(console::job::kFileName));
  for (const std::string& path : paths) EXPECT_THAT(sourcesWithPaths(), HasSubstr(path));
}

TEST(ConsoleManual, NamesNoFileThatTheProgramsDoNot) {
  const Names paths = textsOf(".I", part(consolePage(), ".SH FILES"));
  EXPECT_THAT(paths, ::testing::Contains(console::job::kFileName));
  for (const std::string& path : paths) EXPECT_THAT(sourcesWithPaths(), HasSubstr(path));
}

TEST(WorkerManual, NamesEveryCommandAndNoOther) {
  Names bold = textsOf(".B", part(pageNamed("Kelvane.1"), ".SH DESCRIPTION"));
  bold.erase("Kelvane");
  EXPECT_EQ(bold, asSet(commandNames()));
}

TEST(JobFileManual, NamesEveryKeyAndStateOfTheHeaderAndNoOther) {
  Names names = asSet(constantsOf("job"));
  names.erase("no error");
  EXPECT_EQ(textsOf(".B", pageNamed("kelvane-job-file.5")), names);
}

TEST(JobFileManual, NamesTheFileAndEveryCommand) {
  const std::string page = pageNamed("kelvane-job-file.5");
  EXPECT_THAT(textsOf(".I", page), ::testing::Contains(console::job::kFileName));
  for (const std::string& command : commandNames()) EXPECT_THAT(page, HasSubstr(command));
}

TEST(JobFileManual, ShowsAJobThatAnApplicationMayAdd) {
  const std::string example = part(pageNamed("kelvane-job-file.5"), ".SH EXAMPLES");
  const std::size_t start = example.find("[\n");
  const std::string jobs = example.substr(start, example.find(".fi") - start);
  EXPECT_THAT(testing::validateJobFile(jobs), IsEmpty());
  const platform::Value parsed = platform::parseJson(jobs);
  ASSERT_EQ(parsed.count(), 1U);
  EXPECT_THAT(testing::validateWaitingJob(*platform::printJson(parsed.at(0))), IsEmpty());
}

}  // namespace
}  // namespace kelvane::docs
