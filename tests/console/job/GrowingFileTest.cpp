// A file that others write to: all that comes is found once, whatever becomes of the file.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/job/GrowingFile.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GrowingFileTest : public ::testing::Test {
 protected:
  void append(const std::string& text) const {
    std::ofstream(folder / "log", std::ios::app) << text;
  }
  void put(const std::string& text) const { std::ofstream(folder / "log") << text; }
  void moveAway() const { std::filesystem::rename(folder / "log", folder / "old"); }

  // "text", "(gone)", "(anew)"
  std::vector<std::string> look() {
    std::vector<std::string> found;
    for (const FileNews& news : file.look()) {
      if (news.kind == FileNews::Kind::text) found.push_back(news.text);
      if (news.kind == FileNews::Kind::gone) found.emplace_back("(gone)");
      if (news.kind == FileNews::Kind::anew) found.emplace_back("(anew)");
    }
    return found;
  }

  test::TempFolder folder;
  GrowingFile file{folder / "log"};
};

TEST_F(GrowingFileTest, WhatIsAppendedIsFoundOnce) {
  append("one\n");
  EXPECT_THAT(look(), ElementsAre("one\n"));
  EXPECT_THAT(look(), IsEmpty());
  append("two\nthr");
  append("ee\n");
  EXPECT_THAT(look(), ElementsAre("two\nthree\n"));
}

TEST_F(GrowingFileTest, WhatIsWrittenBeforeAndBehindARotationIsFound) {
  append("one\n");
  look();
  append("two\n");
  moveAway();
  put("three\n");
  EXPECT_THAT(look(), ElementsAre("two\n", "(anew)", "three\n"));
  append("four\n");
  EXPECT_THAT(look(), ElementsAre("four\n"));
}

TEST_F(GrowingFileTest, AFileThatIsEmptiedBeginsAnew) {
  append("one\ntwo\n");
  look();
  put("");
  EXPECT_THAT(look(), ElementsAre("(anew)"));
  append("3\n");
  EXPECT_THAT(look(), ElementsAre("3\n"));
}

TEST_F(GrowingFileTest, AFileThatHasGrownBeyondItsPlaceSinceItWasEmptiedBeginsAnew) {
  append("one\n");
  look();
  put("another line, longer than before\n");
  EXPECT_THAT(look(), ElementsAre("(anew)", "another line, longer than before\n"));
  put("A line of the same length as bef.\n");
  EXPECT_THAT(look(), ElementsAre("(anew)", "A line of the same length as bef.\n"));
}

TEST_F(GrowingFileTest, AFileThatIsRemovedIsToldOnceAndFoundWhereItIsMadeAgain) {
  append("one\n");
  look();
  append("two\n");
  std::filesystem::remove(folder / "log");
  EXPECT_THAT(look(), ElementsAre("two\n", "(gone)"));
  EXPECT_FALSE(file.isThere());
  EXPECT_THAT(look(), IsEmpty());
  put("three\n");
  EXPECT_THAT(look(), ElementsAre("(anew)", "three\n"));
  EXPECT_TRUE(file.isThere());
}

TEST_F(GrowingFileTest, AFileThatIsMadeAgainBetweenTwoLooksIsAnother) {
  for (int i = 0; i < 3; ++i) {  // the system likes to give such a file the number of the old one
    put("same\n");
    look();
    std::filesystem::remove(folder / "log");
    put("same\n");
    EXPECT_THAT(look(), ElementsAre("(anew)", "same\n"));
    std::filesystem::remove(folder / "log");
    look();
  }
}

TEST_F(GrowingFileTest, AFileThatIsNotThereYetIsWaitedFor) {
  EXPECT_THAT(look(), ElementsAre("(gone)"));
  put("one\n");
  EXPECT_THAT(look(), ElementsAre("one\n"));
}

TEST_F(GrowingFileTest, APipeAFolderAndADanglingLinkAreNoFile) {
  ASSERT_EQ(::mkfifo((folder / "log").c_str(), 0600), 0);
  EXPECT_THAT(look(), ElementsAre("(gone)"));
  std::filesystem::remove(folder / "log");
  std::filesystem::create_directory(folder / "log");
  EXPECT_THAT(look(), IsEmpty());
  std::filesystem::remove(folder / "log");
  std::filesystem::create_symlink(folder / "other", folder / "log");
  EXPECT_THAT(look(), IsEmpty());
  folder.write("other", "text\n");
  EXPECT_THAT(look(), ElementsAre("text\n"));
}

TEST_F(GrowingFileTest, ALargeFileIsReadWhole) {
  const std::string large(5'000'001, 'x');
  put(large);
  EXPECT_THAT(look(), ElementsAre(large));
  append("y");
  EXPECT_THAT(look(), ElementsAre("y"));
}

}  // namespace
}  // namespace kelvane::console
