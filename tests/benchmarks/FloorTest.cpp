// The program that the worker's costs are held against: it does what its script says.

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

namespace fs = std::filesystem;

class Floor : public ::testing::Test {
 protected:
  test::Ended run(const std::string& script, const std::string& bytes = "") const {
    folder.write("script", script);
    folder.write("script.bytes", bytes);
    return test::runProgram({KELVANE_FLOOR, folder / "script"}, folder.path());
  }

  // A step with a path in the test's folder.
  std::string step(const std::string& word, const std::string& name,
                   const std::string& rest = "") const {
    return word + " " + (folder / name) + rest + "\n";
  }

  test::TempFolder folder;
};

TEST_F(Floor, ReplacesAndAppendsWhatTheScriptNamesOfItsBytes) {
  folder.write("jobs", "old");
  folder.write("log", "first\n");
  const std::string script = step("replace", "jobs", " 0 3") + step("append", "log", " 3 7");
  EXPECT_EQ(run(script, "newsecond\n").exitStatus, 0);
  EXPECT_EQ(folder.read("jobs"), "new");
  EXPECT_EQ(folder.read("log"), "first\nsecond\n");
}

TEST_F(Floor, RepeatsTheStepsBetweenRepeatAndEnd) {
  folder.write("log", "");
  const std::string script = step("append", "log", " 0 1") + "repeat 3\n" +
                             step("append", "log", " 1 1") + "end\n" +
                             step("append", "log", " 2 1");
  EXPECT_EQ(run(script, "abc").exitStatus, 0);
  EXPECT_EQ(folder.read("log"), "abbbc");
}

TEST_F(Floor, CopiesATreeWithItsPermissionsAndTimes) {
  folder.write("from/below/small", "small");
  folder.write("from/large", std::string(200'000, 'x'));
  fs::permissions(folder / "from/large", fs::perms::owner_read);
  EXPECT_EQ(run("copytree " + (folder / "from") + " " + (folder / "to") + "\n").exitStatus, 0);
  EXPECT_EQ(folder.read("to/below/small"), "small");
  EXPECT_EQ(folder.read("to/large"), std::string(200'000, 'x'));
  EXPECT_EQ(fs::status(folder / "to/large").permissions(), fs::perms::owner_read);
  for (const char* name : {"/below/small", "/large", "/below", ""}) {
    EXPECT_EQ(fs::last_write_time(folder / "to" + name),
              fs::last_write_time(folder / "from" + name))
        << name;
  }
}

TEST_F(Floor, RemovesATree) {
  folder.write("tree/below/file", "x");
  EXPECT_EQ(run(step("removetree", "tree")).exitStatus, 0);
  EXPECT_FALSE(fs::exists(folder / "tree"));
}

TEST_F(Floor, EndsWithAFailureAtACallThatFails) {
  const test::Ended ended = run(step("read", "nothing") + step("makefolder", "later"));
  EXPECT_EQ(ended.exitStatus, 1);
  EXPECT_NE(ended.err.find("nothing"), std::string::npos) << ended.err;
  EXPECT_FALSE(fs::exists(folder / "later"));
}

TEST_F(Floor, RefusesAStepThatItDoesNotKnow) {
  EXPECT_EQ(run("guess what\n").exitStatus, 1);
  EXPECT_EQ(run("read\n").exitStatus, 1);
}

}  // namespace
}  // namespace kelvane
