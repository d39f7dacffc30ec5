// Regular expressions with Unicode word characters, and numbers at the start of a text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvane::platform {

// The groups of the pattern's first match anywhere in the text, the whole match first; nothing
// where there is none. "." is any character but a line end. The text is UTF-8.
std::optional<std::vector<std::string>> firstMatch(const std::string& pattern,
                                                   const std::string& text);

// Leading blanks skipped, an optional sign, digits as far as they go; 0 where there are none, held
// at the 64-bit limits.
std::int64_t leadingInteger(const std::string& text);

}  // namespace kelvane::platform
