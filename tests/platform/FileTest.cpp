#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "tests/support/FullFile.h"
#include "tests/support/SystemCallKiller.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

void appendToFile(const std::string& path, const std::vector<std::string_view>& pieces) {
  FileEnd end(path);
  if (end.isOpen()) end.append(pieces);
}

using Names = std::vector<std::string>;

class File : public ::testing::Test {
 protected:
  kelvane::test::TempFolder folder;

  static std::string secondDisk() {
    return std::filesystem::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/";
  }

  mode_t permissions(const std::string& name) const {
    struct stat entry = {};
    EXPECT_EQ(::stat((folder / name).c_str(), &entry), 0);
    return entry.st_mode & 07777;
  }

  template <typename Action>
  static std::string reasonOf(Action action) {
    try {
      action();
    } catch (const Exception& raised) {
      return raised.what();
    }
    return "nothing was raised";
  }

  void makeSocket(const std::string& name) const {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (folder / name).copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(socket);
  }
};

TEST_F(File, ExistenceFollowsLinks) {
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

TEST_F(File, ReadsAWholeFileOfAnyBytes) {
  const std::string bytes = std::string("a\0\xFF", 3) + std::string(200'000, 'x');
  EXPECT_EQ(readFile(folder.write("file", bytes)), bytes);
  EXPECT_EQ(readFile(folder.write("empty", "")), "");
}

TEST_F(File, ReadingWhatIsNotThereTellsPathAndCause) {
  EXPECT_EQ(reasonOf([&] { readFile(folder / "missing"); }),
            "open " + (folder / "missing") + ": No such file or directory");
}

TEST_F(File, ReadingAFolderTellsPathAndCause) {
  EXPECT_EQ(reasonOf([&] { readFile(folder.path()); }),
            "read " + folder.path() + ": Is a directory");
}

// Each is at once what it is: nobody waits for the other end of a pipe.
TEST_F(File, OnlyARegularFileIsRead) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  std::filesystem::create_symlink("fifo", folder / "link");
  for (const std::string& path : {folder / "fifo", folder / "link", std::string("/dev/zero")}) {
    EXPECT_EQ(reasonOf([&] { readFile(path); }), "open " + path + ": not a regular file");
  }
  makeSocket("socket");
  EXPECT_EQ(reasonOf([&] { readFile(folder / "socket"); }),
            "open " + (folder / "socket") + ": No such device or address");
}

TEST_F(File, ARegularFileIsReadThroughLinks) {
  folder.write("real/file", "x");
  std::filesystem::create_symlink("real/file", folder / "link");
  std::filesystem::create_symlink("link", folder / "link2");
  EXPECT_EQ(readFile(folder / "link2"), "x");
}

TEST_F(File, WhatIsKnownIsNotReadInto) {
  const std::string large(700'000, 'a');
  for (const std::string& bytes : {std::string(), std::string("x"), large}) {
    folder.write("file", bytes);
    EXPECT_EQ(readFileUnlessKnown(folder / "file", bytes), std::nullopt) << bytes.size();
  }
}

TEST_F(File, WhatDiffersFromTheKnownBytesIsReadWhole) {
  const std::string large(700'000, 'a');
  for (const std::size_t at : {0U, 262'143U, 262'144U, 524'288U, 699'999U}) {
    std::string bytes = large;
    bytes.at(at) = 'b';
    folder.write("file", bytes);
    EXPECT_EQ(readFileUnlessKnown(folder / "file", large), bytes) << at;
  }
}

TEST_F(File, OfAnotherSizeThanTheKnownBytesIsReadWhole) {
  const std::string large(700'000, 'a');
  for (const std::string& bytes :
       {std::string(), std::string("a"), large + "a", std::string(1'400'000, 'a')}) {
    folder.write("file", bytes);
    EXPECT_EQ(readFileUnlessKnown(folder / "file", large), bytes) << bytes.size();
  }
}

// Such a file says that it is empty.
TEST_F(File, WhatIsLongerThanItsSizeSaysIsReadWhole) {
  const std::optional<std::string> name = readFileUnlessKnown("/proc/self/comm", "");
  EXPECT_EQ(name, readFile("/proc/self/comm"));
  EXPECT_EQ(name, "platform_tests\n");
}

TEST_F(File, WhatIsFarLongerThanItsSizeSaysIsReadWhole) {
  std::ifstream file("/proc/filesystems");
  const std::string whole{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(readFile("/proc/filesystems"), whole);
}

TEST_F(File, WhatIsNoRegularFileIsNeverReplaced) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  makeSocket("socket");
  for (const char* name : {"fifo", "socket"}) {
    EXPECT_FALSE(replaceFile(folder / name, "new")) << name;
    EXPECT_FALSE(std::filesystem::is_regular_file(folder / name)) << name;
  }
  EXPECT_EQ(folder.names(), (Names{"fifo", "socket"}));
}

// The system would take each of these paths for the part before the NUL character.
TEST_F(File, APathThatHoldsANulCharacterExistsNowhere) {
  folder.write("file", "x");
  folder.write("folder/inside", "x");
  const std::string file = (folder / "file") + std::string("\0y", 2);
  const std::string inside = (folder / "folder") + std::string("\0", 1);
  const std::string fresh = (folder / "fresh") + std::string("\0", 1);
  EXPECT_FALSE(canBePath(file));
  EXPECT_TRUE(canBePath(folder / "file"));
  EXPECT_FALSE(exists(file));
  EXPECT_FALSE(isFolder(inside));
  EXPECT_EQ(fileSize(file), 0U);
  EXPECT_TRUE(listFolder(inside).empty());
  EXPECT_EQ(reasonOf([&] { readFile(file); }).rfind("open ", 0), 0U);
  EXPECT_FALSE(replaceFile(file, "new"));
  appendToFile(file, {"more"});
  EXPECT_FALSE(makeFolders(fresh));
  EXPECT_FALSE(createEmptyFile(file));
  EXPECT_FALSE(renamePath(file, folder / "b"));
  EXPECT_FALSE(movePath(folder / "file", fresh));
  EXPECT_FALSE(copyTree(file, folder / "b"));
  EXPECT_FALSE(copyTree(folder / "file", fresh));
  EXPECT_FALSE(removeTree(inside));
  EXPECT_FALSE(discardTree(inside));
  EXPECT_FALSE(synchroniseTree(inside));
  EXPECT_FALSE(synchroniseFolder(inside));
  EXPECT_EQ(folder.names(), (Names{"file", "folder"}));
  EXPECT_EQ(folder.names("folder"), Names{"inside"});
  EXPECT_EQ(folder.read("file"), "x");
}

TEST_F(File, WhatIsThereCanBeMadeToLast) {
  folder.write("folder/inside", "x");
  EXPECT_TRUE(synchroniseTree(folder / "folder"));
  EXPECT_TRUE(synchroniseTree(folder / "folder/inside"));
  EXPECT_TRUE(synchroniseFolder(folder / "folder"));
  EXPECT_FALSE(synchroniseTree(folder / "missing"));
  EXPECT_FALSE(synchroniseFolder(folder / "folder/inside"));
}

// Nobody waits for the other end of a pipe.
TEST_F(File, APipeIsMadeToLastAtOnce) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_TRUE(synchroniseTree(folder / "fifo"));
}

TEST_F(File, ReplacesAndLeavesNothingBeside) {
  folder.write("file", "old");
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST_F(File, ARefusedReplacementLeavesTheOldFileAndNothingBeside) {
  folder.write("file", "old");
  std::string seen;
  EXPECT_FALSE(replaceFile(folder / "file", "new", [&] {
    seen = folder.read("file");
    return false;
  }));
  EXPECT_EQ(seen, "old");
  EXPECT_EQ(folder.read("file"), "old");
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST_F(File, TheNewFileStandsBesideTheOldUnderAHiddenName) {
  folder.write("file", "old");
  Names seen;
  EXPECT_TRUE(replaceFile(folder / "file", "new", [&] {
    seen = folder.names();
    return true;
  }));
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0].substr(0, seen[0].size() - 6), kReplacementPrefix);
  EXPECT_EQ(seen[1], "file");
}

TEST_F(File, NobodyIsAskedOfAFileThatCannotBeReplaced) {
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  for (const std::string& path : {folder / "a", (folder / "file") + std::string("\0y", 2)}) {
    bool isAsked = false;
    EXPECT_FALSE(replaceFile(path, "new", [&] {
      isAsked = true;
      return true;
    }));
    EXPECT_FALSE(isAsked) << path;
  }
}

TEST_F(File, MakesAFileThatIsNotThereWithDefaultPermissions) {
  const mode_t mask = ::umask(027);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  ::umask(mask);
  EXPECT_EQ(folder.read("file"), "new");
  EXPECT_EQ(permissions("file"), 0640U);
}

TEST_F(File, ANewFileIsWritableByTheGroupWhereNewFilesAre) {
  const mode_t mask = ::umask(002);
  EXPECT_TRUE(replaceFile(folder / "replaced", "new"));
  EXPECT_TRUE(createEmptyFile(folder / "empty"));
  ::umask(mask);
  EXPECT_EQ(permissions("replaced"), 0664U);
  EXPECT_EQ(permissions("empty"), 0664U);
}

TEST_F(File, TheProcesssDefaultPermissionsStayAsTheyWere) {
  const mode_t mask = ::umask(027);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(::umask(mask), 027U);
}

TEST_F(File, KeepsTheBitsOfTheOldFileBesideThoseOfReadingAndWriting) {
  ASSERT_EQ(::chmod(folder.write("file", "old").c_str(), 07640), 0);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(permissions("file"), 07640U);
}

TEST_F(File, KeepsThePermissionBitsOfTheOldFile) {
  ::chmod(folder.write("file", "old").c_str(), 0604);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(permissions("file"), 0604U);
}

TEST_F(File, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
  folder.write("real/file", "old");
  std::filesystem::create_symlink("real/file", folder / "link");
  std::filesystem::create_symlink(folder / "link", folder / "link2");
  EXPECT_TRUE(replaceFile(folder / "link2", "new"));
  EXPECT_EQ(folder.read("real/file"), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link2"));
  EXPECT_EQ(folder.names("real"), Names{"file"});
}

TEST_F(File, AChainOfLinksIsFollowedAsFarAsTheSystemFollowsIt) {
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

TEST_F(File, ANameAsLongAsNamesCanBeIsReplaced) {
  const std::string name(255, 'n');
  folder.write(name, "old");
  EXPECT_TRUE(replaceFile(folder / name, "new"));
  EXPECT_EQ(folder.read(name), "new");
}

// Only root may give a file away; without it the owner is the same to begin with.
TEST_F(File, KeepsOwnerAndGroupOfTheOldFileWhereAllowed) {
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

TEST_F(File, KeepsAnotherOwnerOfTheSameGroup) {
  const uid_t owner = ::geteuid() == 0 ? 12 : ::geteuid();
  folder.write("file", "old");
  ASSERT_EQ(::chown((folder / "file").c_str(), owner, ::getegid()), 0);
  EXPECT_TRUE(replaceFile(folder / "file", "new"));
  struct stat after = {};
  ASSERT_EQ(::stat((folder / "file").c_str(), &after), 0);
  EXPECT_EQ(after.st_uid, owner);
  EXPECT_EQ(after.st_gid, ::getegid());
}

TEST_F(File, KeepsTheGroupInAFolderThatHandsDownItsOwn) {
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

TEST_F(File, LinksInACircleAreNotReplaced) {
  std::filesystem::create_symlink("b", folder / "a");
  std::filesystem::create_symlink("a", folder / "b");
  EXPECT_FALSE(replaceFile(folder / "a", "new"));
  EXPECT_EQ(folder.names(), (Names{"a", "b"}));
}

TEST_F(File, AFolderInThePlaceIsLeftAloneAndNoTemporaryFileStays) {
  folder.write("place/inside", "x");
  EXPECT_FALSE(replaceFile(folder / "place", "new"));
  EXPECT_EQ(folder.names(), Names{"place"});
  EXPECT_EQ(folder.read("place/inside"), "x");
}

TEST_F(File, AMissingFolderMakesTheReplacementFail) {
  EXPECT_FALSE(replaceFile(folder / "no/file", "new"));
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(File, AFullDiskLeavesTheOldFileAndNoTemporaryFile) {
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

TEST_F(File, ACrashAtAnySystemCallLeavesTheOldFileOrTheNewOne) {
  const std::string oldBytes(3000, 'o');
  const std::string newBytes(70000, 'n');
  bool sawOld = false;
  bool sawNew = false;
  int n = 1;
  for (;; ++n) {
    folder.write("file", oldBytes);
    const bool killed =
        kelvane::test::killedBeforeSystemCall(n, [&] { replaceFile(folder / "file", newBytes); });
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

TEST_F(File, AppendsAtTheEnd) {
  folder.write("file", "one\n");
  appendToFile(folder / "file", {"two", "", "\n"});
  EXPECT_EQ(folder.read("file"), "one\ntwo\n");
}

TEST_F(File, AppendingNeverMakesAFile) {
  appendToFile(folder / "missing", {"x"});
  appendToFile(folder.path(), {"x"});
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(File, AppendsMorePiecesThanTheSystemTakesAtOnce) {
  folder.write("file", "");
  std::vector<std::string_view> pieces;
  std::string all;
  for (int i = 0; i < 3000; ++i) {
    pieces.emplace_back(i % 3 == 0 ? "" : "ab");
    all += pieces.back();
  }
  appendToFile(folder / "file", pieces);
  EXPECT_EQ(folder.read("file"), all);
}

TEST_F(File, AppendsAsMuchAsThereIsRoomForAndThenRaises) {
  const kelvane::test::FullFile full;
  std::filesystem::resize_file(full.path(), std::filesystem::file_size(full.path()) - 7);
  EXPECT_THROW(appendToFile(full.path(), {"one", "two", "three"}), Exception);
  const std::string bytes = readFile(full.path());
  EXPECT_EQ(bytes.substr(bytes.size() - 7), "onetwot");
}

// Of the process's open files the one at this path; -1 where there is none.
int openAt(const std::string& path) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code closed;
    if (std::filesystem::read_symlink(entry, closed) == path) {
      return std::stoi(entry.path().filename().string());
    }
  }
  return -1;
}

TEST_F(File, WhatIsOpenIsNoneOfAnotherProgramsFiles) {
  const FileEnd end(folder.write("file", ""));
  const int number = openAt(folder / "file");
  ASSERT_GE(number, 0);
  EXPECT_EQ(::fcntl(number, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(File, NoTerminalBecomesTheProcesssOwn) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(::grantpt(terminal), 0);
  ASSERT_EQ(::unlockpt(terminal), 0);
  const std::string path = ::ptsname(terminal);
  const pid_t process = ::fork();
  if (process == 0) {
    ::setsid();
    const FileEnd end(path);
    ::_exit(::open("/dev/tty", O_RDWR | O_NOCTTY) >= 0 ? 1 : 0);
  }
  int status = -1;
  ::waitpid(process, &status, 0);
  ::close(terminal);
  EXPECT_EQ(status, 0);
}

TEST_F(File, OnlyARegularFileIsAppendedTo) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  appendToFile(folder / "fifo", {"nobody listens"});
  const int reader = ::open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK);
  appendToFile(folder / "fifo", {"x"});
  char byte = 0;
  EXPECT_LE(::read(reader, &byte, 1), 0);
  ::close(reader);
  EXPECT_NO_THROW(appendToFile("/dev/full", {"x"}));
}

TEST_F(File, AFailingAppendTellsPathAndCause) {
  const kelvane::test::FullFile full;
  EXPECT_EQ(reasonOf([&] { appendToFile(full.path(), {"x"}); }),
            "write " + full.path() + ": File too large");
  EXPECT_EQ(reasonOf([&] { FileEnd(full.path()).append("x"); }),
            "write " + full.path() + ": File too large");
}

TEST_F(File, KnowsFoldersAndSizes) {
  folder.write("inside/file", "12345");
  EXPECT_TRUE(isFolder(folder / "inside"));
  EXPECT_FALSE(isFolder(folder / "inside/file"));
  EXPECT_FALSE(isFolder(folder / "missing"));
  EXPECT_FALSE(isFolder((folder / "inside") + std::string("\0x", 2)));
  EXPECT_EQ(fileSize((folder / "inside/file") + std::string("\0x", 2)), 0U);
  EXPECT_EQ(fileSize(folder / "inside/file"), 5U);
  EXPECT_EQ(fileSize(folder / "missing"), 0U);
}

TEST_F(File, TheSizeIsThatOfWhatALinkLeadsTo) {
  folder.write("file", std::string(1000, 'x'));
  std::filesystem::create_symlink("file", folder / "link");
  EXPECT_EQ(fileSize(folder / "link"), 1000U);
}

TEST_F(File, MovesAFile) {
  folder.write("a", "x");
  EXPECT_TRUE(movePath(folder / "a", folder / "b"));
  EXPECT_EQ(folder.names(), Names{"b"});
  EXPECT_FALSE(movePath(folder / "missing", folder / "c"));
  EXPECT_EQ(folder.names(), Names{"b"});
}

TEST_F(File, AMoveReplacesAFile) {
  folder.write("a", "new");
  folder.write("b", "old");
  EXPECT_TRUE(movePath(folder / "a", folder / "b"));
  EXPECT_EQ(folder.names(), Names{"b"});
  EXPECT_EQ(folder.read("b"), "new");
}

TEST_F(File, AMoveThatFailsLeavesBothWhereTheyWere) {
  folder.write("file", "x");
  folder.write("full/inside", "y");
  EXPECT_FALSE(movePath(folder / "file", folder / "full"));
  EXPECT_FALSE(movePath(folder / "file", folder / "no/file"));
  EXPECT_EQ(folder.read("file"), "x");
  EXPECT_EQ(folder.read("full/inside"), "y");
}

// Where there is no second disk these are moves like any other.
TEST_F(File, MovesAWholeFolderToAnotherDisk) {
  const kelvane::test::TempFolder other("", secondDisk());
  other.write("from/deep/file", "x");
  EXPECT_TRUE(movePath(other / "from", folder / "to"));
  EXPECT_EQ(folder.read("to/deep/file"), "x");
  EXPECT_TRUE(other.names().empty());
}

TEST_F(File, AMoveToAnotherDiskThatFailsLeavesTheFileWhereItWas) {
  const kelvane::test::TempFolder other("", secondDisk());
  other.write("from", "x");
  folder.write("full/inside", "y");
  EXPECT_FALSE(movePath(other / "from", folder / "full"));
  EXPECT_FALSE(movePath(other / "from", folder / "no/file"));
  EXPECT_EQ(other.read("from"), "x");
  EXPECT_EQ(folder.read("full/inside"), "y");
}

TEST_F(File, MakesOrEmptiesAFile) {
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
  EXPECT_EQ(withoutLastComponent("A/"), "");
  EXPECT_EQ(withoutLastComponent(""), "");
}

}  // namespace
}  // namespace kelvane::platform
