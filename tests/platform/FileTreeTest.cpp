#include <algorithm>
#include <climits>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/File.h"
#include "tests/support/FullFile.h"
#include "tests/support/SystemCallKiller.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

constexpr off_t kHole = off_t{1} << 18U;

class FileTree : public ::testing::Test {
 protected:
  // Makes a file of so many bytes with these texts at these places, and holes between them.
  static void makeWithHoles(const std::string& path, off_t size,
                            const std::map<off_t, std::string>& texts) {
    std::ofstream(path) << "";
    fs::resize_file(path, static_cast<std::uintmax_t>(size));
    std::fstream file(path);
    for (const auto& [position, text] : texts) {
      file.seekp(position);
      file << text;
    }
  }
  static off_t bytesOnDisk(const std::string& path) {
    struct stat entry = {};
    EXPECT_EQ(::stat(path.c_str(), &entry), 0);
    return entry.st_blocks * 512;
  }
  // Bytes that are not the same anywhere.
  static std::string numbered(std::size_t size) {
    std::string bytes;
    for (int i = 0; bytes.size() < size; ++i) bytes += std::to_string(i) + " ";
    bytes.resize(size);
    return bytes;
  }

  kelvane::test::TempFolder folder;
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

// Nobody waits for the other end of a pipe.
TEST_F(FileTree, APipeIsListedAtOnceAndHasNoNames) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_TRUE(listFolder(folder / "fifo").empty());
}

TEST_F(FileTree, MakesAllLevels) {
  EXPECT_TRUE(makeFolders(folder / "a/b/c"));
  EXPECT_TRUE(makeFolders(folder / "a/b/c"));
  EXPECT_TRUE(isFolder(folder / "a/b/c"));
  folder.write("file", "");
  EXPECT_FALSE(makeFolders(folder / "file/below"));
  EXPECT_FALSE(makeFolders(folder / "file"));
  EXPECT_FALSE(makeFolders(""));
  std::string tooLong = folder / "deep";
  while (tooLong.size() < PATH_MAX) tooLong += "/deeper";
  EXPECT_FALSE(makeFolders(tooLong + "/deepest"));
}

TEST_F(FileTree, MakesTheLevelsRightBelowTheRoot) {
  if (::geteuid() != 0) {  // only the super user may take another root folder, or change this one
    EXPECT_FALSE(makeFolders("/made by nobody/below"));
    return;
  }
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(::chroot(folder.path().c_str()) == 0 && makeFolders("/a/b") ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(isFolder(folder / "a/b"));
}

TEST_F(FileTree, EveryLevelHasTheDefaultPermissions) {
  for (const mode_t mask : {002U, 027U}) {
    const std::string top = "made" + std::to_string(mask);
    const mode_t before = ::umask(mask);
    EXPECT_TRUE(makeFolders(folder / (top + "/below")));
    ::umask(before);
    for (const std::string& level : {top, top + "/below"}) {
      EXPECT_EQ(static_cast<unsigned>(fs::status(folder / level).permissions()), 0777U & ~mask);
    }
  }
}

// What ends a path counts to its length.
TEST_F(FileTree, NoLevelIsMadeWhosePathIsLongerThanPathsCanBe) {
  std::string path = folder.path();
  while (path.size() < PATH_MAX - 200) path += "/" + std::string(99, 'd');
  const std::string longest = path + "/" + std::string(PATH_MAX - 2 - path.size(), 'e');
  const std::string tooLong = path + "/" + std::string(PATH_MAX - 1 - path.size(), 'f');
  ASSERT_EQ(tooLong.size(), static_cast<std::size_t>(PATH_MAX));
  EXPECT_TRUE(makeFolders(longest));
  EXPECT_TRUE(makeFolders(longest + "/"));
  EXPECT_FALSE(makeFolders(tooLong));
  EXPECT_EQ(listFolder(path), Names{longest.substr(path.size() + 1)});
}

TEST_F(FileTree, MakesLevelsBelowLinksAndUpwards) {
  fs::create_directory(folder / "real");
  fs::create_directory_symlink("real", folder / "link");
  fs::create_symlink("missing", folder / "dangling");
  EXPECT_TRUE(makeFolders(folder / "link//a/../b/./"));
  EXPECT_EQ(folder.names("real"), (Names{"a", "b"}));
  EXPECT_FALSE(makeFolders(folder / "dangling/a"));
  EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST_F(FileTree, MakesLevelsInTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  EXPECT_TRUE(makeFolders("a/b"));
  fs::current_path(before);
  EXPECT_TRUE(isFolder(folder / "a/b"));
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

TEST_F(FileTree, KeepsTheBitsBesideThoseOfReadingAndWriting) {
  folder.write("from/file", "x");
  ASSERT_EQ(::chmod((folder / "from/file").c_str(), 07750), 0);
  ASSERT_EQ(::chmod((folder / "from").c_str(), 03755), 0);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  const auto bits = [this](const char* name) {
    return static_cast<unsigned>(fs::status(folder / name).permissions());
  };
  EXPECT_EQ(bits("to/file"), 07750U);
  EXPECT_EQ(bits("to"), 03755U);
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

TEST_F(FileTree, AHoleAtTheStartStaysOne) {
  makeWithHoles(folder / "from", kHole + 3, {{kHole, "end"}});
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), folder.read("from"));
  EXPECT_EQ(folder.read("to").substr(kHole), "end");
  EXPECT_LT(bytesOnDisk(folder / "to"), kHole);
}

TEST_F(FileTree, DataOnBothSidesOfAHoleStaysInItsPlace) {
  makeWithHoles(folder / "from", 3 * kHole,
                {{0, numbered(5000)}, {3 * kHole - 5000, numbered(5000)}});
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), folder.read("from"));
  EXPECT_EQ(folder.read("to").substr(3 * kHole - 5000), numbered(5000));
  EXPECT_LT(bytesOnDisk(folder / "to"), kHole);
}

