// The characters of well-formed UTF-8 text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelvane::console {

// The bytes of the character that starts the text, which is not empty.
std::size_t lengthOfFirst(std::string_view text);

// The character's number.
std::uint32_t decoded(std::string_view character);

// Whether it is a control character, or one that takes no room or turns the direction of writing.
bool steersTheOutput(std::uint32_t character);

}  // namespace kelvane::console
