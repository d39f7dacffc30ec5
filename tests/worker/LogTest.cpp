#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "log/iLog.h"
#include "platform/Exception.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FullFile.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane {
namespace {

// As they were before anyone set them.
const std::array<std::uint8_t, 5> kFirstSwitches = {iLog_enable_debug, iLog_enable_info,
                                                    iLog_enable_warning, iLog_enable_error,
                                                    iLog_enable_critical};

class Log : public ::testing::Test {
 protected:
  Log() {
    iLog_host = &host;
    folder.write("log.txt", "");
    setLogPath((folder / "log.txt").c_str());
  }
  ~Log() override {
    setLogPath("");
    iLog_host = nullptr;
    iLog_enable_debug = iLog_enable_info = iLog_enable_warning = 1;
    iLog_enable_error = iLog_enable_critical = 1;
  }

  void tell(int level) { iLog_tell(level, "f", 1, "-[Kelvane run:]", "text"); }
  std::string written() const { return folder.read("log.txt"); }

  test::TempFolder folder;
  test::FakeHost host;
};

std::string cut(const char* function) {
  std::string name = "left over";
  EXPECT_EQ(_base_function_name(function, name), 1);
  return name;
}

TEST_F(Log, ALineHasItsFieldsInOrder) {
  iLog_tell(0, "/a/b/JobRunner.cpp", 120, "-[Kelvane run:]", "count = %d, %@", 3,
            platform::Value("x"));
  EXPECT_EQ(written(), "[14:03:07] [JobRunner.cpp][120][run][debug] count = 3, x\n");
}

TEST_F(Log, AMethodsLineNamesThePlaceThatWroteIt) {
  const std::string place = "[14:03:07] [LogTest.cpp][";
  const int line = __LINE__ + 1;
  KELVANE_LOG("run:", "text");
  KELVANE_LOG_CAUGHT("run:", platform::Exception("reason"));
  EXPECT_EQ(written(), place + std::to_string(line) + "][run][debug] text\n" + place +
                           std::to_string(line + 1) + "][run][error] reason\n");
}

TEST_F(Log, LinesAreAppendedInCallOrder) {
  folder.write("log.txt", "earlier\n");
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "one");
  iLog_tell(3, "f", -2, "-[Kelvane run:]", "two");
  EXPECT_EQ(written(),
            "earlier\n[14:03:07] [f][1][run][debug] one\n[14:03:07] [f][-2][run][error] two\n");
}

TEST_F(Log, TheMessagesOwnLineFeedStays) {
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "text\n");
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] text\n\n");
}

TEST_F(Log, BeforeAPathIsSetNothingIsWrittenAndNothingFails) {
  setLogPath("");
  tell(0);
  EXPECT_EQ(written(), "");
}

TEST_F(Log, TheLogFileIsNeverCreated) {
  setLogPath((folder / "absent.txt").c_str());
  tell(0);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"log.txt"});
}

TEST_F(Log, AFolderInPlaceOfTheFileDropsTheLine) {
  folder.write("place/inside", "x");
  setLogPath((folder / "place").c_str());
  tell(0);
  EXPECT_EQ(folder.names("place"), std::vector<std::string>{"inside"});
}

TEST_F(Log, AFileThatComesBackIsWrittenAgain) {
  ASSERT_EQ(std::remove((folder / "log.txt").c_str()), 0);
  tell(0);
  folder.write("log.txt", "");
  tell(3);
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][error] text\n");
}

TEST_F(Log, EveryLevelHasItsName) {
  for (int level = 0; level <= 4; ++level) tell(level);
  EXPECT_EQ(written(),
            "[14:03:07] [f][1][run][debug] text\n[14:03:07] [f][1][run][info] text\n"
            "[14:03:07] [f][1][run][warning] text\n[14:03:07] [f][1][run][error] text\n"
            "[14:03:07] [f][1][run][critical] text\n");
}

TEST_F(Log, LevelSevenIsDebugByNameAndBySwitch) {
  tell(7);
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] text\n");
  iLog_enable_debug = 0;
  tell(7);
  tell(-1);
  tell(0);
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] text\n");
}

