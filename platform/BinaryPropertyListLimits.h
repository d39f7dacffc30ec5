// What a binary property list may ask of its reader: the library that reads it follows it however
// deep it goes, and writes out what the list refers to as often as it does.
#pragma once

#include <string_view>

namespace kelvane::platform {

// Whether a binary property list is safe to hand to the library: no deeper than the limit, without
// a circle, without a whole number beyond 64 bits, and not many times larger than its bytes once it
// is read. Linear in the bytes, in time and memory.
bool isWithinLimits(std::string_view bytes);

}  // namespace kelvane::platform