TEST_F(FileTree, ManyHolesStayWhereTheyAre) {
  std::map<off_t, std::string> texts;
  for (int i = 0; i < 8; ++i) {
    texts[i * kHole + i * off_t{777}] = numbered(i % 3 == 0 ? 1000 : 9000);
  }
  makeWithHoles(folder / "from", 8 * kHole + 12345, texts);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), folder.read("from"));
  EXPECT_LT(bytesOnDisk(folder / "to"), kHole);
}

TEST_F(FileTree, AFileBehindOneThatEndsInAHoleIsCopiedWhole) {
  for (const char* name : {"from/1", "from/2"}) {
    fs::resize_file(folder.write(name, "start"), kHole);
  }
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  for (const char* name : {"to/1", "to/2"}) EXPECT_EQ(folder.read(name).substr(0, 5), "start");
}

TEST_F(FileTree, AFileThatIsNothingButAHoleIsCopied) {
  makeWithHoles(folder / "from", kHole + 1, {});
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), std::string(kHole + 1, '\0'));
  EXPECT_LT(bytesOnDisk(folder / "to"), kHole);
}

TEST_F(FileTree, ASingleByteBehindAHoleIsCopied) {
  makeWithHoles(folder / "from", kHole + 1, {{kHole, "x"}});
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), std::string(kHole, '\0') + "x");
}

TEST_F(FileTree, FilesOfEverySizeAreCopiedWhole) {
  const std::vector<std::size_t> sizes = {0,    1,     511,   4095,  4096,
                                          4097, 65535, 65536, 65537, 1'000'003};
  for (const std::size_t size : sizes) {
    folder.write("from", numbered(size));
    EXPECT_TRUE(copyTree(folder / "from", folder / "to")) << size;
    EXPECT_EQ(folder.read("to"), numbered(size)) << size;
    fs::remove(folder / "to");
  }
}

TEST_F(FileTree, AnEmptyFileIsCopied) {
  folder.write("from", "");
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.names(), (Names{"from", "to"}));
  EXPECT_EQ(fs::file_size(folder / "to"), 0U);
}

