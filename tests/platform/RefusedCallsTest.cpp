// What becomes of files and folders where the system refuses a call that it hardly ever does.

#include <cerrno>
#include <climits>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Descriptor.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Host.h"
#include "tests/platform/RefusedCalls.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

namespace fs = std::filesystem;

using kelvane::test::RefusedCall;
using kelvane::test::ToldKinds;
using Names = std::vector<std::string>;

class Refused : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& bytes = "x") const {
    return folder.write(name, bytes);
  }
  // The current folder for the time of the action.
  template <typename Action>
  void inFolder(Action action) const {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    action();
    fs::current_path(before);
  }

  kelvane::test::TempFolder folder;
};

// --- files

TEST_F(Refused, AFileThatCannotBeLookedAtIsNotRead) {
  const std::string path = write("file");
  const RefusedCall refused("fstat", 1, EIO);
  try {
    readFile(path);
    ADD_FAILURE() << "nothing was raised";
  } catch (const Exception& raised) {
    EXPECT_EQ(std::string(raised.what()), "open " + path + ": Input/output error");
  }
}

TEST_F(Refused, AFileThatCannotBeLookedAtIsNotAppendedTo) {
  const std::string path = write("file");
  const RefusedCall refused("fstat", 1, EIO);
  EXPECT_FALSE(FileEnd(path).isOpen());
}

// The system tells of bytes that it has taken, and takes them from nowhere here.
TEST_F(Refused, AppendingGoesOnBehindWhatTheSystemTook) {
  const std::pair<long, const char*> cases[] = {{0, "abcdefghi"}, {2, "cdefghi"}, {6, "ghi"},
                                                {7, "hi"},        {8, "i"},       {9, ""}};
  for (const auto& [taken, rest] : cases) {
    const std::string path = write("file", "");
    const RefusedCall tookSome("writev", 1, 0, taken);
    FileEnd(path).append(std::vector<std::string_view>{"abcdef", "ghi"});
    EXPECT_EQ(folder.read("file"), rest) << taken;
  }
}

TEST_F(Refused, AKnownFileThatEndsEarlyIsReadAnew) {
  const std::string path = write("file", "12345");
  const RefusedCall ended("read", 1, 0);
  EXPECT_EQ(readFileUnlessKnown(path, "12345"), "12345");
  EXPECT_TRUE(ended.wasMade());
}

TEST_F(Refused, AFileWhoseClosingFailsIsNotMade) {
  const RefusedCall refused("close", 1, EIO);
  EXPECT_FALSE(createEmptyFile(folder / "file"));
}

TEST_F(Refused, AnInterruptedClosingIsAClosing) {
  const RefusedCall refused("close", 1, EINTR);
  EXPECT_TRUE(createEmptyFile(folder / "file"));
  EXPECT_TRUE(refused.wasMade());
}

