#include <csignal>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "tests/support/SystemCallKiller.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

using Names = std::vector<std::string>;

class FileTest : public ::testing::Test {
 protected:
  kelvane::testing::TempFolder folder;

  mode_t permissions(const std::string& name) const {
    struct stat entry = {};
    EXPECT_EQ(::stat((folder / name).c_str(), &entry), 0);
    return entry.st_mode & 07777;
  }
};

TEST_F(FileTest, ExistenceFollowsLinks) {
  folder.write("file", "x");
  std::filesystem::create_symlink("file", folder / "good");
  std::filesystem::create_symlink("missing", folder / "dangling");
  EXPECT_TRUE(exists(folder / "file"));
  EXPECT_TRUE(exists(folder.path()));
  EXPECT_TRUE(exists(folder / "good"));
  EXPECT_FALSE(exists(folder / "dangling"));
  EXPECT_FALSE(exists(folder / "missing"));
  EXPECT_FALSE(exists(""));
}

TEST_F(FileTest, ReadsAWholeFileOfAnyBytes) {
  const std::string bytes = std::string("a\0\xFF", 3) + std::string(200'000, 'x');
  EXPECT_EQ(readFile(folder.write("file", bytes)), bytes);
  EXPECT_EQ(readFile(folder.write("empty", "")), "");
}

TEST_F(FileTest, ReadingWhatIsNotThereTellsPathAndCause) {
  try {
    readFile(folder / "missing");
    FAIL() << "nothing was raised";
  } catch (const Exception& raised) {
    EXPECT_EQ(raised.what(), "open " + (folder / "missing") + ": No such file or directory");
  }
}

TEST_F(FileTest, ReadingAFolderRaises) { EXPECT_THROW(readFile(folder.path()), Exception); }

TEST_F(FileTest, ReplacesAndLeavesNothingBeside) {
  folder.write("file", "old");
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST_F(FileTest, MakesAFileThatIsNotThereWithDefaultPermissions) {
  const mode_t mask = ::umask(027);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  ::umask(mask);
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_EQ(permissions("file"), 0640U);
}

TEST_F(FileTest, KeepsThePermissionBitsOfTheOldFile) {
  ::chmod(folder.write("file", "old").c_str(), 0604);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(permissions("file"), 0604U);
}

TEST_F(FileTest, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
  folder.write("real/file", "old");
  std::filesystem::create_symlink("real/file", folder / "link");
  std::filesystem::create_symlink(folder / "link", folder / "link2");
  EXPECT_TRUE(replaceFile(folder / "link2", "new"));
  EXPECT_EQ(folder.read("real/file"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link2"));
  EXPECT_EQ(folder.names("real"), Names{"file"});
}

TEST_F(FileTest, AChainOfLinksIsFollowedAsFarAsTheSystemFollowsIt) {
  folder.write("link0", "old");
  for (int i = 1; i <= 41; ++i) {
    std::filesystem::create_symlink("link" + std::to_string(i - 1),
                                    folder / ("link" + std::to_string(i)));
  }
  EXPECT_TRUE(exists(folder / "link40"));
  EXPECT_TRUE(replaceFile(folder / "link40", "new"));
  EXPECT_EQ(folder.read("link0"), "new");
  EXPECT_FALSE(exists(folder / "link41"));
  EXPECT_FALSE(replaceFile(folder / "link41", "newer"));
}

TEST_F(FileTest, ANameAsLongAsNamesCanBeIsReplaced) {
  const std::string name(255, 'n');
  folder.write(name, "old");
  EXPECT_TRUE(replaceFile(folder / name, "new"));
  EXPECT_EQ(folder.read(name), "new");
}

// Only root may give a file away; without it the owner is the same to begin with.
TEST_F(FileTest, KeepsOwnerAndGroupOfTheOldFileWhereAllowed) {
  folder.write("inside/file", "old");
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown((folder / "inside").c_str(), 0, 100), 0);
    ASSERT_EQ(::chmod((folder / "inside").c_str(), 02755), 0);
    ASSERT_EQ(::chown((folder / "inside/file").c_str(), 12, 34), 0);
  }
  struct stat before = {};
  ASSERT_EQ(::stat((folder / "inside/file").c_str(), &before), 0);
  EXPECT_TRUE(replaceFile(folder / "inside/file", "new"));
  struct stat after = {};
  ASSERT_EQ(::stat((folder / "inside/file").c_str(), &after), 0);
  EXPECT_EQ(folder.read("inside/file"), "new");
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
}

TEST_F(FileTest, KeepsTheGroupInAFolderThatHandsDownItsOwn) {
  folder.write("inside/file", "old");
  if (::geteuid() == 0) {
    ASSERT_EQ(::chown((folder / "inside").c_str(), 0, 100), 0);
    ASSERT_EQ(::chmod((folder / "inside").c_str(), 02755), 0);
  }
  EXPECT_TRUE(replaceFile(folder / "inside/file", "new"));
  struct stat after = {};
  ASSERT_EQ(::stat((folder / "inside/file").c_str(), &after), 0);
  EXPECT_EQ(after.st_gid, ::getegid());
}

TEST_F(FileTest, LinksInACircleAreNotReplaced) {
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  EXPECT_FALSE(replaceFile(folder / "a", "new"));
  EXPECT_EQ(folder.names(), (Names{"a", "b"}));
}

TEST_F(FileTest, AFolderInThePlaceIsLeftAloneAndNoTemporaryFileStays) {
  folder.write("place/inside", "x");
  EXPECT_FALSE(replaceFile(folder / "place", "new"));
  EXPECT_EQ(folder.names(), Names{"place"});
  EXPECT_EQ(folder.read("place/inside"), "x");
}

TEST_F(FileTest, AMissingFolderMakesTheReplacementFail) {
  EXPECT_FALSE(replaceFile(folder / "no/file", "new"));
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(FileTest, AFullDiskLeavesTheOldFileAndNoTemporaryFile) {
  folder.write("file", "old");
  const pid_t child = ::fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {10, 10};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::_exit(replaceFile(folder / "file", std::string(100, 'n')) ? 1 : 0);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(folder.read("file"), "old");
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST_F(FileTest, ACrashAtAnySystemCallLeavesTheOldFileOrTheNewOne) {
  const std::string oldBytes(3000, 'o');
  const std::string newBytes(70000, 'n');
  bool sawOld = false;
  bool sawNew = false;
  int n = 1;
  for (;; ++n) {
    folder.write("file", oldBytes);
    const bool killed = kelvane::testing::killedBeforeSystemCall(
        n, [&] { replaceFile(folder / "file", newBytes); });
    const std::string left = folder.read("file");
    ASSERT_TRUE(left == oldBytes || left == newBytes) << "killed before system call " << n;
    sawOld = sawOld || left == oldBytes;
    sawNew = sawNew || left == newBytes;
    if (!killed) break;
  }
  EXPECT_TRUE(sawOld);
  EXPECT_TRUE(sawNew);
  EXPECT_GT(n, 8);  // at least open, write, fsync, close and rename, and what lies between
}

TEST_F(FileTest, AppendsAtTheEnd) {
  folder.write("file", "one\n");
  appendToFile(folder / "file", "two\n");
  EXPECT_EQ(folder.read("file"), "one\ntwo\n");
}

TEST_F(FileTest, AppendingNeverMakesAFile) {
  appendToFile(folder / "missing", "x");
  appendToFile(folder.path(), "x");
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(FileTest, AFailingAppendTellsPathAndCause) {
  try {
    appendToFile("/dev/full", "x");
    FAIL() << "nothing was raised";
  } catch (const Exception& raised) {
    EXPECT_STREQ(raised.what(), "write /dev/full: No space left on device");
  }
}

TEST_F(FileTest, KnowsFoldersAndSizes) {
  folder.write("inside/file", "12345");
  EXPECT_TRUE(isFolder(folder / "inside"));
  EXPECT_FALSE(isFolder(folder / "inside/file"));
  EXPECT_FALSE(isFolder(folder / "missing"));
  EXPECT_EQ(fileSize(folder / "inside/file"), 5U);
  EXPECT_EQ(fileSize(folder / "missing"), 0U);
}

TEST_F(FileTest, MovesAFile) {
  folder.write("a", "x");
  EXPECT_TRUE(movePath(folder / "a", folder / "b"));
  EXPECT_EQ(folder.names(), Names{"b"});
  EXPECT_FALSE(movePath(folder / "missing", folder / "c"));
  EXPECT_EQ(folder.names(), Names{"b"});
}

TEST_F(FileTest, MakesOrEmptiesAFile) {
  folder.write("full", "x");
  EXPECT_TRUE(createEmptyFile(folder / "full"));
  EXPECT_TRUE(createEmptyFile(folder / "new"));
  EXPECT_EQ(folder.read("full"), "");
  EXPECT_EQ(folder.names(), (Names{"full", "new"}));
  EXPECT_FALSE(createEmptyFile(folder.path()));
}

TEST(WithoutLastComponent, CutsOneComponent) {
  EXPECT_EQ(withoutLastComponent("/A/B.app/Contents/Resources"), "/A/B.app/Contents");
  EXPECT_EQ(withoutLastComponent("/A/B/"), "/A");
  EXPECT_EQ(withoutLastComponent("/A"), "/");
  EXPECT_EQ(withoutLastComponent("/"), "/");
  EXPECT_EQ(withoutLastComponent("A"), "");
  EXPECT_EQ(withoutLastComponent(""), "");
}

}  // namespace
}  // namespace kelvane::platform
