#include "tests/support/PlainJson.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/Json.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::test {
namespace {

using Kind = PlainJson::Kind;
using platform::Value;

constexpr char kDigits[] = "0123456789";

void appendUtf8(std::string& text, std::uint32_t character) {
  const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  const auto rest = [&](unsigned shift) { put(0x80U | (character >> shift & 0x3FU)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0U | character >> 6U);
  } else if (character < 0x10000) {
    put(0xE0U | character >> 12U);
    rest(6);
  } else {
    put(0xF0U | character >> 18U);
    rest(12);
    rest(6);
  }
  rest(0);
}

class PlainReader {
 public:
  explicit PlainReader(std::string_view text) : rest_(text) {}

  bool readAll(PlainJson& into) {
    take("\xEF\xBB\xBF");
    skipBlanks();
    if (!read(into, 0)) return false;
    skipBlanks();
    return rest_.empty() && (into.is(Kind::list) || into.is(Kind::object));
  }

 private:
  bool take(std::string_view wanted) {
    if (!rest_.starts_with(wanted)) return false;
    rest_.remove_prefix(wanted.size());
    return true;
  }
  void skipBlanks() { takeAll(" \t\r\n"); }
  std::string_view takeAll(const char* characters) {
    const std::size_t size = std::min(rest_.find_first_not_of(characters), rest_.size());
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }

  bool read(PlainJson& into, int around) {
    if (rest_.starts_with('[') || rest_.starts_with('{')) {
      return around < platform::kJsonDepthLimit && readContainer(into, around + 1);
    }
    if (rest_.starts_with('"')) {
      into.kind = Kind::text;
      return readText(into.text);
    }
    for (const char* word : {"null", "true", "false"}) {
      into.text = word;
      if (take(word)) return true;
    }
    into.kind = Kind::number;
    return readNumber(into.text);
  }

  bool readContainer(PlainJson& into, int around) {
    into.kind = take("[") ? Kind::list : Kind::object;
    if (into.is(Kind::object)) take("{");
    const char* const end = into.is(Kind::list) ? "]" : "}";
    skipBlanks();
    if (take(end)) return true;
    do {
      if (!readElement(into, around)) return false;
      skipBlanks();
    } while (take(","));
    return take(end);
  }

  bool readElement(PlainJson& into, int around) {
    std::string key;
    skipBlanks();
    if (into.is(Kind::object)) {
      if (!readText(key)) return false;
      skipBlanks();
      if (!take(":")) return false;
      skipBlanks();
    }
    PlainJson element;
    if (!read(element, around)) return false;
    if (into.is(Kind::object)) {
      into.set(key, element);
    } else {
      into.elements.push_back(std::move(element));
    }
    return true;
  }

  bool readNumber(std::string& digits) {
    const std::string_view all = rest_;
    take("-");
    const std::string_view whole = takeAll(kDigits);
    if (whole.empty() || (whole.size() > 1 && whole.front() == '0')) return false;
    if (take(".") && takeAll(kDigits).empty()) return false;
    if (take("e") || take("E")) {
      if (!take("+")) take("-");
      if (takeAll(kDigits).empty()) return false;
    }
    digits = all.substr(0, all.size() - rest_.size());
    return std::isfinite(std::strtod(digits.c_str(), nullptr));
  }

  bool readText(std::string& text) {
    if (!take("\"")) return false;
    while (!take("\"")) {
      if (rest_.empty() || static_cast<unsigned char>(rest_.front()) < 0x20) return false;
      if (take("\\")) {
        if (!readEscape(text)) return false;
      } else {
        text += rest_.front();
        rest_.remove_prefix(1);
      }
    }
    return true;
  }

  bool readEscape(std::string& text) {
    static constexpr std::string_view kNames = "\"\\/bfnrt";
    static constexpr std::string_view kMeant = "\"\\/\b\f\n\r\t";
    if (take("u")) return readEscapedCharacter(text);
    const std::size_t found = rest_.empty() ? kNames.npos : kNames.find(rest_.front());
    if (found == kNames.npos) return false;
    text += kMeant[found];
    rest_.remove_prefix(1);
    return true;
  }

