#include "tests/fuzz/laws/RedactionLaws.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

constexpr char kStandIn = '\x01';  // in the place of each

// How long the stand-in is that the text begins with; 0 where it begins with none.
std::size_t standInAt(std::string_view text) {
  for (const std::string_view start : {"[user-", "[home-", "[wwn-", "[credentials-"}) {
    if (!text.starts_with(start)) continue;
    const std::size_t end = text.find_first_not_of("0123456789", start.size());
    return end != text.npos && end > start.size() && text[end] == ']' ? end + 1 : 0;
  }
  return 0;
}

std::string small(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
  }
  return text;
}

std::string withoutStandIns(const std::string& shown) {
  std::string text;
  for (std::size_t at = 0; at < shown.size();) {
    const std::size_t length = standInAt(std::string_view(shown).substr(at));
    text += length > 0 ? kStandIn : shown[at];
    at += length > 0 ? length : 1;
  }
  return small(text);
}

template <std::size_t kSize>
bool isOneOf(const char* const (&all)[kSize], const std::string& text) {
  return std::find(std::begin(all), std::end(all), small(text)) != std::end(all);
}

bool isDigitOf(int base, char character) {
  const auto byte = static_cast<unsigned char>(character);
  return (base == 16 ? std::isxdigit(byte) : std::isdigit(byte)) != 0;
}

bool isLetterOfName(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || std::isalpha(byte) != 0;
}

// Whether a word goes on from the one to the other.
bool goesOn(char one, char other) {
  return (isLetterOfName(one) && isLetterOfName(other)) ||
         (isDigitOf(10, one) && isDigitOf(10, other));
}

bool standsAlone(const std::string& text, std::size_t begin, std::size_t end) {
  return (begin == 0 || !goesOn(text[begin - 1], text[begin])) &&
         (end == text.size() || !goesOn(text[end - 1], text[end]));
}

// How many pairs of digits with this sign between each two begin there.
std::size_t pairsAt(const std::string& text, std::size_t at, char sign) {
  std::size_t pairs = 0;
  for (;; at += 3) {
    std::size_t end = at;
    while (end < text.size() && isDigitOf(16, text[end])) ++end;
    if (end != at + 2) return pairs;
    ++pairs;
    if (end == text.size() || text[end] != sign) return pairs;
  }
}

bool isStandIn(const std::string& text, std::size_t at) {
  return at < text.size() && text[at] == kStandIn;
}

// Those that stand there from the first digit on.
bool hasWwnAt(const std::string& text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() && isDigitOf(16, text[end])) ++end;
  if (end - begin == 16) return !isStandIn(text, begin - 1) && !isStandIn(text, end);
  if (end - begin != 2 || isStandIn(text, begin - 1)) return false;
  for (const char sign : {':', '-'}) {
    const bool isSigned = begin > 0 && text[begin - 1] == sign;
    const bool hasPairBefore = isSigned && begin > 2 && isDigitOf(16, text[begin - 2]) &&
                               isDigitOf(16, text[begin - 3]) &&
                               (begin == 3 || !isDigitOf(16, text[begin - 4]));
    if (hasPairBefore || (isSigned && isStandIn(text, begin - 2))) continue;
    constexpr std::size_t kEightPairs = 8 * 2 + 7;  // with the signs between them
    const std::size_t behind = begin + kEightPairs;
    if (pairsAt(text, begin, sign) != 8 || isStandIn(text, behind)) continue;
    if (!(behind < text.size() && text[behind] == sign && isStandIn(text, behind + 1))) return true;
  }
  return false;
}

}  // namespace

bool isWord(const std::string& text) {
  return !text.empty() && text.size() <= 255 &&
         std::all_of(text.begin(), text.end(), [](char character) {
           return isLetterOfName(character) || isDigitOf(10, character) || character == '_';
         });
}

bool isSystemName(const std::string& name) {
  constexpr const char* kSystem[] = {"root",    "wheel", "daemon", "nobody",
                                     "nogroup", "staff", "shared", "guest"};
  return isOneOf(kSystem, name);
}

bool isAboveHomes(const std::string& name) {
  constexpr const char* kAbove[] = {"users", "home"};
  return isOneOf(kAbove, name);
}

bool isSecretName(const std::string& name) {
  const bool isNumber = std::all_of(name.begin(), name.end(),
                                    [](char character) { return isDigitOf(10, character); });
  return isWord(name) && name.size() >= (isNumber ? 5 : 2) && !isSystemName(name);
}

bool isValue(const std::string& word) {
  constexpr const char* kOthers[] = {"null",   "true",   "false",     "nil",  "none", "basic",
                                     "bearer", "digest", "negotiate", "ntlm", "token"};
  return isWord(word) && !isOneOf(kOthers, word);
}

void requireHidden(const std::string& word, const std::string& shown) {
  const std::string text = withoutStandIns(shown);
  const std::string known = small(word);
  for (std::size_t at = text.find(known); at != text.npos; at = text.find(known, at + 1)) {
    require(known.size() < 8 && !standsAlone(text, at, at + known.size()), "no secret word is left",
            shown);
  }
}

void requireAbsent(const std::string& text, const std::string& shown) {
  require(small(shown).find(small(text)) == std::string::npos, "a known WWN is left nowhere",
          shown);
}

void requireNoWwn(const std::string& shown) {
  const std::string text = withoutStandIns(shown);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isFirst = isDigitOf(16, text[at]) && (at == 0 || !isDigitOf(16, text[at - 1]));
    require(!isFirst || !hasWwnAt(text, at), "no WWN is left", shown);
  }
}

void requireBeginning(const std::string& beginning, const std::string& shown) {
  require(shown.starts_with(beginning), "what is cut is the beginning of the whole", beginning);
}

void requireReplaced(const std::string& before, const std::string& after,
                     const std::string& shown) {
  const bool isAround = shown.size() >= before.size() + after.size() && shown.starts_with(before) &&
                        shown.ends_with(after);
  require(isAround, "the rest of a line stays", shown);
  const std::string between =
      shown.substr(before.size(), shown.size() - before.size() - after.size());
  require(!between.empty() && standInAt(between) == between.size(), "a secret has a stand-in",
          shown);
}

}  // namespace kelvane::fuzz
