#include <algorithm>

#include "console/report/redaction/SecretForms.h"

namespace kelvane::console {
namespace {

constexpr std::size_t kDigits = 16;
constexpr std::size_t kPairs = kDigits / 2;

std::size_t endOfDigits(const Letters& text, std::size_t at) {
  while (isHexadecimal(text.at(at))) ++at;
  return at;
}

// "0x" before the digits is a part of the number.
std::size_t withPrefix(const Letters& text, std::size_t begin) {
  return begin >= 2 && text.at(begin - 1) == 'x' && text.at(begin - 2) == '0' ? begin - 2 : begin;
}

// Pairs of digits with one sign between each two.
struct Pairs {
  std::size_t count = 0;
  std::size_t end = 0;
};

Pairs pairsAt(const Letters& text, std::size_t begin) {
  Pairs pairs{1, begin + 2};
  const char sign = text.at(pairs.end);
  if (sign != ':' && sign != '-') return pairs;
  while (text.at(pairs.end) == sign && endOfDigits(text, pairs.end + 1) == pairs.end + 3) {
    ++pairs.count;
    pairs.end += 3;
  }
  return pairs;
}

}  // namespace

std::string plainWwn(std::string_view wwn) {
  std::string plain;
  for (const char character : inSmallLetters(wwn)) {
    if (character != ':' && character != '-') plain += character;
  }
  return plain.substr(0, 2) == "0x" ? plain.substr(2) : plain;
}

bool isWwn(std::string_view plain) {
  return plain.size() == kDigits && std::all_of(plain.begin(), plain.end(), isHexadecimal);
}

std::string inPairs(std::string_view plain, char sign) {
  std::string pairs;
  for (std::size_t i = 0; i < plain.size(); i += 2) {
    if (i > 0) pairs += sign;
    pairs += plain.substr(i, 2);
  }
  return pairs;
}

void findWwns(const Letters& text, FoundSecrets& found) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = endOfDigits(text, at);
    bool isFound = end - at == kDigits;
    if (end - at == 2) {
      const Pairs pairs = pairsAt(text, at);
      isFound = pairs.count == kPairs;
      // The last one may be the first of others, with another sign.
      end = isFound || pairs.count == 1 ? pairs.end : pairs.end - 2;
    }
    if (isFound) {
      found.push_back({withPrefix(text, at), end, Secret::wwn, plainWwn(text.part(at, end)), ""});
    }
    at = end > at ? end : at + 1;
  }
}

}  // namespace kelvane::console