TEST_F(FileTree, HolesStayWhereTheyAreBetweenTwoDisks) {
  // Where there is no second disk this is a copy like any other.
  const std::string root = fs::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
  const kelvane::test::TempFolder other("", root);
  makeWithHoles(other / "from", 3 * kHole + 1, {{10, "start"}, {kHole + 7, numbered(100'001)}});
  EXPECT_TRUE(copyTree(other / "from", folder / "to"));
  EXPECT_EQ(folder.read("to"), other.read("from"));
  EXPECT_LT(bytesOnDisk(folder / "to"), kHole);
}

TEST_F(FileTree, ATargetWhoseFolderIsMissingIsNotMade) {
  folder.write("from/file", "x");
  EXPECT_FALSE(copyTree(folder / "from", folder / "no/to"));
  EXPECT_FALSE(copyTree(folder / "from/file", folder / "no/to"));
  EXPECT_EQ(folder.names(), Names{"from"});
}

TEST_F(FileTree, CopiesBetweenTwoDisks) {
  // Where there is no second disk this is a copy like any other.
  const std::string bytes(300'000, 'x');
  const std::string from = fs::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
  const kelvane::test::TempFolder other("", from);
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

TEST_F(FileTree, WhatIsNeitherFileFolderNorLinkIsPassedOverInAFolder) {
  folder.write("from/a", "a");
  folder.write("from/z", "z");
  ASSERT_EQ(::mkfifo((folder / "from/fifo").c_str(), 0600), 0);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.names("to"), (Names{"a", "z"}));
}

TEST_F(FileTree, AFailedCopyOfAFolderLeavesNothing) {
  folder.write("from/readonly/inside", "x");
  fs::resize_file(folder.write("from/large", "x"), 2 << 20);
  folder.write("from/zlast/inside", "x");
  ::chmod((folder / "from/readonly").c_str(), 0555);
  {
    const kelvane::test::FullFile full;  // so that a file of this size cannot be made
    EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
  }
  EXPECT_EQ(folder.names(), Names{"from"});
  ::chmod((folder / "from/readonly").c_str(), 0755);
}

TEST_F(FileTree, WhatAnEarlierAttemptLeftGivesWay) {
  folder.write("from/file", "new");
  folder.write(".incoming-to/part", "old");
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.names(), (Names{"from", "to"}));
  EXPECT_EQ(folder.names("to"), Names{"file"});
}

TEST_F(FileTree, ANameAsLongAsNamesCanBeIsCopied) {
  std::string name;
  while (name.size() < 254) name += "\xC3\xA9";  // cut anywhere, half of the bytes end no character
  folder.write("from/" + name, "x");
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(copyTree(folder / ("from/" + name), folder / ("to/b" + name.substr(2))));
  EXPECT_TRUE(discardTree(folder / ("to/" + name)));
  EXPECT_EQ(folder.names("to"), Names{"b" + name.substr(2)});
}

TEST_F(FileTree, AStagedCopyStandsBesideItsPlaceUnderAHiddenName) {
  folder.write("from", "x");
  EXPECT_EQ(stageCopy(folder / "from", folder / "to"), folder / ".incoming-to");
}

TEST_F(FileTree, TheHiddenNameOfALongOneIsThatOneUpToACharactersEndAndANumber) {
  folder.write("from", "x");
  std::string accents = "a";
  while (accents.size() < 201) accents += "\xC3\xA9";
  const std::vector<std::pair<std::string, std::size_t>> names = {
      {std::string(201, 'a'), 200}, {accents, 199}, {'a' + std::string(200, '\x80'), 0}};
  for (const auto& [name, kept] : names) {
    const std::string start = (folder / ".incoming-") + name.substr(0, kept) + "-";
    const std::string staged = stageCopy(folder / "from", folder / name).value_or("none");
    EXPECT_EQ(staged.substr(0, start.size()), start);
    EXPECT_EQ(staged.find_first_not_of("0123456789", start.size()), std::string::npos) << staged;
  }
  const std::string whole(200, 'a');
  EXPECT_EQ(stageCopy(folder / "from", folder / whole), folder / (".incoming-" + whole));
}

TEST_F(FileTree, ALongNameThatIsNoTextIsCopied) {
  folder.write("from", "x");
  const std::string name(250, '\x80');
  EXPECT_TRUE(copyTree(folder / "from", folder / name));
  EXPECT_EQ(folder.read(name), "x");
}

TEST_F(FileTree, AStagedCopyIsSeenOnceItIsPublished) {
  folder.write("from", "x");
  const auto staged = stageCopy(folder / "from", folder / "to");
  ASSERT_TRUE(staged);
  EXPECT_FALSE(exists(folder / "to"));
  EXPECT_TRUE(publishCopy(*staged, folder / "to"));
  EXPECT_EQ(folder.read("to"), "x");
  EXPECT_EQ(folder.names(), (Names{"from", "to"}));
}

TEST_F(FileTree, AStagedCopyWhosePlaceIsTakenGoes) {
  folder.write("from", "x");
  const auto staged = stageCopy(folder / "from", folder / "to");
  ASSERT_TRUE(staged);
  folder.write("to", "someone else's");
  EXPECT_FALSE(publishCopy(*staged, folder / "to"));
  EXPECT_EQ(folder.read("to"), "someone else's");
  EXPECT_EQ(folder.names(), (Names{"from", "to"}));
}

TEST_F(FileTree, AFolderIsNotCopiedIntoItself) {
  folder.write("from/inside/file", "x");
  EXPECT_FALSE(copyTree(folder / "from", folder / "from/inside/to"));
  EXPECT_EQ(folder.names("from/inside"), Names{"file"});
}

TEST_F(FileTree, ADeepTreeIsCopiedAndRemoved) {
  std::string path = folder / "from";
  for (int i = 0; i < 700; ++i) path += "/d";
  fs::create_directories(path);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(exists((folder / "to") + path.substr((folder / "from").size())));
  EXPECT_TRUE(removeTree(folder / "from"));
  EXPECT_EQ(folder.names(), Names{"to"});
}

// Every file of the tree, its text and whether it may be executed.
std::string described(const std::string& root) {
  std::string text;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) text += std::to_string(entry.file_size()) + ' ';
  }
  return text + std::to_string(static_cast<int>(fs::status(root).permissions()));
}

TEST_F(FileTree, KilledAnywhereACopyIsThereWholeOrNotAtAll) {
  folder.write("from/a", "12345");
  folder.write("from/deep/b", "1234567");
  ::chmod((folder / "from").c_str(), 0750);
  const std::string whole = described(folder / "from");
  bool sawNone = false;
  bool killed = true;
  for (int n = 1; killed; ++n) {
    fs::remove_all(folder / "to");
    killed =
        kelvane::test::killedBeforeSystemCall(n, [&] { copyTree(folder / "from", folder / "to"); });
    if (exists(folder / "to")) {
      ASSERT_EQ(described(folder / "to"), whole) << "killed before system call " << n;
    } else {
      sawNone = true;
    }
    ASSERT_FALSE(killed && n > 500);
  }
  EXPECT_TRUE(sawNone);
  EXPECT_EQ(folder.names(), (Names{"from", "to"}));  // nothing of the kills is left either
}

TEST_F(FileTree, KilledAnywhereWhatIsDiscardedIsThereWholeOrNotAtAll) {
  bool sawWhole = false;
  bool killed = true;
  for (int n = 1; killed; ++n) {
    folder.write("to/a", "12345");
    folder.write("to/deep/b", "1234567");
    const std::string whole = described(folder / "to");
    killed = kelvane::test::killedBeforeSystemCall(n, [&] { discardTree(folder / "to"); });
    if (exists(folder / "to")) {
      ASSERT_EQ(described(folder / "to"), whole) << "killed before system call " << n;
      sawWhole = true;
    }
    ASSERT_FALSE(killed && n > 500);
  }
  EXPECT_TRUE(sawWhole);
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(FileTree, AFolderMayBeNamedFromInside) {
  for (const char* spelling : {"gone/.", "gone/./", "gone/sub/..", "gone/sub/../.", "gone//"}) {
    folder.write("gone/sub/inside", "x");
    EXPECT_TRUE(removeTree(folder / spelling)) << spelling;
    EXPECT_TRUE(folder.names().empty()) << spelling;
  }
}

TEST_F(FileTree, WhatIsNotThereIsRemovedAlready) {
  EXPECT_TRUE(removeTree(folder / "missing"));
  EXPECT_TRUE(removeTree(folder / "missing/.."));
  EXPECT_TRUE(removeTree(folder.write("file", "x") + "/below"));
  EXPECT_EQ(folder.read("file"), "x");
  EXPECT_TRUE(discardTree(folder / "missing"));
}

TEST_F(FileTree, WhatIsNotThereOrNeitherFileNorFolderIsNotCopied) {
  EXPECT_FALSE(copyTree(folder / "missing", folder / "to"));
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_FALSE(copyTree(folder / "fifo", folder / "to"));
  EXPECT_FALSE(exists(folder / "to"));
}

}  // namespace
}  // namespace kelvane::platform
