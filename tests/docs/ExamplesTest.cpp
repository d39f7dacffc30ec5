// Every command that README.md, CONTRIBUTING.md and the pages in docs show. What stands in a fence
// of the shell or after a prompt is run; the rest is in the list below, with what is done instead.

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/CommandBlocks.h"
#include "tests/docs/Page.h"
#include "tests/end_to_end/Installation.h"
#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

namespace fs = std::filesystem;

using test::splitLines;
using ::testing::AnyOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;

enum class Instead {
  lookUp,  // it takes minutes: what it names has to exist
  none,    // it is no command; the reason says what it is
};

struct NotRun {
  const char* page;
  const char* firstLine;
  Instead instead;
  const char* reason;
};

constexpr NotRun kNotRun[] = {
    {"README.md",
     "./run-demo     the story of an update, to be watched: query, downloads, three "
     "controllers",
     Instead::lookUp, "builds everything"},
    {"README.md", "Kelvane LOG_ID [SHARED_FOLDER]", Instead::none, "a synopsis"},
    {"CONTRIBUTING.md", "./run-tests                 everything, in build/default", Instead::lookUp,
     "builds everything and runs this test"},
    {"CONTRIBUTING.md",
     "LD_LIBRARY_PATH=build/default/simulators/controllers "
     "build/default/benchmarks/worker_benchmark",
     Instead::lookUp, "measures for a minute"},
    {"CONTRIBUTING.md",
     "cpack --config build/default/CPackConfig.cmake -B packages         tar.gz and Debian package",
     Instead::lookUp, "PackageTest makes the packages"},
    {"CONTRIBUTING.md",
     "cmake --preset default && cmake --build --preset default && ctest --preset default",
     Instead::lookUp, "builds everything and runs this test"},
    {"docs/bundle.md", "xcode-select --install", Instead::none, "for macOS"},
    {"docs/bundle.md",
     "cmake --preset default -DKELVANE_BUILD_TESTS=OFF "
     "-DKELVANE_ZORAPI_LIBRARY=/path/to/ZORAPI.framework/ZORAPI",
     Instead::lookUp, "for macOS"},
    {"docs/bundle.md", "cd /Applications/Manager.app/Contents", Instead::none, "for macOS"},
    {"docs/bundle.md", "cpack --config build/default/CPackConfig.cmake -B packages",
     Instead::lookUp, "PackageTest makes the packages"},
    {"docs/bundle.md", "cpack --config build/default/CPackSourceConfig.cmake -B packages",
     Instead::lookUp, "PackageTest makes the packages"},
    {"docs/performance.md", "./benchmarks/run --json > all.json", Instead::lookUp,
     "measures for minutes"},
    {"docs/performance.md", "./benchmarks/run --profile", Instead::lookUp,
     "measures for a minute, with perf"},
    {"docs/performance.md", "./benchmarks/run --growth --no-calls --json > growth.json",
     Instead::lookUp, "measures for minutes"},
    {"docs/simulators.md",
     "EngineRunner dryrun|run -productid PRODUCT -version VERSION -url SERVICE -folder FOLDER",
     Instead::none, "a synopsis"},
    {"docs/simulators.md", "make-service DESCRIPTION.json FOLDER", Instead::none, "a synopsis"},
};

std::vector<std::string> pages() {
  std::vector<std::string> names = {"README.md", "CONTRIBUTING.md"};
  for (const auto& entry : fs::directory_iterator(KELVANE_SOURCES "docs")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() == ".md") names.push_back("docs/" + name);
  }
  return names;
}

std::vector<CommandBlock> blocksOf(const std::string& page) {
  return commandBlocks(page, readSource(page));
}

const NotRun* findNotRun(const CommandBlock& block) {
  for (const NotRun& entry : kNotRun) {
    if (block.page == entry.page && block.firstLine() == entry.firstLine) return &entry;
  }
  return nullptr;
}

// Within a path, as in "shared/tmp/", it is left as it is.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    const bool isWithin = at > 0 && std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0;
    if (!isWithin) text.replace(at, from.size(), to);
    at += isWithin ? from.size() : to.size();
  }
  return text;
}

constexpr char kEndOfBlock[] = "\x1e\n";

