// UTF-8 read apart from the platform: what the platform's reading is held against.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvane::test {

// The characters by their numbers. Nothing where the bytes are no UTF-8: a character is cut, or
// takes more bytes than it needs, or is a half of a surrogate pair, or is above U+10FFFF.
std::optional<std::u32string> plainCharacters(std::string_view bytes);

bool isPlainUtf8(std::string_view bytes);

// With U+FFFD for every byte that is a part of no character.
std::string plainlyRepaired(std::string_view bytes);

}  // namespace kelvane::test
