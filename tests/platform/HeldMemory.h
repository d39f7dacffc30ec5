// How much memory the process holds.
#pragma once

#include <cstddef>

#include <malloc.h>

namespace kelvane::test {

// In bytes, with what the C library keeps for pieces of the same size. Under a sanitizer, which has
// memory of its own and tells itself what is lost, it does not grow.
inline std::size_t heldMemory() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

}  // namespace kelvane::test