// The blocks of a page that are run, as one script: what one of them exports, the next one has.
std::vector<CommandBlock> runBlocksOf(const std::string& page) {
  std::vector<CommandBlock> blocks = blocksOf(page);
  std::erase_if(blocks, [](const CommandBlock& block) { return findNotRun(block) != nullptr; });
  return blocks;
}

std::string scriptOf(const std::vector<CommandBlock>& blocks) {
  std::string script;
  for (const CommandBlock& block : blocks) script += block.text + "printf '\\036\\n'\n";
  return script;
}

// The installation that the pages' examples are set in: images, controllers, a shared folder and a
// bundle by the names that the pages use, a journal of a job, the sources' tools and the build's
// programs. What the pages put below /tmp stands beside the test's own folder.
class ExampleWorld : public Installation {
 protected:
  ExampleWorld() {
    makeImage("standard.img", {"standard", "--product", "0x43", "--firmware", "2.4.0"});
    writeFleet(R"([{"wwn": "50000000000000A1", "product_id": "0x4301",
                    "firmware": "2.3.0", "cpld": "1.6", "usb_bridge": "3.0"}])");
    updateFirmware({{"50000000000000A1", folder / "standard.img"}});
    fs::create_symlink(folder / "journal", folder / "journal.jsonl");
    for (const std::string part : {"tools", "docs"}) {
      fs::create_directory_symlink(KELVANE_SOURCES + part, folder / part);
    }
    fs::create_directory(folder / "build");
    fs::create_directory_symlink(KELVANE_BUILD, folder / "build/default");
    environment["PATH"] = KELVANE_PROGRAMS ":" + std::string(std::getenv("PATH"));
    // Of several programs, each would number its versions from 1.
    environment.erase("KELVANE_TEST_VERSIONS");
  }
  ~ExampleWorld() override {
    for (const auto& entry : fs::directory_iterator("/tmp")) {
      if (entry.path().string().rfind(here("/tmp/"), 0) == 0) fs::remove_all(entry.path());
    }
  }

  void expectToRun(const std::string& page) const {
    const auto blocks = runBlocksOf(page);
    const test::Ended ended =
        test::runProgram({"/bin/sh", "-ec", here(scriptOf(blocks))}, folder.path(), environment);
    EXPECT_EQ(ended.exitStatus, 0) << page << "\n" << ended.out << ended.err;
    std::size_t start = 0;
    for (const CommandBlock& block : blocks) {
      const std::size_t end = ended.out.find(kEndOfBlock, start);
      ASSERT_NE(end, std::string::npos) << block.text;
      EXPECT_THAT(ended.out.substr(start, end - start), EndsWith(here(block.shown))) << block.text;
      start = end + sizeof(kEndOfBlock) - 1;
    }
  }

 private:
  // The page's text with the test's paths, and with flashes that take no time.
  std::string here(const std::string& text) const {
    const std::string beside = folder.path() + "-";
    const std::string placed = replaced(text, "/tmp/", beside);
    const std::string atHome = replaced(placed, "/home/me", folder.path());
    const std::string first =
        replaced(atHome, beside + "first.app first\n", beside + "first.app first 0\n");
    return replaced(first, beside + "try.app try\n", beside + "try.app try 0\n");
  }
};

class ExamplesOf : public ExampleWorld, public ::testing::WithParamInterface<std::string> {};

