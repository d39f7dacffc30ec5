#include "console/report/redaction/Letters.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <utility>

namespace kelvane::console {
namespace {

// What stands for something else: how long it is, and what it stands for.
struct Escape {
  std::size_t length = 0;  // 0: there is none
  std::string meaning = {};
};

bool areHexadecimal(std::string_view digits) {
  return std::all_of(digits.begin(), digits.end(), isHexadecimal);
}

std::uint32_t numberIn(std::string_view digits, int base) {
  std::uint32_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  return number;
}

char byteOf(std::uint32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); }

// In UTF-8; a half of a pair is taken for a character.
std::string encoded(std::uint32_t code) {
  if (code < 0x80) return {byteOf(code)};
  if (code < 0x800) return {byteOf(0xC0U | code >> 6U), byteOf(0x80U | (code & 0x3FU))};
  return {byteOf(0xE0U | (code >> 12U & 0xFU)), byteOf(0x80U | (code >> 6U & 0x3FU)),
          byteOf(0x80U | (code & 0x3FU))};
}

// "%2F", also "%252F".
Escape escapeOfAddress(std::string_view text) {
  std::size_t digits = 1;
  while (text.substr(digits, 2) == "25" && text.size() >= digits + 4 &&
         areHexadecimal(text.substr(digits + 2, 2))) {
    digits += 2;
  }
  const std::string_view code = text.substr(digits, 2);
  if (code.size() < 2 || !areHexadecimal(code)) return {};
  return {digits + 2, {byteOf(numberIn(code, 16))}};
}

// "\/", "\n", "\u002f"; of several backslashes each escapes the next, and none is read twice.
Escape escapeOfJson(std::string_view text) {
  const std::size_t sign = std::min(text.find_first_not_of('\\'), text.size());
  if (sign == text.size()) return {sign, "\\"};
  const std::string_view code = text.substr(sign + 1, 4);
  if ((text[sign] == 'u' || text[sign] == 'U') && code.size() == 4 && areHexadecimal(code)) {
    return {sign + 5, encoded(numberIn(code, 16))};
  }
  constexpr std::string_view kEndsOfLines = "nrtbf";
  const bool isEnd = kEndsOfLines.find(text[sign]) != std::string_view::npos;
  return {sign + 1, {isEnd ? '\n' : text[sign]}};
}

// "#47;", "#x2f;" behind an ampersand.
Escape numberedCharacter(std::string_view text) {
  constexpr std::size_t kLongest = 8;
  const std::size_t end = text.substr(0, kLongest).find(';');
  if (text.substr(0, 1) != "#" || end == std::string_view::npos) return {};
  const bool isHex = text.substr(1, 1) == "x" || text.substr(1, 1) == "X";
  const std::size_t start = isHex ? 2 : 1;
  const std::string_view digits = text.substr(start, end - start);
  const auto fits = isHex ? isHexadecimal : isDigit;
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), fits)) return {};
  return {end + 1, encoded(numberIn(digits, isHex ? 16 : 10))};
}

// "&amp;", "&#47;"; also "&amp;amp;".
Escape escapeOfMarkup(std::string_view text) {
  constexpr std::string_view kAmpersand = "amp;";
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}};
  std::size_t at = 1;
  while (text.substr(at, kAmpersand.size()) == kAmpersand) at += kAmpersand.size();
  for (const auto& [name, meaning] : kNamed) {
    if (text.substr(at, name.size()) == name) return {at + name.size(), {meaning}};
  }
  if (const Escape numbered = numberedCharacter(text.substr(at)); numbered.length > 0) {
    return {at + numbered.length, numbered.meaning};
  }
  return at > 1 ? Escape{at, "&"} : Escape{};
}

Escape escapeAt(std::string_view text) {
  if (text.front() == '%') return escapeOfAddress(text);
  if (text.front() == '\\') return escapeOfJson(text);
  return text.front() == '&' ? escapeOfMarkup(text) : Escape{};
}

}  // namespace

char Letters::at(std::size_t place) const {
  ++looks_;
  return place < letters_.size() ? letters_[place] : '\n';
}

bool Letters::startsWith(std::size_t place, std::string_view start) const {
  looks_ += start.size();
  return place < letters_.size() && letters_.compare(place, start.size(), start) == 0;
}

std::size_t Letters::findAny(std::string_view signs, std::size_t from, std::size_t limit) const {
  const std::size_t found = std::min({letters_.find_first_of(signs, from), limit, letters_.size()});
  looks_ += found > from ? found - from + 1 : 1;
  return found;
}

std::string Letters::part(std::size_t begin, std::size_t end) const {
  looks_ += end - begin;
  return letters_.substr(begin, end - begin);
}

std::size_t Letters::placeInText(std::size_t place) const {
  return places_.empty() ? place : places_[place];
}

void Letters::add(std::string_view letters, std::size_t placeInText) {
  letters_ += letters;
  places_.insert(places_.end(), letters.size(), placeInText);
}

Letters asItStands(std::string_view text) {
  Letters letters;
  letters.letters_ = inSmallLetters(text);
  return letters;
}

Letters asItIsMeant(std::string_view text) {
  Letters letters;
  for (std::size_t at = 0; at < text.size();) {
    const Escape escape = escapeAt(text.substr(at));
    letters.add(escape.length > 0 ? std::string_view(escape.meaning) : text.substr(at, 1), at);
    const std::size_t length = std::max<std::size_t>(escape.length, 1);
    letters.looks_ += length;
    at += length;
  }
  letters.places_.push_back(text.size());
  letters.letters_ = inSmallLetters(letters.letters_);
  return letters;
}

bool hasNoEscapes(std::string_view text) {
  return text.find_first_of("%\\&") == std::string_view::npos;
}

bool isLetter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || std::isalpha(byte) != 0;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isHexadecimal(char character) {
  return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

bool isBetweenWords(char before, char behind) {
  return !(isLetter(before) && isLetter(behind)) && !(isDigit(before) && isDigit(behind));
}

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  unsigned char before = 0;
  for (char& character : small) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isLatinCapital = before == 0xC3 && byte >= 0x80 && byte <= 0x9E && byte != 0x97;
    if (isLatinCapital || (byte >= 'A' && byte <= 'Z')) character = byteOf(byte + 0x20U);
    before = byte;
  }
  return small;
}

}  // namespace kelvane::console