TEST_F(Refused, AFileWhoseOldOneCannotBeLookedAtIsNotReplaced) {
  const std::string path = write("file", "old");
  const RefusedCall refused("stat", 1, EIO);
  EXPECT_FALSE(replaceFile(path, "new"));
  EXPECT_EQ(folder.read("file"), "old");
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST_F(Refused, ANewFileThatCannotHaveItsPermissionsIsNotMade) {
  const RefusedCall refused("fchmod", 1, EPERM);
  EXPECT_FALSE(replaceFile(folder / "file", "new"));
  EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Refused, ANameAloneStandsInTheCurrentFolder) {
  inFolder([] { EXPECT_TRUE(replaceFile("file", "new")); });
  EXPECT_EQ(folder.read("file"), "new");
}

TEST_F(Refused, AMoveToAnotherDiskWhoseSourceStaysHasFailed) {
  const kelvane::test::TempFolder other("", fs::is_directory("/dev/shm") ? "/dev/shm/" : "/tmp/");
  const std::string path = write("file");
  const RefusedCall refused("unlinkat", 1, EBUSY);
  EXPECT_FALSE(movePath(path, other / "file"));
  EXPECT_EQ(folder.names(), Names{"file"});
}

TEST(Descriptor, IsItselfAfterAnAssignmentToItself) {
  Descriptor file(::open("/dev/null", O_RDONLY));
  const int number = file.number();
  Descriptor& same = file;
  file = std::move(same);
  EXPECT_EQ(file.number(), number);
  EXPECT_TRUE(file.close());
  EXPECT_TRUE(file.close());
}

TEST(Descriptor, KnowsAndClosesAFileOfTheNumberZero) {
  EXPECT_EXIT(
      {
        ::close(STDIN_FILENO);
        bool isZeroOpen = false;
        {
          const Descriptor file(::open("/dev/null", O_RDONLY));
          isZeroOpen = file.isOpen() && file.number() == 0;
        }
        ::_exit(isZeroOpen && ::fcntl(0, F_GETFD) == -1 ? 7 : 1);
      },
      ::testing::ExitedWithCode(7), "");
}

// --- removing

TEST_F(Refused, WhatCannotBeRemovedStays) {
  write("tree/file");
  const RefusedCall refused("unlinkat", 1, EBUSY);
  EXPECT_FALSE(removeTree(folder / "tree"));
  EXPECT_EQ(folder.names("tree"), Names{"file"});
}

// What an earlier attempt left stands in the way of the hidden name.
TEST_F(Refused, WhatCannotBeHiddenIsRemovedWhereItStands) {
  const std::string left = kLeavingPrefix + std::string("tree");
  write(left + "/file");
  write("tree/file");
  const RefusedCall refused("unlinkat", 1, EBUSY);
  EXPECT_TRUE(discardTree(folder / "tree"));
  EXPECT_TRUE(refused.wasMade());
  EXPECT_EQ(folder.names(), Names{left});
}

TEST_F(Refused, WhatSomeoneElseRemovesMeanwhileIsRemoved) {
  write("file");
  const RefusedCall gone("unlinkat", 1, ENOENT);
  EXPECT_TRUE(removeTree(folder / "file"));
  EXPECT_TRUE(gone.wasMade());
}

TEST_F(Refused, AFolderThatCannotBeOpenedIsNotRemoved) {
  write("tree/file");
  const RefusedCall refused("openat", 1, EACCES);
  EXPECT_FALSE(removeTree(folder / "tree"));
  EXPECT_EQ(folder.names("tree"), Names{"file"});
}

TEST_F(Refused, WhatTheSystemDoesNotTellOfIsNotTakenForRemoved) {
  EXPECT_FALSE(removeTree(folder / std::string(NAME_MAX + 1, 'a')));
}

TEST_F(Refused, ANameOfOneCharacterIsRemoved) {
  write("a");
  inFolder([] { EXPECT_TRUE(removeTree("a")); });
  EXPECT_EQ(folder.names(), Names{});
}

TEST_F(Refused, ASlashBehindANameOfOneCharacterDoesNotLeadThroughALink) {
  write("kept/inside");
  fs::create_directory_symlink("kept", folder / "a");
  inFolder([] { EXPECT_TRUE(removeTree("a/")); });
  EXPECT_EQ(folder.names(), Names{"kept"});
  EXPECT_EQ(folder.names("kept"), Names{"inside"});
}

// A link has taken the folder's place since the folder above told of it.
TEST_F(Refused, WhatALinkInAFoldersPlaceLeadsToStays) {
  fs::create_directories(folder / "kept/inside");
  fs::create_directory(folder / "tree");
  fs::create_directory_symlink("../kept", folder / "tree/link");
  const ToldKinds told(DT_DIR);
  removeTree(folder / "tree");
  EXPECT_EQ(folder.names("kept"), Names{"inside"});
}

// --- copying

TEST_F(Refused, ATreeThatCannotBeCopiedWholeIsNotThere) {
  write("from/file");
  fs::create_symlink("file", folder / "from/link");
  const std::pair<const char*, int> calls[] = {{"openat", 1},  {"fstat", 1},      {"openat", 2},
                                               {"fstat", 2},   {"fdopendir", 1},  {"readdir", 1},
                                               {"readdir", 3}, {"readlinkat", 1}, {"openat", 3},
                                               {"openat", 4},  {"symlinkat", 1},  {"fstat", 3}};
  for (const auto& [function, n] : calls) {
    const RefusedCall refused(function, n, EIO);
    EXPECT_FALSE(copyTree(folder / "from", folder / "to")) << function << n;
    EXPECT_EQ(folder.names(), Names{"from"}) << function << n;
  }
}

TEST_F(Refused, AnEmptyFileWhoseCopyCannotBeMadeIsNotCopied) {
  write("from/file", "");
  const RefusedCall refused("openat", 4, EIO);
  EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(refused.wasMade());
  EXPECT_EQ(folder.names(), Names{"from"});
}

TEST_F(Refused, AFileWhoseCopyCannotBeClosedIsNotThere) {
  write("from");
  const RefusedCall refused("close", 1, EIO);
  EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.names(), Names{"from"});
}

TEST_F(Refused, AnInterruptedListingGoesOn) {
  write("from/a");
  write("from/b");
  for (int n = 1; n <= 5; ++n) {
    const RefusedCall refused("readdir", n, EINTR);
    EXPECT_TRUE(copyTree(folder / "from", folder / "to")) << n;
    EXPECT_EQ(folder.names("to"), (Names{"a", "b"})) << n;
    EXPECT_TRUE(refused.wasMade()) << n;
    removeTree(folder / "to");
  }
}

TEST_F(Refused, WhereAFolderDoesNotTellWhatItsEntriesAreTheyAreAsked) {
  write("from/folder/file");
  fs::create_symlink("folder", folder / "from/link");
  const ToldKinds untold(DT_UNKNOWN);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(folder.read("to/folder/file"), "x");
  EXPECT_TRUE(fs::is_symlink(folder / "to/link"));
}

