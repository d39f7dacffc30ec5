// The end of a floor program whose step has failed.
#pragma once

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace kelvane::floor {

[[noreturn]] inline void fail(const std::string& what) {
  std::fprintf(stderr, "floor: %s: %s\n", what.c_str(), std::strerror(errno));
  std::exit(1);
}

// The call's result, unless it is a failure's.
template <typename Result>
Result checked(Result result, const std::string& what) {
  if (result < 0) fail(what);
  return result;
}

}  // namespace kelvane::floor
