#include "tests/fuzz/Law.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// By Unicode's categories of control, formatting and separating characters.
constexpr Range kSteering[] = {{0x00, 0x09},     {0x0B, 0x1F},     {0x7F, 0x9F},
                               {0xAD, 0xAD},     {0x61C, 0x61C},   {0x200B, 0x200F},
                               {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}};

bool steers(char32_t character) {
  return std::any_of(std::begin(kSteering), std::end(kSteering), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
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
  const auto characters = test::plainCharacters(text);
  require(characters.has_value(), law, text);
  for (const char32_t character : *characters) {
    require(!steers(character) && (!isAscii || character < 0x80), law, text);
  }
}

}  // namespace kelvane::fuzz
