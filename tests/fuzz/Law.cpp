#include "tests/fuzz/Law.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "platform/Utf8.h"

namespace kelvane::fuzz {
namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// By Unicode's categories of control, formatting and separating characters.
constexpr Range kSteering[] = {{0x00, 0x09},     {0x0B, 0x1F},     {0x7F, 0x9F},
                               {0xAD, 0xAD},     {0x61C, 0x61C},   {0x200B, 0x200F},
                               {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}};

bool steers(std::uint32_t character) {
  return std::any_of(std::begin(kSteering), std::end(kSteering), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

// What a byte of a character adds to it.
std::uint32_t bitsOf(unsigned char byte) {
  if (byte < 0x80) return byte;
  if (byte < 0xC0) return byte & 0x3FU;
  if (byte < 0xE0) return byte & 0x1FU;
  return byte & (byte < 0xF0 ? 0x0FU : 0x07U);
}

}  // namespace

void breakLaw(const char* law, std::string_view told) {
  std::fprintf(stderr, "law broken: %s\n%.*s\n", law, static_cast<int>(told.size()), told.data());
  std::abort();
}

void requireSame(std::string_view expected, std::string_view found, const char* law) {
  if (expected == found) return;
  std::string told = "expected: ";
  told.append(expected).append("\nfound:    ").append(found);
  breakLaw(law, told);
}

void requireHarmless(std::string_view text, bool isAscii, const char* law) {
  require(platform::isUtf8(text), law, text);
  std::uint32_t character = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    character = character << 6U | bitsOf(static_cast<unsigned char>(text[i]));
    if (i + 1 < text.size() && continues(text[i + 1])) continue;
    require(!steers(character) && (!isAscii || character < 0x80), law, text);
    character = 0;
  }
}

}  // namespace kelvane::fuzz
