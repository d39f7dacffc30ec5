#include "console/devices/Nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace kelvane::console {
namespace {

constexpr std::size_t kMostMistakes = 3;

std::string plain(const std::string& wwn) {
  std::string text;
  for (const char sign : wwn) {
    const auto letter = static_cast<unsigned char>(sign);
    if (std::isalnum(letter) != 0) text.push_back(static_cast<char>(std::tolower(letter)));
  }
  return text;
}

// How many letters have to be put in, taken out or replaced.
std::size_t mistakesBetween(const std::string& one, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string nearestWwn(const std::string& wwn, const std::vector<std::string>& known) {
  const std::string given = plain(wwn);
  std::size_t fewest = std::min(kMostMistakes, given.size() / 2) + 1;
  std::string nearest;
  for (const std::string& one : known) {
    const std::size_t mistakes = mistakesBetween(given, plain(one));
    if (mistakes >= fewest) continue;
    fewest = mistakes;
    nearest = one;
  }
  return nearest;
}

}  // namespace kelvane::console
