// Memory that cannot be had: malloc is replaced for the whole program, and fails for a buffer of
// the controller information's size while a test wants it to; so is operator new, which fails when
// a test's count of its calls has run out.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/Regex.h"
#include "tests/support/TempFolder.h"
#include "tests/worker/FirmwareWorld.h"

namespace {
bool refuseInfoBuffer = false;
int mallocCallsLeft = -1;  // negative: no end
int newCallsLeft = -1;
}  // namespace

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
  if (refuseInfoBuffer && size == ZOR_CONTROLLER_INFO_SIZE) return nullptr;
  if (mallocCallsLeft == 0) return nullptr;
  if (mallocCallsLeft > 0) --mallocCallsLeft;
  return __real_malloc(size);
}

extern "C" void* __real__Znwm(std::size_t size);
extern "C" void* __wrap__Znwm(std::size_t size);

void* __wrap__Znwm(std::size_t size) {
  if (newCallsLeft == 0) throw std::bad_alloc();
  if (newCallsLeft > 0) --newCallsLeft;
  return __real__Znwm(size);
}

namespace kelvane {
namespace {

class OutOfMemory : public FirmwareWorld {
 protected:
  OutOfMemory() { refuseInfoBuffer = true; }
  ~OutOfMemory() override { refuseInfoBuffer = false; }
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
    mallocCallsLeft = calls;
    try {
      answered = platform::firstMatch("(\\w+).(\\w+)", "a.b").has_value();
    } catch (const std::bad_alloc&) {
      ++refused;
    }
    mallocCallsLeft = -1;
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
    newCallsLeft = calls;
    try {
      renameFile(log);
    } catch (const std::bad_alloc&) {
      newCallsLeft = -1;
    }
    newCallsLeft = -1;
    isRotated = std::filesystem::exists(generation);
    ASSERT_EQ(std::filesystem::file_size(isRotated ? generation : path), kSize) << calls;
    ASSERT_LT(calls, 10'000);
  }
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

}  // namespace
}  // namespace kelvane
