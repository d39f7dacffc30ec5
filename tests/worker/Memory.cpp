#include "tests/worker/Memory.h"

#include <new>

#include "zorapi/zorapi.h"

namespace kelvane::test::memory {

bool refuseInfoBuffer = false;
int mallocCallsLeft = -1;
int newCallsLeft = -1;
std::size_t newBytes = 0;

}  // namespace kelvane::test::memory

namespace memory = kelvane::test::memory;

extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size);

void* __wrap_malloc(std::size_t size) {
  if (memory::refuseInfoBuffer && size == ZOR_CONTROLLER_INFO_SIZE) return nullptr;
  if (memory::mallocCallsLeft == 0) return nullptr;
  if (memory::mallocCallsLeft > 0) --memory::mallocCallsLeft;
  return __real_malloc(size);
}

// The operator's name for the linker ends with the type of sizes.
extern "C" void* realNew(std::size_t size) __asm__("__real_" KELVANE_OPERATOR_NEW);
extern "C" void* wrappedNew(std::size_t size) __asm__("__wrap_" KELVANE_OPERATOR_NEW);

void* wrappedNew(std::size_t size) {
  if (memory::newCallsLeft == 0) throw std::bad_alloc();
  if (memory::newCallsLeft > 0) --memory::newCallsLeft;
  memory::newBytes += size;
  return realNew(size);
}