  bool readEscapedCharacter(std::string& text) {
    std::uint32_t character = 0;
    if (!readUnit(character) || (character >= 0xDC00 && character < 0xE000)) return false;
    if (character >= 0xD800 && character < 0xDC00) {
      std::uint32_t low = 0;
      if (!take("\\u") || !readUnit(low) || low < 0xDC00 || low >= 0xE000) return false;
      character = 0x10000 + ((character - 0xD800) << 10U) + (low - 0xDC00);
    }
    appendUtf8(text, character);
    return true;
  }

  bool readUnit(std::uint32_t& unit) {
    static constexpr std::string_view kHex = "0123456789abcdef0123456789ABCDEF";
    if (rest_.size() < 4) return false;
    for (int i = 0; i < 4; ++i) {
      const std::size_t digit = kHex.find(rest_.front());
      if (digit == kHex.npos) return false;
      unit = unit << 4U | static_cast<std::uint32_t>(digit % 16);
      rest_.remove_prefix(1);
    }
    return true;
  }

  std::string_view rest_;
};

std::string quoted(const std::string& text) { return nlohmann::json(text).dump(); }

}  // namespace

const PlainJson* PlainJson::find(std::string_view key) const {
  const auto found = std::find(keys.begin(), keys.end(), key);
  return found == keys.end() ? nullptr : &elements[static_cast<std::size_t>(found - keys.begin())];
}

void PlainJson::set(const std::string& key, const PlainJson& value) {
  const auto found = std::find(keys.begin(), keys.end(), key);
  const auto at = static_cast<std::size_t>(found - keys.begin());
  if (found == keys.end()) {
    keys.push_back(key);
    elements.push_back(value);
  } else {
    elements[at] = value;
  }
}

bool PlainJson::operator==(const PlainJson& other) const {
  return kind == other.kind && text == other.text && keys == other.keys &&
         elements == other.elements;
}

std::optional<PlainJson> readPlainJson(std::string_view text) {
  PlainJson value;
  if (!isPlainUtf8(text) || !PlainReader(text).readAll(value)) return std::nullopt;
  return value;
}

PlainJson plainJson(const Value& value) {
  PlainJson plain;
  if (value.isArray()) {
    plain.kind = Kind::list;
    for (const Value& element : value.elements()) plain.elements.push_back(plainJson(element));
  } else if (value.isDictionary()) {
    plain.kind = Kind::object;
    for (const auto& [key, element] : value.entries()) {
      plain.keys.push_back(key);
      plain.elements.push_back(plainJson(element));
    }
  } else if (value.isString()) {
    plain.kind = Kind::text;
    plain.text = value.string();
  } else if (value.isNumber()) {
    plain.kind = Kind::number;
    plain.text = value.digits();
  } else if (value.kind() == Value::Kind::boolean) {
    plain.text = value.truth() ? "true" : "false";
  } else if (value.kind() == Value::Kind::null) {
    plain.text = "null";
  }
  return plain;
}

std::string printed(const PlainJson& value, std::size_t level) {
  if (value.is(Kind::text)) return quoted(value.text);
  if (!value.is(Kind::list) && !value.is(Kind::object)) return value.text;
  const std::string margin(2 * level, ' ');
  std::string text = value.is(Kind::list) ? "[" : "{";
  for (std::size_t i = 0; i < value.elements.size(); ++i) {
    text.append(i == 0 ? "\n" : ",\n").append(margin).append("  ");
    if (value.is(Kind::object)) text.append(quoted(value.keys[i])).append(": ");
    text.append(printed(value.elements[i], level + 1));
  }
  if (!value.elements.empty()) text.append("\n").append(margin);
  return text.append(value.is(Kind::list) ? "]" : "}");
}

}  // namespace kelvane::test
