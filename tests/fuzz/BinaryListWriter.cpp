#include <bit>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <vector>

#include "tests/fuzz/Characters.h"
#include "tests/fuzz/ListNumber.h"
#include "tests/fuzz/ListWriter.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

constexpr std::int64_t kYear2001 = 978'307'200;  // from which dates are counted

// The most significant byte first.
std::string bigEndian(std::uint64_t number, unsigned size) {
  std::string bytes(size, '\0');
  for (unsigned i = size; i-- > 0; number >>= 8U) bytes[i] = static_cast<char>(number & 0xFFU);
  return bytes;
}

// The exponent of the least number of bytes that has room: 0 for 1, 3 for 8.
unsigned roomFor(std::uint64_t number) {
  unsigned exponent = 0;
  while (exponent < 3 && number >> (8U << exponent) != 0) ++exponent;
  return exponent;
}

std::string marker(unsigned kind, unsigned low) { return {static_cast<char>(kind << 4U | low)}; }

std::string utf16Of(const std::string& text) {
  std::string units;
  for (const char32_t character : charactersOf(text)) {
    if (character < 0x10000) {
      units += bigEndian(character, 2);
      continue;
    }
    units += bigEndian(0xD800U + ((character - 0x10000U) >> 10U), 2);
    units += bigEndian(0xDC00U + (character & 0x3FFU), 2);
  }
  return units;
}

bool isAscii(const std::string& text) {
  for (const char each : text) {
    if (static_cast<unsigned char>(each) >= 0x80) return false;
  }
  return true;
}

// An object, of which references may be a part.
struct Object {
  std::string bytes;
  std::vector<std::size_t> references;
  bool operator<(const Object& other) const {
    return bytes != other.bytes ? bytes < other.bytes : references < other.references;
  }
};

class BinaryWriter {
 public:
  explicit BinaryWriter(Bytes& style) : style_(style), shares_(style.flag()) {}

  std::string list(const Value& root) {
    const std::size_t top = add(root);
    const unsigned referenceSize = 1U << (roomFor(objects_.size()) + style_.pick(2));
    std::string bytes = "bplist00";
    std::vector<std::size_t> offsets;
    for (const Object& object : objects_) {
      offsets.push_back(bytes.size());
      bytes += object.bytes;
      for (const std::size_t each : object.references) bytes += bigEndian(each, referenceSize);
    }
    const std::size_t table = bytes.size();
    const unsigned offsetSize = 1U << (roomFor(table) + style_.pick(2));
    for (const std::size_t offset : offsets) bytes += bigEndian(offset, offsetSize);
    bytes += std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(referenceSize, 1);
    return bytes + bigEndian(objects_.size(), 8) + bigEndian(top, 8) + bigEndian(table, 8);
  }

 private:
  // The object's number. What is the same is one object, or is not.
  std::size_t add(const Value& value) { return keep(objectOf(value)); }

  std::size_t keep(const Object& object) {
    const auto known = known_.find(object);
    if (shares_ && known != known_.end()) return known->second;
    known_[object] = objects_.size();
    objects_.push_back(object);
    return objects_.size() - 1;
  }

  Object objectOf(const Value& value) {
    switch (value.kind()) {
      case Value::Kind::boolean:
        return {value.truth() ? "\x09" : "\x08", {}};
      case Value::Kind::number:
        return {number(value.digits()), {}};
      case Value::Kind::string:
        return {text(value.string()), {}};
      case Value::Kind::data:
        return {counted(0x4, value.bytes().size()) + value.bytes(), {}};
      case Value::Kind::date:
        return {"\x33" + real(static_cast<double>(value.date().secondsSince1970 - kYear2001)), {}};
      default:
        return container(value);
    }
  }

  Object container(const Value& value) {
    Object object;
    if (value.isArray()) {
      object.bytes = counted(0xA, value.count());
      for (const Value& element : value.elements()) object.references.push_back(add(element));
      return object;
    }
    object.bytes = counted(0xD, value.entries().size());
    for (const auto& [key, inner] : value.entries())
      object.references.push_back(keep({text(key), {}}));
    for (const auto& [key, inner] : value.entries()) object.references.push_back(add(inner));
    return object;
  }

  std::string counted(unsigned kind, std::size_t count) const {
    if (count < 0xF) return marker(kind, static_cast<unsigned>(count));
    const unsigned room = roomFor(count);
    return marker(kind, 0xF) + marker(0x1, room) + bigEndian(count, 1U << room);
  }

  std::string text(const std::string& text) {
    if (isAscii(text) && style_.pick(4) != 1) return counted(0x5, text.size()) + text;
    const std::string units = utf16Of(text);
    return counted(0x6, units.size() / 2) + units;
  }

  std::string number(const std::string& digits) {
    if (!isListInteger(digits)) return reals(std::strtod(digits.c_str(), nullptr));
    if (digits[0] == '-') {
      const std::int64_t number = std::strtoll(digits.c_str(), nullptr, 10);
      return marker(0x1, 3) + bigEndian(static_cast<std::uint64_t>(number), 8);
    }
    const std::uint64_t number = std::strtoull(digits.c_str(), nullptr, 10);
    if (number >> 63U != 0) return marker(0x1, 4) + bigEndian(0, 8) + bigEndian(number, 8);
    const unsigned room = style_.flag() ? 3 : roomFor(number);
    return marker(0x1, room) + bigEndian(number, 1U << room);
  }

  std::string reals(double number) {
    const auto narrow = static_cast<float>(number);
    if (static_cast<double>(narrow) != number || style_.flag()) return "\x23" + real(number);
    return "\x22" + bigEndian(std::bit_cast<std::uint32_t>(narrow), 4);
  }
  static std::string real(double number) {
    return bigEndian(std::bit_cast<std::uint64_t>(number), 8);
  }

  Bytes& style_;
  bool shares_;
  std::vector<Object> objects_;
  std::map<Object, std::size_t> known_;
};

}  // namespace

std::string binaryList(const Value& value, Bytes& style) { return BinaryWriter(style).list(value); }

}  // namespace kelvane::fuzz
