// The controller information buffer that cannot be had: malloc is replaced for the whole program,
// and fails for a buffer of that size while a test wants it to.

#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/worker/FirmwareWorld.h"

namespace {
bool refuseInfoBuffer = false;
}

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
  if (refuseInfoBuffer && size == ZOR_CONTROLLER_INFO_SIZE) return nullptr;
  return __real_malloc(size);
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

}  // namespace
}  // namespace kelvane
