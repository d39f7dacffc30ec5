// Memory of the C library's, owned by a std::unique_ptr.
#pragma once

#include <cstdlib>

namespace kelvane::platform {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

}  // namespace kelvane::platform
