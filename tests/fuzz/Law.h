// The laws that a target holds its input against: where one is broken the process says which, and
// aborts.
#pragma once

#include <string>
#include <string_view>

namespace kelvane::fuzz {

// `told` is what there is to see of it.
[[noreturn]] void breakLaw(const char* law, std::string_view told);

inline void require(bool isKept, const char* law, std::string_view told = {}) {
  if (!isKept) breakLaw(law, told);
}

// Both texts are the same.
void requireSame(std::string_view expected, std::string_view found, const char* law);

// Nothing in the text steers a terminal: it is UTF-8, or of one that shows ASCII alone that,
// without control characters, and without those that take no room or turn the direction of writing.
// Line feeds are none of them.
void requireHarmless(std::string_view text, bool isAscii, const char* law);

}  // namespace kelvane::fuzz
