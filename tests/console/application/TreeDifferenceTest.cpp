// Two trees of files, compared.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "console/application/TreeDifference.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

class TreeDifference : public ::testing::Test {
 protected:
  TreeDifference() {
    for (const char* tree : {"new/", "old/"}) {
      folder.write(tree + std::string("a/file"), "bytes");
      fs::create_directory(folder / (tree + std::string("a/empty")));
      fs::create_symlink("file", folder / (tree + std::string("a/link")));
    }
  }
  Texts found() const { return treeDifferences(folder / "new", folder / "old").first; }

  test::TempFolder folder;
};

TEST_F(TreeDifference, EqualTreesHaveNone) { EXPECT_EQ(found(), Texts()); }

TEST_F(TreeDifference, NamesWhatIsMissingAndWhatIsLeftOver) {
  folder.write("new/b/one", "");
  folder.write("old/c", "");
  EXPECT_EQ(found(), (Texts{"b is missing", "c is left over"}));
}

TEST_F(TreeDifference, SeesOtherBytesOfTheSameLength) {
  folder.write("old/a/file", "bytez");
  EXPECT_EQ(found(), Texts{"a/file differs"});
}

TEST_F(TreeDifference, SeesThatAFileWasCutShort) {
  folder.write("new/a/file", std::string(200'000, 'x'));
  folder.write("old/a/file", std::string(199'999, 'x'));
  EXPECT_EQ(found(), Texts{"a/file differs"});
}

TEST_F(TreeDifference, SeesTheLastByteOfALargeFile) {
  folder.write("new/a/file", std::string(200'000, 'x'));
  folder.write("old/a/file", std::string(199'999, 'x') + "y");
  EXPECT_EQ(found(), Texts{"a/file differs"});
}

TEST_F(TreeDifference, SeesThatAProgramMayNoLongerBeExecuted) {
  fs::permissions(folder / "new/a/file", fs::perms::owner_all);
  EXPECT_EQ(found(), Texts{"a/file differs"});
}

TEST_F(TreeDifference, SeesWhereALinkLeads) {
  fs::remove(folder / "old/a/link");
  fs::create_symlink("elsewhere", folder / "old/a/link");
  EXPECT_EQ(found(), Texts{"a/link differs"});
}

TEST_F(TreeDifference, SeesOtherKinds) {
  fs::remove(folder / "old/a/empty");
  fs::remove(folder / "old/a/link");
  folder.write("old/a/empty", "");
  folder.write("old/a/link", "bytes");
  EXPECT_EQ(found(), (Texts{"a/empty is of another kind", "a/link is of another kind"}));
}

TEST_F(TreeDifference, CountsAllAndTellsTheFirst) {
  for (int i = 0; i < 9; ++i) folder.write("new/" + std::to_string(i), "");
  const TreeDifferences all = treeDifferences(folder / "new", folder / "old");
  EXPECT_EQ(all.count, 9U);
  EXPECT_EQ(all.first.size(), kMostDifferencesTold);
  EXPECT_EQ(all.first.front(), "0 is missing");
}

}  // namespace
}  // namespace kelvane::console
