// What a property list may ask of its reader: the library that reads it follows it however deep it
// goes, and writes out what a binary list refers to as often as it does.
#pragma once

#include <string_view>

namespace kelvane::platform {

// Containers inside one another, deeper than this, are not read.
inline constexpr int kPropertyListDepthLimit = 512;

// Whether a property list, XML or binary, is safe to hand to the library: no deeper than the limit,
// without a circle, and not many times larger than its bytes once it is read. Bytes that are no
// property list may be found safe too. Linear in the bytes, in time and memory.
bool isWithinLimits(std::string_view bytes);

}  // namespace kelvane::platform
