#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "log/iLog.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

using platform::Value;

using Names = std::vector<std::string>;

constexpr std::uint64_t kThreshold = 104'857'600;

class LogRotation : public ::testing::Test {
 protected:
  // A sparse file: it has its size without its blocks.
  void makeFile(const std::string& name, std::uint64_t size) {
    folder.write(name, "start");
    std::filesystem::resize_file(folder / name, size);
  }
  std::uint64_t size(const std::string& name) const {
    return std::filesystem::file_size(folder / name);
  }
  void rotate(const std::string& name = "log.txt") const { renameFile(Value(folder / name)); }

  test::TempFolder folder;
};

std::string generation(const char* path, unsigned long n = 3) {
  return fileRename(path, n).string();
}

TEST_F(LogRotation, NamesPutTheGenerationBeforeTheLastExtension) {
  EXPECT_EQ(generation("/a/logs/TarselVistrelUtility.txt"), "/a/logs/TarselVistrelUtility(3).txt");
  EXPECT_EQ(generation("/a/b/archive.tar.gz"), "/a/b/archive.tar(3).gz");
  EXPECT_EQ(generation("/a/b/README"), "/a/b/README(3)");
  EXPECT_EQ(generation("/a/b/.profile"), "/a/b/.profile(3)");
  EXPECT_EQ(generation("/a/b/.profile.txt"), "/a/b/.profile(3).txt");
  EXPECT_EQ(generation("/x.txt", 100), "/x(100).txt");
}

TEST_F(LogRotation, ARelativePathLosesItsFirstComponentAndBecomesAbsolute) {
  EXPECT_EQ(generation("logs/x.txt"), "/x(3).txt");
  EXPECT_EQ(generation("a/logs/x.txt"), "/logs/x(3).txt");
  EXPECT_EQ(generation("x.txt"), "/x(3).txt");
}

TEST_F(LogRotation, OddNamesHaveAGenerationToo) {
  EXPECT_EQ(generation("/a/name."), "/a/name(3).");
  EXPECT_EQ(generation("/a/.b.c.d"), "/a/.b.c(3).d");
  EXPECT_EQ(generation("/a/"), "/a/(3)");
  EXPECT_EQ(generation("/a.b/c"), "/a.b/c(3)");
}

TEST_F(LogRotation, APathThatIsNoTextIsLoggedAndGivesTheFolderSoFar) {
  test::FakeHost host;
  iLog_host = &host;
  folder.write("log.txt", "");
  setLogPath((folder / "log.txt").c_str());
  EXPECT_EQ(fileRename(Value::integer(5), 1), Value(""));
  setLogPath("");
  iLog_host = nullptr;
  EXPECT_NE(folder.read("log.txt").find("][*fileRename][error] "), std::string::npos);
}

TEST_F(LogRotation, AFileBelowTheThresholdIsLeftAlone) {
  makeFile("log.txt", kThreshold - 1);
  rotate();
  EXPECT_EQ(folder.names(), Names{"log.txt"});
  EXPECT_EQ(size("log.txt"), kThreshold - 1);
}

TEST_F(LogRotation, AFileAtTheThresholdIsMovedAndAnEmptyOneTakesItsPlace) {
  makeFile("log.txt", kThreshold);
  rotate();
  EXPECT_EQ(folder.names(), (Names{"log(1).txt", "log.txt"}));
  EXPECT_EQ(size("log(1).txt"), kThreshold);
  EXPECT_EQ(size("log.txt"), 0U);
}

TEST_F(LogRotation, TheLowestFreeGenerationIsTaken) {
  makeFile("log.txt", kThreshold);
  folder.write("log(1).txt", "one");
  folder.write("log(3).txt", "three");
  rotate();
  EXPECT_EQ(size("log(2).txt"), kThreshold);
  EXPECT_EQ(folder.read("log(1).txt"), "one");
  EXPECT_EQ(folder.read("log(3).txt"), "three");
}

