#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/File.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

class FileTree : public ::testing::Test {
 protected:
  kelvane::testing::TempFolder folder;
};

TEST_F(FileTree, ListsOneLevelHiddenNamesToo) {
  folder.write("a/one", "");
  folder.write("a/.hidden", "");
  folder.write("a/deep/below", "");
  Names names = listFolder(folder / "a");
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (Names{".hidden", "deep", "one"}));
}

TEST_F(FileTree, WhatCannotBeListedHasNoNames) {
  EXPECT_TRUE(listFolder(folder / "missing").empty());
  EXPECT_TRUE(listFolder(folder.write("file", "")).empty());
}

TEST_F(FileTree, MakesAllLevels) {
  EXPECT_TRUE(makeFolders(folder / "a/b/c"));
  EXPECT_TRUE(makeFolders(folder / "a/b/c"));
  EXPECT_TRUE(isFolder(folder / "a/b/c"));
  folder.write("file", "");
  EXPECT_FALSE(makeFolders(folder / "file/below"));
}

TEST_F(FileTree, RemovesAllBelowButNeverWhatALinkLeadsTo) {
  folder.write("kept/inside", "x");
  folder.write("gone/deep/inside", "x");
  fs::create_directory_symlink(folder / "kept", folder / "gone/link");
  EXPECT_TRUE(removeTree(folder / "gone"));
  EXPECT_EQ(folder.names(), Names{"kept"});
  fs::create_directory_symlink(folder / "kept", folder / "link");
  EXPECT_TRUE(removeTree(folder / "link"));
  EXPECT_EQ(folder.names(), Names{"kept"});
  EXPECT_EQ(folder.read("kept/inside"), "x");
}

TEST_F(FileTree, ASlashAtTheEndDoesNotLeadThroughALink) {
  folder.write("kept/inside", "x");
  fs::create_directory_symlink(folder / "kept", folder / "link");
  EXPECT_TRUE(removeTree(folder / "link/"));
  EXPECT_EQ(folder.names(), Names{"kept"});
  EXPECT_EQ(folder.read("kept/inside"), "x");
}

TEST_F(FileTree, AFileThatCannotBeCopiedToItsEndIsNotLeftBehind) {
  folder.write("from", std::string(1'000'000, 'x'));
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before = {};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const rlimit limit = {65536, before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const bool copied = copyTree(folder / "from", folder / "to");
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_FALSE(copied);
  EXPECT_EQ(folder.names(), Names{"from"});
}

TEST_F(FileTree, ALinkKeepsItsOwnModificationTime) {
  fs::create_symlink("missing", folder / "from");
  const timespec time = {1000, 0};
  const timespec times[2] = {time, time};
  ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "from").c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  struct stat entry = {};
  ASSERT_EQ(::lstat((folder / "to").c_str(), &entry), 0);
  EXPECT_EQ(entry.st_mtime, 1000);
}

TEST_F(FileTree, CopiesFilesFoldersLinksAndEmptyFolders) {
  folder.write("from/a b/\xC3\xA9.txt", "text");
  folder.write("from/.hidden", "h");
  fs::create_directories(folder / "from/empty");
  fs::create_symlink("missing", folder / "from/dangling");
  fs::create_directory_symlink("a b", folder / "from/link");
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to/a b/\xC3\xA9.txt"), "text");
  EXPECT_EQ(folder.names("to"), (Names{".hidden", "a b", "dangling", "empty", "link"}));
  EXPECT_TRUE(folder.names("to/empty").empty());
  EXPECT_EQ(fs::read_symlink(folder / "to/dangling"), "missing");
  EXPECT_EQ(fs::read_symlink(folder / "to/link"), "a b");
}

TEST_F(FileTree, KeepsPermissionBitsAndModificationTimes) {
  folder.write("from/file", "x");
  ::chmod((folder / "from/file").c_str(), 0540);
  const auto time = fs::file_time_type::clock::now() - std::chrono::hours(1000);
  fs::last_write_time(folder / "from/file", time);
  fs::last_write_time(folder / "from", time);
  ::chmod((folder / "from").c_str(), 0555);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  for (const char* name : {"", "/file"}) {
    const std::string from = folder / ("from" + std::string(name));
    const std::string to = folder / ("to" + std::string(name));
    EXPECT_EQ(fs::status(from).permissions(), fs::status(to).permissions()) << name;
    EXPECT_EQ(fs::last_write_time(from), fs::last_write_time(to)) << name;
  }
  ::chmod((folder / "from").c_str(), 0755);
  ::chmod((folder / "to").c_str(), 0755);
}

TEST_F(FileTree, HolesStayHoles) {
  constexpr off_t kSize = off_t{3} << 30U;
  folder.write("from", "start");
  fs::resize_file(folder / "from", kSize);
  std::fstream file(folder / "from");
  file.seekp(kSize - 3);
  file << "end" << std::flush;
  file.seekp(kSize / 2);
  file << "middle" << std::flush;
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  struct stat entry = {};
  ASSERT_EQ(::stat((folder / "to").c_str(), &entry), 0);
  EXPECT_EQ(entry.st_size, kSize);
  EXPECT_LT(entry.st_blocks * 512, 1 << 20);
  std::ifstream copy(folder / "to");
  const auto textAt = [&copy](off_t position, std::size_t length) {
    std::string text(length, '\0');
    copy.seekg(position);
    copy.read(text.data(), static_cast<std::streamsize>(length));
    return text;
  };
  EXPECT_EQ(textAt(0, 6), std::string("start\0", 6));
  EXPECT_EQ(textAt(kSize / 2, 6), "middle");
  EXPECT_EQ(textAt(kSize - 3, 3), "end");
}

TEST_F(FileTree, AHoleAtTheEndStaysOne) {
  fs::resize_file(folder.write("from", "start"), 1 << 20);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(fs::file_size(folder / "to"), 1U << 20U);
}

TEST_F(FileTree, CopiesBetweenTwoDisks) {
  // Where there is no second disk this is a copy like any other.
  const std::string bytes(300'000, 'x');
  const std::string from = fs::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
  const kelvane::testing::TempFolder other("", from);
  EXPECT_TRUE(copyTree(other.write("from", bytes), folder / "to"));
  EXPECT_EQ(folder.read("to"), bytes);
}

TEST_F(FileTree, CopyingNeverReplacesAnything) {
  folder.write("from", "new");
  folder.write("file", "old");
  fs::create_directory(folder / "folder");
  fs::create_symlink("missing", folder / "dangling");
  for (const char* target : {"file", "folder", "dangling"}) {
    EXPECT_FALSE(copyTree(folder / "from", folder / target)) << target;
  }
  EXPECT_EQ(folder.read("file"), "old");
  EXPECT_FALSE(exists(folder / "missing"));
}

TEST_F(FileTree, WhatIsNotThereOrNeitherFileNorFolderIsNotCopied) {
  EXPECT_FALSE(copyTree(folder / "missing", folder / "to"));
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_FALSE(copyTree(folder / "fifo", folder / "to"));
  EXPECT_FALSE(exists(folder / "to"));
}

}  // namespace
}  // namespace kelvane::platform
