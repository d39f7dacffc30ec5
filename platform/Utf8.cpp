#include "platform/Utf8.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kelvane::platform {
namespace {

unsigned byteAt(std::string_view bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
}

bool within(unsigned byte, unsigned low, unsigned high) { return byte >= low && byte <= high; }

// The length of the well-formed sequence at `start`, where no ASCII stands; 0 where there is none.
// The second byte's range is what excludes overlong forms, surrogates and code points above
// U+10FFFF.
std::size_t sequenceLength(std::string_view bytes, std::size_t start) {
  const unsigned first = byteAt(bytes, start);
  std::size_t length = 0;
  unsigned low = 0x80;
  unsigned high = 0xBF;
  if (within(first, 0xC2, 0xDF)) {
    length = 2;
  } else if (within(first, 0xE0, 0xEF)) {
    length = 3;
    if (first == 0xE0) low = 0xA0;
    if (first == 0xED) high = 0x9F;
  } else if (within(first, 0xF0, 0xF4)) {
    length = 4;
    if (first == 0xF0) low = 0x90;
    if (first == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (!within(byteAt(bytes, start + 1), low, high)) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!within(byteAt(bytes, start + i), 0x80, 0xBF)) return 0;
  }
  return length;
}

// Where the first character stands that is not ASCII; most text is nothing else, so that blocks are
// looked at first.
std::size_t skipAscii(std::string_view bytes, std::size_t start) {
  std::array<std::uint64_t, 8> block = {};
  for (; bytes.size() - start >= sizeof block; start += sizeof block) {
    std::memcpy(block.data(), bytes.data() + start, sizeof block);
    std::uint64_t all = 0;
    for (const std::uint64_t word : block) all |= word;
    if ((all & 0x8080808080808080U) != 0) break;
  }
  while (start < bytes.size() && byteAt(bytes, start) < 0x80) ++start;
  return start;
}

// The length of the well-formed text at the start of the bytes.
std::size_t validPrefix(std::string_view bytes, std::size_t start) {
  std::size_t end = start;
  while (end < bytes.size()) {
    end = skipAscii(bytes, end);
    if (end == bytes.size()) break;
    const std::size_t length = sequenceLength(bytes, end);
    if (length == 0) break;
    end += length;
  }
  return end;
}

}  // namespace

bool isUtf8(std::string_view bytes) { return validPrefix(bytes, 0) == bytes.size(); }

std::string repairedUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  std::size_t start = 0;
  while (start < bytes.size()) {
    const std::size_t end = validPrefix(bytes, start);
    text.append(bytes.substr(start, end - start));
    if (end == bytes.size()) break;
    text.append("\xEF\xBF\xBD");
    start = end + 1;
  }
  return text;
}

Value decodedUtf8(const char* bytes) {
  if (bytes == nullptr || !isUtf8(bytes)) return {};
  return Value(bytes);
}

}  // namespace kelvane::platform