TEST_F(LogRotation, AFolderTakesAGenerationToo) {
  makeFile("log.txt", kThreshold);
  folder.write("log(1).txt/inside", "");
  rotate();
  EXPECT_EQ(size("log(2).txt"), kThreshold);
}

TEST_F(LogRotation, TheHundredthGenerationIsTheLast) {
  makeFile("log.txt", kThreshold);
  for (int n = 1; n <= 99; ++n) folder.write("log(" + std::to_string(n) + ").txt", "");
  rotate();
  EXPECT_EQ(size("log(100).txt"), kThreshold);
  makeFile("log.txt", kThreshold);
  rotate();
  EXPECT_EQ(size("log.txt"), kThreshold);
  EXPECT_EQ(folder.names().size(), 101U);
}

TEST_F(LogRotation, AMissingFileOrAFolderIsLeftAlone) {
  folder.write("log.txt/inside", "x");
  rotate();
  rotate("missing");
  renameFile(Value());
  EXPECT_EQ(folder.names(), Names{"log.txt"});
  EXPECT_EQ(folder.read("log.txt/inside"), "x");
}

// The generation of a relative path stands where the rest of it leads from the root, which may be
// another disk; where there is no second one, this is a move like any other.
TEST_F(LogRotation, ARelativePathIsMovedToItsGenerationAlsoOnAnotherDisk) {
  const bool hasSecond = std::filesystem::is_directory("/dev/shm");
  const test::TempFolder other("", hasSecond ? "/dev/shm/" : "/tmp/");
  const std::string path = "here" + other.path() + "/log.txt";
  makeFile(path, kThreshold);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  renameFile(Value(path));
  std::filesystem::current_path(before);
  EXPECT_EQ(other.names(), Names{"log(1).txt"});
  EXPECT_EQ(std::filesystem::file_size(other / "log(1).txt"), kThreshold);
  EXPECT_EQ(size(path), 0U);
}

TEST_F(LogRotation, ALinkToALargeFileIsRotated) {
  makeFile("real.txt", kThreshold);
  std::filesystem::create_symlink("real.txt", folder / "log.txt");
  rotate();
  EXPECT_EQ(folder.names(), (Names{"log(1).txt", "log.txt", "real.txt"}));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "log(1).txt"));
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "log.txt"));
  EXPECT_EQ(size("log.txt"), 0U);
  EXPECT_EQ(size("real.txt"), kThreshold);
}

TEST_F(LogRotation, AFailedMoveStillEmptiesTheFile) {
  const std::string name(255, 'n');  // no generation of it can have a name
  makeFile(name, kThreshold);
  rotate(name);
  EXPECT_EQ(folder.names(), Names{name});
  EXPECT_EQ(size(name), 0U);
}

TEST_F(LogRotation, TheNewFileHasTheDefaultPermissions) {
  makeFile("log.txt", kThreshold);
  std::filesystem::permissions(folder / "log.txt", std::filesystem::perms::owner_all);
  const mode_t before = ::umask(026);
  rotate();
  ::umask(before);
  EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(folder / "log.txt").permissions()),
            0640U);
}

TEST_F(LogRotation, AGroupThatMayWriteNewFilesMayWriteTheNewLog) {
  makeFile("log.txt", kThreshold);
  const mode_t before = ::umask(002);
  rotate();
  ::umask(before);
  EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(folder / "log.txt").permissions()),
            0664U);
}

TEST_F(LogRotation, TheLogGoesOnInTheNewFile) {
  test::FakeHost host;
  iLog_host = &host;
  makeFile("log.txt", kThreshold);
  setLogPath((folder / "log.txt").c_str());
  rotate();
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "text");
  setLogPath("");
  iLog_host = nullptr;
  EXPECT_EQ(folder.read("log.txt"), "[14:03:07] [f][1][run][debug] text\n");
}

}  // namespace
}  // namespace kelvane