TEST_P(ExamplesOf, RunAsShown) { expectToRun(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Page, ExamplesOf, ::testing::ValuesIn(pages()), [](const auto& test) {
  std::string name = fs::path(test.param).stem().string();
  std::erase(name, '-');
  return name;
});

// The lines, without the blanks before them.
std::string unindented(const std::string& text) {
  std::string all;
  for (const std::string& line : splitLines(text)) {
    all += line.substr(std::min(line.find_first_not_of(" \t"), line.size())) + "\n";
  }
  return all;
}

TEST_F(ExampleWorld, TheSimulatorsCatalogueHasTheRuleThatIsShown) {
  const std::string page = "docs/simulators.md";
  expectToRun(page);
  const auto rules = codeBlocks(readSource(page), "xml");
  ASSERT_EQ(rules.size(), 1U);
  EXPECT_THAT(unindented(folder.read("example/download/Offers.plist")),
              HasSubstr(unindented(rules[0])));
}

TEST(Examples, ListNothingThatThePagesDoNotShow) {
  std::set<const NotRun*> found;
  for (const std::string& page : pages()) {
    for (const CommandBlock& block : blocksOf(page)) found.insert(findNotRun(block));
  }
  for (const NotRun& entry : kNotRun) EXPECT_TRUE(found.contains(&entry)) << entry.firstLine;
}

constexpr char kFilter[] = "--gtest_filter='";

// What a command that is not run names.
class LookedUp {
 public:
  explicit LookedUp(const std::string& line) {
    std::istringstream words(line.substr(0, line.find("   ")));
    for (std::string word; words >> word;) words_.push_back(word);
  }

  void expectToExist() const {
    for (std::size_t i = 0; i < words_.size(); ++i) {
      if (words_[i].rfind("./", 0) == 0) expectProgram(words_[i]);
      if (i > 0 && words_[i - 1] == "--preset") expectPreset(words_[i]);
      if (i > 0 && words_[i - 1] == "./run-tests") expectPreset(words_[i]);
      if (i > 0 && words_[i - 1] == "-L") expectRoom(words_[i]);
      const std::size_t path = words_[i].find("build/");
      if (words_[i].rfind(kFilter, 0) == 0) expectSuite(words_[i].substr(sizeof(kFilter) - 1));
      if (path != std::string::npos) expectBuilt(words_[i].substr(path + 6));
    }
  }

 private:
  static void expectProgram(const std::string& path) {
    const auto permissions = fs::status(KELVANE_SOURCES + path).permissions();
    EXPECT_NE(permissions & fs::perms::owner_exec, fs::perms::none) << path;
  }
  // "CpldFlash.*'": a suite of the worker's tests, in a file of that name.
  static void expectSuite(const std::string& filter) {
    const std::string suite = filter.substr(0, filter.find('.'));
    EXPECT_THAT(readSource("tests/worker/" + suite + "Test.cpp"), HasSubstr("(" + suite + ", "));
  }
  static void expectRoom(const std::string& label) {
    EXPECT_THAT(readSource("tests/" + label + "/CMakeLists.txt"),
                HasSubstr("kelvane_add_tests(" + label + "\n"));
  }
  static void expectPreset(const std::string& name) {
    EXPECT_THAT(readSource("CMakePresets.json"), HasSubstr("\"name\": \"" + name + "\""));
  }
  // "default/tests/worker_tests": a preset, and a folder of the sources, a file of the build or a
  // program made there.
  static void expectBuilt(const std::string& path) {
    const std::size_t slash = std::min(path.find('/'), path.size());
    expectPreset(path.substr(0, slash));
    if (slash == path.size()) return;
    const fs::path rest = path.substr(slash + 1);
    if (fs::is_directory(KELVANE_SOURCES / rest)) return;
    if (rest.has_extension()) {
      EXPECT_TRUE(fs::exists(fs::path(KELVANE_BUILD) / rest)) << path;
      return;
    }
    const std::string made = readSource((rest.parent_path() / "CMakeLists.txt").string());
    EXPECT_THAT(made, AnyOf(HasSubstr(making(rest.filename().string()) + "\n"),
                            HasSubstr(making(rest.filename().string()) + " ")))
        << path;
  }

  // How a program's making begins; a room's tests are named for the room.
  static std::string making(const std::string& program) {
    const std::size_t room = program.rfind("_tests");
    return room == std::string::npos ? "add_executable(" + program
                                     : "kelvane_add_tests(" + program.substr(0, room);
  }

  std::vector<std::string> words_;
};

TEST(Examples, WhatIsNotRunNamesWhatExists) {
  for (const std::string& page : pages()) {
    for (const CommandBlock& block : blocksOf(page)) {
      const NotRun* entry = findNotRun(block);
      if (entry == nullptr || entry->instead != Instead::lookUp) continue;
      for (const std::string& line : splitLines(block.text)) LookedUp(line).expectToExist();
    }
  }
}

}  // namespace
}  // namespace kelvane::docs
