// Memory that cannot be had.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/PropertyList.h"
#include "platform/Regex.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TempFolder.h"
#include "tests/worker/FirmwareWorld.h"
#include "tests/worker/Memory.h"

namespace kelvane {
namespace {

class OutOfMemory : public FirmwareWorld {
 protected:
  OutOfMemory() { test::memory::refuseInfoBuffer = true; }
  ~OutOfMemory() override { test::memory::refuseInfoBuffer = false; }
};

TEST_F(OutOfMemory, EndsTheJobWithoutTouchingAController) {
  controllers({0x4301});
  updateAll({"W0"});
  EXPECT_EQ(framework.calls,
            (Lines{"zr_initialize(fixed words)", "zr_discover(0)", "zr_getNumberOfHBA(0)",
                   "zr_getNumberOfSubsystem(0)", "getErrorDescription(0x101)"}));
  EXPECT_EQ(result(), 0x0101);
  EXPECT_EQ(state(), "FREE");
}

TEST_F(OutOfMemory, AnEarlierFailureStaysTheResult) {
  controllers({0x4301});
  framework.answer("zr_discover", 1, 0x77);
  updateAll({"W0"});
  EXPECT_EQ(result(), 0x77);
}

TEST(OutOfMemoryRegex, RaisesOrAnswers) {
  bool answered = false;
  int refused = 0;
  for (int calls = 0; !answered; ++calls) {
    test::memory::mallocCallsLeft = calls;
    try {
      answered = platform::Regex("(\\w+).(\\w+)").firstMatch("a.b").has_value();
      test::memory::mallocCallsLeft = -1;
      ASSERT_TRUE(answered) << calls;
    } catch (const std::bad_alloc&) {
      test::memory::mallocCallsLeft = -1;
      ++refused;
    }
    ASSERT_LT(calls, 1000);
  }
  EXPECT_GT(refused, 2);
}

// Where no name for a generation can be built, the file is neither moved nor emptied.
TEST(OutOfMemoryRotation, NeverLosesTheLog) {
  const test::TempFolder folder;
  const std::string path = folder / "a log file whose name needs memory of its own.txt";
  const std::string generation = folder / "a log file whose name needs memory of its own(1).txt";
  constexpr std::uintmax_t kSize = 104'857'600;
  bool isRotated = false;
  for (int calls = 0; !isRotated; ++calls) {
    std::filesystem::remove(generation);
    std::ofstream(path).close();
    std::filesystem::resize_file(path, kSize);
    const platform::Value log(path);
    test::memory::newCallsLeft = calls;
    try {
      renameFile(log);
    } catch (const std::bad_alloc&) {
      test::memory::newCallsLeft = -1;
    }
    test::memory::newCallsLeft = -1;
    isRotated = std::filesystem::exists(generation);
    ASSERT_EQ(std::filesystem::file_size(isRotated ? generation : path), kSize) << calls;
    ASSERT_LT(calls, 10'000);
  }
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

// A catalogue that is damaged and one that there is no memory for are not the same.
TEST(WithoutMemory, APropertyListIsReadWholeOrNotTakenForDamaged) {
  const std::string list = test::xmlPropertyList(
      "<dict><key>a</key><array><string>a text that is too long to stand in its place</string>"
      "<dict><key>another key that is rather long</key><data>AKt/</data></dict></array></dict>");
  bool isRead = false;
  int calls = 0;
  for (; !isRead; ++calls) {
    test::memory::newCallsLeft = calls;
    try {
      isRead = !platform::parsePropertyList(list).isNothing();
      test::memory::newCallsLeft = -1;
      ASSERT_TRUE(isRead) << calls;
    } catch (const std::bad_alloc&) {
      test::memory::newCallsLeft = -1;
    }
  }
  EXPECT_GT(calls, 3);
}

}  // namespace
}  // namespace kelvane
