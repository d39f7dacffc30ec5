// What a library that stands in front of the C library calls.
#pragma once

#include <dlfcn.h>

namespace kelvane::test {

// The next function of that name after this library's own. Each library has this for itself, as
// which is the next is told by who asks.
template <typename Function>
static Function* nextFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace kelvane::test
