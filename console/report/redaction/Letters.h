// A text as the redaction reads it: small letters, each with its place in the text.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane::console {

inline constexpr std::size_t kWithoutLimit = std::numeric_limits<std::size_t>::max();

// All looks are counted, so that a test can tell that they grow with the text and no faster.
class Letters {
 public:
  std::size_t size() const { return letters_.size(); }
  // Behind the end, as behind a line, stands a line feed.
  char at(std::size_t place) const;
  bool startsWith(std::size_t place, std::string_view start) const;
  // The first place from there on where one of the signs stands, no further than the limit and the
  // end.
  std::size_t findAny(std::string_view signs, std::size_t from,
                      std::size_t limit = kWithoutLimit) const;
  std::string part(std::size_t begin, std::size_t end) const;

  // Where what the letter stands for begins in the text; of the end, the text's end.
  std::size_t placeInText(std::size_t place) const;

  std::size_t looks() const { return looks_; }

 private:
  friend Letters asItStands(std::string_view text);
  friend Letters asItIsMeant(std::string_view text);
  void add(std::string_view letters, std::size_t placeInText);

  std::string letters_;
  std::vector<std::size_t> places_;  // empty: each letter stands where it is in the text
  mutable std::size_t looks_ = 0;
};

// Letter by letter.
Letters asItStands(std::string_view text);

// With what the escapes of addresses ("%2F"), of JSON ("\/", "\u002f"; also those within others,
// "\\\/") and of markup ("&amp;", "&#47;") stand for.
Letters asItIsMeant(std::string_view text);

// Whether the two are the same, as nothing in the text is an escape.
bool hasNoEscapes(std::string_view text);

bool isLetter(char character);  // of any script, as far as it is not ASCII
bool isDigit(char character);
bool isHexadecimal(char character);

// Whether a word may end between these two: they are not both letters, nor both digits.
bool isBetweenWords(char before, char behind);

// ASCII and Latin letters small.
std::string inSmallLetters(std::string_view text);

}  // namespace kelvane::console