TEST_F(Log, OnlyTheValueOneSwitchesALevelOn) {
  iLog_enable_error = 2;
  tell(3);
  EXPECT_EQ(written(), "");
}

TEST_F(Log, EverySwitchIsOnBeforeAnyoneSetsIt) {
  EXPECT_EQ(kFirstSwitches, (std::array<std::uint8_t, 5>{1, 1, 1, 1, 1}));
}

TEST_F(Log, EverySwitchIsOnAtOneAndAtNothingElse) {
  std::uint8_t* switches[] = {&iLog_enable_debug, &iLog_enable_info, &iLog_enable_warning,
                              &iLog_enable_error, &iLog_enable_critical};
  for (int level = 0; level < 5; ++level) {
    for (int value = 0; value < 256; ++value) {
      *switches[level] = static_cast<std::uint8_t>(value);
      EXPECT_EQ(_check_level(level), value == 1 ? 1 : 0) << level << " " << value;
    }
    *switches[level] = 1;
  }
}

TEST_F(Log, ASwitchThatIsOffSilencesItsLevelAlone) {
  iLog_enable_warning = 0;
  for (int level = 1; level <= 3; ++level) tell(level);
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][info] text\n[14:03:07] [f][1][run][error] text\n");
}

TEST_F(Log, EachLevelGoesByItsOwnSwitch) {
  std::uint8_t* switches[] = {&iLog_enable_debug, &iLog_enable_info, &iLog_enable_warning,
                              &iLog_enable_error, &iLog_enable_critical};
  for (int off = 0; off < 5; ++off) {
    *switches[off] = 0;
    for (int level = 0; level < 5; ++level) EXPECT_EQ(_check_level(level), level == off ? 0 : 1);
    *switches[off] = 1;
  }
}

TEST_F(Log, AFileWithoutASlashIsPrintedWhole) {
  EXPECT_STREQ(_base_file_name("jobs"), "jobs");
  EXPECT_STREQ(_base_file_name("/a/b/jobs"), "jobs");
  EXPECT_STREQ(_base_file_name("a/"), "");
}

TEST_F(Log, FunctionNamesAreCut) {
  EXPECT_EQ(cut("-[Kelvane run:]"), "run");
  EXPECT_EQ(cut("-[Kelvane init:]"), "init");
  EXPECT_EQ(cut("-[Kelvane readJSONFile]"), "readJSONFile]");
  EXPECT_EQ(cut("-[Kelvane getDevIdByWWN:withWWN:]"), "getDevIdByWWN");
  EXPECT_EQ(cut("String *fileRename(String *path, unsigned n)"), "*fileRename");
  EXPECT_EQ(cut("main"), "");
  EXPECT_EQ(cut("a b c(d"), "bc");
  EXPECT_EQ(cut(""), "");
}

TEST_F(Log, APlainFunctionNameLeavesItsFieldEmpty) {
  iLog_tell(0, "f", 1, "main", "text");
  EXPECT_EQ(written(), "[14:03:07] [f][1][][debug] text\n");
}

TEST_F(Log, ALongFunctionNameIsNotTruncated) {
  const std::string name(1000, 'n');
  EXPECT_EQ(cut(("-[Kelvane " + name + ":]").c_str()), name);
}

TEST_F(Log, NonAsciiTextComesOutAsUtf8) {
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "%@ %s", platform::Value("\xC3\xA9"), "\xE2\x82\xAC");
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] \xC3\xA9 \xE2\x82\xAC\n");
}

TEST_F(Log, BytesThatAreNoTextAreReplaced) {
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "%s", "a\xC3");
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] a\xEF\xBF\xBD\n");
}

