// Texts by their characters, and in UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kelvane::fuzz {

// Of a text that is UTF-8.
inline std::u32string charactersOf(std::string_view text) {
  std::u32string characters;
  for (const char each : text) {
    const auto byte = static_cast<unsigned char>(each);
    if ((byte & 0xC0U) == 0x80) {
      characters.back() = characters.back() << 6U | (byte & 0x3FU);
    } else if (byte < 0x80) {
      characters += byte;
    } else {
      characters += byte < 0xE0 ? byte & 0x1FU : byte < 0xF0 ? byte & 0x0FU : byte & 0x07U;
    }
  }
  return characters;
}

inline std::string utf8Of(char32_t character) {
  if (character < 0x80) return {static_cast<char>(character)};
  std::string tail;
  char32_t room = 0x40;  // of the first byte
  while (character >= room) {
    tail.insert(tail.begin(), static_cast<char>(0x80U | (character & 0x3FU)));
    character >>= 6U;
    room = room == 0x40 ? 0x20 : room >> 1U;
  }
  const char32_t mark = tail.size() == 1 ? 0xC0 : tail.size() == 2 ? 0xE0 : 0xF0;
  return static_cast<char>(mark | character) + tail;
}

}  // namespace kelvane::fuzz
