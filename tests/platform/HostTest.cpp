#include <csignal>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/Host.h"

namespace kelvane::platform {
namespace {

TEST(ParseVersion, TakesTheLeadingNumbers) {
  EXPECT_EQ(parseVersion("6.1.0-18-amd64"), (SystemVersion{6, 1, 0}));
  EXPECT_EQ(parseVersion("14.2"), (SystemVersion{14, 2, 0}));
  EXPECT_EQ(parseVersion("5"), (SystemVersion{5, 0, 0}));
  EXPECT_EQ(parseVersion("6.1-rc3.7"), (SystemVersion{6, 1, 0}));
  EXPECT_EQ(parseVersion("1.2.3.4"), (SystemVersion{1, 2, 3}));
  EXPECT_EQ(parseVersion(""), (SystemVersion{0, 0, 0}));
  EXPECT_EQ(parseVersion("x.1"), (SystemVersion{0, 0, 0}));
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

TEST(SystemHost, TellsTheLocalTime) {
  const std::time_t before = std::time(nullptr);
  std::tm local = SystemHost().localTime();
  const std::time_t told = std::mktime(&local);
  EXPECT_LE(before, told);
  EXPECT_LE(told, std::time(nullptr));
}

}  // namespace
}  // namespace kelvane::platform
