// What tools/coverage makes of the counts that the compiler's tool tells: a program for the shell
// stands in for that.

#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/Script.h"

namespace kelvane::tools {
namespace {

using test::Ended;
using ::testing::HasSubstr;

// Two sources of two lines, each line reached but the second of platform/a.cpp, which is reached so
// often; the condition in its first is once true and so often false.
class Coverage : public ::testing::Test {
 protected:
  Coverage() {
    copyTools(project);
    project.write("tools/bite/unreached.toml", "");
    project.write("platform/a.cpp", "if (is())\n  act();\n");
    project.write("Modules/b.cpp", "b1();\nb2();\n");
    project.write("build/coverage/tests/platform/platform_tests", "");
  }

  Ended tell(const std::string& second, const std::string& isFalse) const {
    project.write("lcov",
                  "SF:build/coverage/Modules/b.cpp\nDA:1,1\nDA:2,1\nend_of_record\n"
                  "SF:build/coverage/platform/a.cpp\nDA:1,1\nDA:2," +
                      second + "\nend_of_record\n");
    project.write("text", R"({"data": [{"files": [{"filename": "build/coverage/platform/a.cpp",)"
                          R"( "segments": [], "branches": [[1, 5, 1, 9, 1, )" +
                              isFalse + R"(, 0, 0, 4]]}]}]})");
    writeProgram(project, "bin/llvm-cov-16",
                 "exec cat '" + project.path() + "/'\"${2#-format=}\"\n");
    return test::runProgram({project / "tools/coverage", "told"}, project.path(),
                            {{"PATH", project / "bin:" + std::getenv("PATH")}});
  }

  test::TempFolder project;
};

TEST_F(Coverage, PassesWhereAllIsReached) {
  const Ended told = tell("1", "1");
  EXPECT_EQ(told.exitStatus, 0) << told.out << told.err;
  EXPECT_THAT(told.out, HasSubstr("platform: lines 2 of 2, 100.0 %; branches 2 of 2, 100.0 %\n"));
}

TEST_F(Coverage, FailsWhereALineIsNotReached) {
  const Ended told = tell("0", "1");
  EXPECT_EQ(told.exitStatus, 1) << told.err;
  EXPECT_THAT(told.out, HasSubstr("  2: line   [act();]\n"));
  EXPECT_THAT(told.out, HasSubstr("not reached, without a reason: 1\n"));
}

TEST_F(Coverage, FailsWhereASideOfABranchIsNotReached) {
  const Ended told = tell("1", "0");
  EXPECT_EQ(told.exitStatus, 1) << told.err;
  EXPECT_THAT(told.out, HasSubstr("not reached, without a reason: 1\n"));
}

TEST_F(Coverage, PassesALineThatHasItsReasonAndTellsBoth) {
  project.write("tools/bite/unreached.toml",
                "[[unreached]]\nfile = 'platform/a.cpp'\nline = 'act();'\nwhat = 'line'\n"
                "reason = 'It is the end.'\n");
  const Ended told = tell("0", "1");
  EXPECT_EQ(told.exitStatus, 0) << told.out << told.err;
  EXPECT_THAT(told.out, HasSubstr("1 not, with a reason"));
  EXPECT_THAT(told.out, HasSubstr("  2: line   [act();]   It is the end.\n"));
}

}  // namespace
}  // namespace kelvane::tools