TEST_F(Refused, WhatALinkInAnEntrysPlaceLeadsToIsNotCopied) {
  write("kept/inside");
  const std::pair<unsigned char, const char*> cases[] = {{DT_REG, "kept/inside"}, {DT_DIR, "kept"}};
  for (const auto& [kind, target] : cases) {
    const std::string from = folder / ("from" + std::to_string(kind));
    fs::create_directory(from);
    fs::create_symlink(folder / target, from + "/link");
    const ToldKinds told(kind);
    EXPECT_FALSE(copyTree(from, folder / "to")) << target;
    EXPECT_FALSE(exists(folder / "to")) << target;
  }
}

TEST_F(Refused, WhereTheDiskTakesNoPermissionsACopyIsItsOwnersAlone) {
  write("from");
  const RefusedCall refused("fchmod", 1, EPERM);
  const mode_t mask = ::umask(0);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  ::umask(mask);
  EXPECT_TRUE(refused.wasMade());
  EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "to").permissions()), 0600U);
}

TEST_F(Refused, WhatAnEarlierAttemptLeftAndCannotBeRemovedIsNoPartOfACopy) {
  write("from/file");
  write(".incoming-to/part");
  const RefusedCall refused("unlinkat", 1, EBUSY);
  EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(refused.wasMade());
  EXPECT_FALSE(exists(folder / "to"));
}

// Where it did not stop, it would open folder after folder.
TEST_F(Refused, AFolderThatIsCopiedIntoItselfIsSeenWhereItMeetsItself) {
  write("from/inside/file");
  const RefusedCall later("openat", 40, EIO);
  EXPECT_FALSE(copyTree(folder / "from", folder / "from/inside/to"));
  EXPECT_FALSE(later.wasMade());
}

TEST_F(Refused, ALinkThatLeadsFurtherThanPathsCanIsNotCopied) {
  fs::create_symlink("file", folder / "link");
  const RefusedCall refused("readlinkat", 1, 0, PATH_MAX);
  EXPECT_FALSE(copyTree(folder / "link", folder / "to"));
  EXPECT_TRUE(refused.wasMade());
}

TEST_F(Refused, ASmallFileThatCannotBeReadOrWrittenIsNotCopied) {
  write("from", "12345");
  for (const char* function : {"read", "write"}) {
    const RefusedCall refused(function, 1, ENOSPC);
    EXPECT_FALSE(copyTree(folder / "from", folder / "to")) << function;
    EXPECT_EQ(folder.names(), Names{"from"}) << function;
  }
}

TEST_F(Refused, ASmallFileThatEndsEarlyIsNotCopied) {
  write("from", "12345");
  const RefusedCall ended("read", 1, 0);
  EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
}

TEST_F(Refused, ALargeFileThatEndsEarlyIsNotCopied) {
  write("from", std::string(100'000, 'x'));
  const RefusedCall ended("copy_file_range", 1, 0);
  EXPECT_FALSE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(ended.wasMade());
}

TEST_F(Refused, ALargeFileThatCannotBeReadAnywhereIsNotCopied) {
  write("from", std::string(100'000, 'x'));
  for (const int place : {3, 4}) {  // behind the questions for data and hole
    const RefusedCall refused("lseek", place, EIO);
    EXPECT_FALSE(copyTree(folder / "from", folder / "to")) << place;
    EXPECT_EQ(folder.names(), Names{"from"}) << place;
  }
}

TEST_F(Refused, WhereTheDiskDoesNotTellOfHolesAllIsCopied) {
  const std::string bytes(100'000, 'x');
  write("from", bytes);
  const RefusedCall data("lseek", 1, EINVAL);
  const RefusedCall hole("lseek", 1, EINVAL);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(data.wasMade() && hole.wasMade());
  EXPECT_EQ(folder.read("to"), bytes);
}

TEST_F(Refused, WhereTheDiskDoesNotShareTheBytesAreSent) {
  const std::string bytes(100'000, 'x');
  write("from", bytes);
  const RefusedCall shared("copy_file_range", 1, EXDEV);
  EXPECT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(shared.wasMade());
  EXPECT_EQ(folder.read("to"), bytes);
}

TEST_F(Refused, ALargeFileThatCannotBeSentIsNotCopied) {
  write("from", std::string(100'000, 'x'));
  for (const int cause : {EIO, 0}) {  // 0: the file has become shorter
    const RefusedCall shared("copy_file_range", 1, EXDEV);
    const RefusedCall sent("sendfile", 1, cause);
    EXPECT_FALSE(copyTree(folder / "from", folder / "to")) << cause;
    EXPECT_EQ(folder.names(), Names{"from"}) << cause;
  }
}

// --- the host

TEST(RefusedHost, ASystemThatDoesNotTellItsVersionHasNone) {
  const RefusedCall refused("uname", 1, EFAULT);
  EXPECT_EQ(SystemHost().systemVersion(), (SystemVersion{0, 0, 0}));
}

}  // namespace
}  // namespace kelvane::platform