TEST_F(Log, ALineOfAnyLengthIsWrittenWhole) {
  const std::string fields = "[14:03:07] [f][1][run][debug] ";
  for (const std::size_t size : {4000U, 4064U, 4065U, 4066U, 100'000U}) {
    folder.write("log.txt", "");
    const std::string text(size, 'x');
    iLog_tell(0, "f", 1, "-[Kelvane run:]", "%@ and %@", text, platform::Value("more"));
    EXPECT_EQ(written(), fields + text + " and more\n") << size;
  }
}

TEST_F(Log, ALongLineIsMendedAsAShortOneIs) {
  const std::string text(5000, 'x');
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "%@%s", text, "a\xC3");
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] " + text + "a\xEF\xBF\xBD\n");
}

TEST_F(Log, ACharacterMayStandInTwoPiecesOfALongLine) {
  const std::string text(5000, 'x');
  iLog_tell(0, "f", 1, "-[Kelvane run:]", "%@%s%s", text, "\xC3", "\xA9");
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] " + text + "\xC3\xA9\n");
}

TEST_F(Log, AMessageEndsAtItsFirstNulCharacter) {
  for (const std::size_t size : {1U, 5000U}) {
    folder.write("log.txt", "");
    const std::string text(size, 'x');
    iLog_tell(0, "f", 1, "-[Kelvane run:]", "%@%@ and %s", text, std::string("a\0b", 3), "more");
    EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] " + text + "a\n") << size;
  }
}

TEST_F(Log, AFileThatMayOnlyBeWrittenToGetsItsLines) {
  {
    const test::PermissionBits way(folder.path(), 0755);
    const test::PermissionBits writeOnly(folder / "log.txt", 0222);
    test::asOrdinaryUser([this] {
      tell(0);
      return std::string();
    });
  }
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][debug] text\n");
}

TEST_F(Log, AFailingWriteRaises) {
  const test::FullFile full;
  setLogPath(full.path().c_str());
  EXPECT_THROW(tell(0), platform::Exception);
}

TEST_F(Log, TellingACaughtExceptionNeverRaises) {
  iLog_tellCaught("f", 1, "-[Kelvane run:]", platform::Exception("the reason, 100 % %@"));
  EXPECT_EQ(written(), "[14:03:07] [f][1][run][error] the reason, 100 % %@\n");
  const test::FullFile full;
  setLogPath(full.path().c_str());
  iLog_tellCaught("f", 1, "-[Kelvane run:]", platform::Exception("reason"));
}

TEST_F(Log, NoFileStaysOpen) {
  const auto openFiles = [] {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
  };
  const auto before = openFiles();
  for (int i = 0; i < 10; ++i) tell(0);
  EXPECT_EQ(openFiles(), before);
}

TEST_F(Log, APathOf511BytesWorks) {
  std::string path = folder.path();
  while (path.size() < 400) path += "/" + std::string(90, 'd');
  path += "/" + std::string(510 - path.size(), 'f');
  ASSERT_EQ(path.size(), 511U);
  folder.write(path.substr(folder.path().size() + 1), "");
  setLogPath(path.c_str());
  tell(0);
  EXPECT_EQ(folder.read(path.substr(folder.path().size() + 1)),
            "[14:03:07] [f][1][run][debug] text\n");
}

TEST_F(Log, ALaterPathLeavesNothingOfTheEarlierOne) {
  setLogPath(std::string(511, 'x').c_str());
  setLogPath("y");
  EXPECT_STREQ(_logPath, "y");
  for (std::size_t i = 1; i < sizeof _logPath; ++i) EXPECT_EQ(_logPath[i], '\0');
}

using LogDeathTest = Log;

TEST_F(LogDeathTest, APathOf512BytesEndsTheProcess) {
  EXPECT_EXIT(setLogPath(std::string(512, 'x').c_str()), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(Log, WithoutAHostTheSystemsClockIsUsed) {
  iLog_host = nullptr;
  tell(0);
  EXPECT_THAT(written(), ::testing::MatchesRegex("\\[[0-2][0-9]:[0-5][0-9]:[0-5][0-9]\\] "
                                                 "\\[f\\]\\[1\\]\\[run\\]\\[debug\\] text\n"));
}

}  // namespace
}  // namespace kelvane
