#include "tests/support/PlainUtf8.h"

#include <cstddef>

namespace kelvane::test {
namespace {

struct PlainCharacter {
  char32_t number = 0;
  std::size_t length = 0;  // in bytes; 0: there is none
};

// What the first byte of a character says; 0 where it is none.
std::size_t lengthBy(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xC0) return 0;
  if (first < 0xE0) return 2;
  if (first < 0xF0) return 3;
  return first < 0xF8 ? 4 : 0;
}

bool isCharacter(char32_t number, std::size_t length) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};  // that needs so many bytes
  const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
  return number >= kLeast[length] && number <= 0x10FFFF && !isSurrogate;
}

PlainCharacter firstOf(std::string_view bytes) {
  const auto first = static_cast<unsigned char>(bytes.front());
  const std::size_t length = lengthBy(first);
  if (length == 0 || length > bytes.size()) return {};
  char32_t number = first & (length == 1 ? 0x7FU : 0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if ((byte & 0xC0U) != 0x80) return {};
    number = number << 6U | (byte & 0x3FU);
  }
  return isCharacter(number, length) ? PlainCharacter{number, length} : PlainCharacter{};
}

}  // namespace

std::optional<std::u32string> plainCharacters(std::string_view bytes) {
  std::u32string characters;
  while (!bytes.empty()) {
    const PlainCharacter one = firstOf(bytes);
    if (one.length == 0) return std::nullopt;
    characters += one.number;
    bytes.remove_prefix(one.length);
  }
  return characters;
}

bool isPlainUtf8(std::string_view bytes) { return plainCharacters(bytes).has_value(); }

std::string plainlyRepaired(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t length = firstOf(bytes).length;
    text.append(length == 0 ? "\xEF\xBF\xBD" : bytes.substr(0, length));
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

}  // namespace kelvane::test
