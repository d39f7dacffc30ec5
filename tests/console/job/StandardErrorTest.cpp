// What workers say on standard error, kept beside the log.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "console/job/StandardError.h"
#include "platform/File.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using Lines = std::vector<std::string>;

class StandardError : public ::testing::Test {
 protected:
  void say(const std::string& text) const {
    folder.write("utility/logs/standard-error-17.txt", text);
  }
  Lines inShort() const { return standardErrorInShort(folder / "", "17"); }

  test::TempFolder folder;
};

TEST_F(StandardError, HasAFileForEachJob) {
  EXPECT_EQ(standardErrorPath("/shared/", "17"), "/shared/utility/logs/standard-error-17.txt");
  EXPECT_EQ(standardErrorPath("", "a/b %"), "utility/logs/standard-error-a%2Fb%20%25.txt");
  EXPECT_EQ(standardErrorPath("", "ü"), "utility/logs/standard-error-%C3%BC.txt");
}

TEST_F(StandardError, OfALogIdThatNoNameCanHoldIsNotKept) {
  const std::string tooLong(250, 'x');
  EXPECT_EQ(standardErrorPath("", tooLong), "");
  EXPECT_EQ(makeStandardError(folder / "", tooLong), "/dev/null");
}

TEST_F(StandardError, IsMadeAnewForAJob) {
  say("of another time");
  EXPECT_EQ(makeStandardError(folder / "", "17"), folder / "utility/logs/standard-error-17.txt");
  EXPECT_EQ(inShort(), Lines());
}

TEST_F(StandardError, WhereItsFolderCannotBeMadeNothingIsKept) {
  folder.write("utility", "a file");
  EXPECT_EQ(makeStandardError(folder / "", "17"), "/dev/null");
  EXPECT_EQ(inShort(), Lines());
}

TEST_F(StandardError, IsToldWithItsPlace) {
  say("rm: no\ncp: no\n");
  EXPECT_EQ(standardErrorOf(folder / "", "17"), (Lines{"rm: no", "cp: no"}));
  EXPECT_EQ(inShort(),
            (Lines{"rm: no", "cp: no",
                   "(kept in " + (folder / "utility/logs/standard-error-17.txt") + ")"}));
}

TEST_F(StandardError, OfManyLinesTheFirstAreTold) {
  std::string text;
  for (int i = 0; i < 12; ++i) text += "line " + std::to_string(i) + "\n";
  say(text);
  const Lines lines = inShort();
  ASSERT_EQ(lines.size(), 12U);
  EXPECT_EQ(lines[9], "line 9");
  EXPECT_EQ(lines[10], "... 2 more");
}

TEST_F(StandardError, SilenceIsNotKept) {
  say("");
  discardSilence(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines());
  say("rm: no\n");
  discardSilence(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines{"standard-error-17.txt"});
  discardStandardError(folder / "", "17");
  EXPECT_EQ(folder.names("utility/logs"), Lines());
}

}  // namespace
}  // namespace kelvane::console
