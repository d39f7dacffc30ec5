// What a binary property list may ask of its reader: the library that reads it follows it however
// deep it goes, and writes out what the list refers to as often as it does.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvane::platform {

// Whether a binary property list is safe to hand to the library: no deeper than the limit, without
// a circle, without a whole number beyond 64 bits, and not many times larger than its bytes once it
// is read. Linear in the bytes, in time and memory.
bool isWithinLimits(std::string_view bytes);

// The same list with its empty texts marked as ASCII where they are marked as UTF-16, which the
// library refuses. Nothing where it has none, is not within the limits, or leaves no room for that.
std::optional<std::string> withEmptyTextsAsAscii(std::string_view bytes);

}  // namespace kelvane::platform
