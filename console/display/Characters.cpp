#include "console/display/Characters.h"

namespace kelvane::console {
namespace {

bool within(std::uint32_t character, std::uint32_t low, std::uint32_t high) {
  return character >= low && character <= high;
}

}  // namespace

std::size_t lengthOfFirst(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return 1;
  if (first < 0xE0) return 2;
  return first < 0xF0 ? 3 : 4;
}

std::uint32_t decoded(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first;
  std::uint32_t code = first & (0x7FU >> character.size());
  for (const char byte : character.substr(1)) {
    code = code << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return code;
}

bool steersTheOutput(std::uint32_t character) {
  return character < 0x20 || within(character, 0x7F, 0x9F) || character == 0xAD ||
         character == 0x61C || within(character, 0x200B, 0x200F) ||
         within(character, 0x2028, 0x202E) || within(character, 0x2060, 0x206F) ||
         character == 0xFEFF;
}

}  // namespace kelvane::console
