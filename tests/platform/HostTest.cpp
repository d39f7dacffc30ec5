// What the system is asked is put in its place for single tests: the linker leads calls of sleep()
// and readlink() here.

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/Host.h"

namespace kelvane::platform {
namespace {

std::vector<unsigned> slept;       // the seconds asked for, call by call
std::vector<unsigned> remainders;  // what the calls are still to answer, the last one first
std::optional<std::string> otherExecutable;

}  // namespace

extern "C" {
ssize_t __real_readlink(const char* path, char* buffer, std::size_t size);
ssize_t __wrap_readlink(const char* path, char* buffer, std::size_t size);
unsigned __wrap_sleep(unsigned seconds);
}

ssize_t __wrap_readlink(const char* path, char* buffer, std::size_t size) {
  if (!otherExecutable || path != std::string("/proc/self/exe")) {
    return __real_readlink(path, buffer, size);
  }
  if (otherExecutable->empty()) {
    errno = ENOENT;
    return -1;
  }
  return static_cast<ssize_t>(otherExecutable->copy(buffer, size));
}

unsigned __wrap_sleep(unsigned seconds) {
  slept.push_back(seconds);
  if (remainders.empty()) return 0;
  const unsigned remainder = remainders.back();
  remainders.pop_back();
  return remainder;
}

namespace {

std::vector<unsigned> sleeps(unsigned seconds, std::vector<unsigned> answers) {
  slept.clear();
  remainders = std::move(answers);
  SystemHost().sleep(seconds);
  return slept;
}

Value folderOf(const std::string& executable) {
  otherExecutable = executable;
  Value folder = SystemHost().executableFolder();
  otherExecutable.reset();
  return folder;
}

TEST(SystemHost, SleepsOnceWhereNoSignalComes) {
  EXPECT_EQ(sleeps(3, {}), std::vector<unsigned>{3});
}

TEST(SystemHost, ASleepThatSignalsShortenGoesOnForTheRest) {
  EXPECT_EQ(sleeps(10, {1, 7}), (std::vector<unsigned>{10, 7, 1}));
}

TEST(SystemHost, ASleepOfNoSecondsIsNone) { EXPECT_TRUE(sleeps(0, {}).empty()); }

TEST(ParseVersion, TakesTheLeadingNumbers) {
  EXPECT_EQ(parseVersion("6.1.0-18-amd64"), (SystemVersion{6, 1, 0}));
  EXPECT_EQ(parseVersion("14.2"), (SystemVersion{14, 2, 0}));
  EXPECT_EQ(parseVersion("5"), (SystemVersion{5, 0, 0}));
  EXPECT_EQ(parseVersion("6.1-rc3.7"), (SystemVersion{6, 1, 0}));
  EXPECT_EQ(parseVersion("1.2.3.4"), (SystemVersion{1, 2, 3}));
  EXPECT_EQ(parseVersion(""), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion("x.1"), (SystemVersion{0, 0, 0}));
}

TEST(ParseVersion, ANumberThatIsMissingEndsIt) {
  EXPECT_EQ(parseVersion("6."), (SystemVersion{6, 0, 0}));
  EXPECT_EQ(parseVersion("6..1"), (SystemVersion{6, 0, 0}));
  EXPECT_EQ(parseVersion(".6.1"), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion("6.x.1"), (SystemVersion{6, 0, 0}));
  EXPECT_EQ(parseVersion("6.1.x"), (SystemVersion{6, 1, 0}));
}

TEST(ParseVersion, OnlyADotLeadsToTheNextNumber) {
  EXPECT_EQ(parseVersion("6-1.2"), (SystemVersion{6, 0, 0}));
  EXPECT_EQ(parseVersion("6.1 2"), (SystemVersion{6, 1, 0}));
}

TEST(ParseVersion, SignsAndBlanksAreNoPartOfANumber) {
  EXPECT_EQ(parseVersion("-6.1"), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion("+6.1"), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion(" 6.1"), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion("6.-1.2"), (SystemVersion{6, 0, 0}));
  EXPECT_EQ(parseVersion("6. 1.2"), (SystemVersion{6, 0, 0}));
}

TEST(ParseVersion, NumbersAreDecimal) {
  EXPECT_EQ(parseVersion("010.08.0x1"), (SystemVersion{10, 8, 0}));
}

TEST(SystemHost, AnExecutableThatTheSystemDoesNotTellHasNoFolder) {
  EXPECT_TRUE(folderOf("").isNothing());
}

TEST(SystemHost, AFolderWhoseNameIsNoTextIsNothing) {
  EXPECT_TRUE(folderOf("/opt/caf\xE9/Kelvane").isNothing());
  EXPECT_EQ(folderOf("/opt/caf\xC3\xA9/Kelvane"), Value("/opt/caf\xC3\xA9"));
}

TEST(SystemHost, AnExecutableAtTheRootStandsInTheRoot) {
  EXPECT_EQ(folderOf("/Kelvane"), Value("/"));
}

TEST(SystemHost, KnowsTheFolderOfTheExecutable) {
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(SystemHost().executableFolder(), Value(self.parent_path().string()));
}

TEST(SystemHost, KnowsTheRunningSystemsVersion) {
  struct utsname names = {};
  ASSERT_EQ(::uname(&names), 0);
  const SystemVersion version = SystemHost().systemVersion();
  const std::string start = std::to_string(version[0]) + "." + std::to_string(version[1]);
  EXPECT_EQ(std::string(names.release).rfind(start, 0), 0U) << names.release;
}

TEST(IgnoreWriteSignals, LetsWritesFailInsteadOfEndingTheProcess) {
  EXPECT_EXIT(
      {
        ignoreWriteSignals();
        ::raise(SIGXFSZ);
        ::raise(SIGPIPE);
        ::_exit(7);
      },
      ::testing::ExitedWithCode(7), "");
}

TEST(SystemHost, TellsTheSameTimeWithinASecond) {
  const SystemHost host;
  int same = 0;
  for (int i = 0; i < 1000; ++i) {
    const std::tm first = host.localTime();
    const std::tm second = host.localTime();
    same += first.tm_sec == second.tm_sec && first.tm_hour == second.tm_hour ? 1 : 0;
  }
  EXPECT_GT(same, 0);
}

TEST(SystemHost, TellsTheLocalTime) {
  const std::time_t before = std::time(nullptr);
  std::tm local = SystemHost().localTime();
  const std::time_t told = std::mktime(&local);
  EXPECT_LE(before, told);
  EXPECT_LE(told, std::time(nullptr));
}

// A zone of the system for the time of its life.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* before = std::getenv("TZ")) before_ = before;
    take(zone);
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
  ~TimeZone() { take(before_ ? before_->c_str() : nullptr); }

 private:
  static void take(const char* zone) {
    if (zone == nullptr) {
      ::unsetenv("TZ");
    } else {
      ::setenv("TZ", zone, 1);
    }
    ::tzset();
  }
  std::optional<std::string> before_;
};

TEST(SystemHost, TellsTheTimeOfItsZone) {
  constexpr std::time_t kAhead = 19'800;  // seconds: five hours and a half
  const TimeZone zone("XYZ-5:30");
  const std::time_t before = std::time(nullptr);
  std::tm local = SystemHost().localTime();
  const std::time_t told = ::timegm(&local);
  EXPECT_LE(before + kAhead, told);
  EXPECT_LE(told, std::time(nullptr) + kAhead);
}

}  // namespace
}  // namespace kelvane::platform
