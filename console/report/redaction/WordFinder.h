// Finds many words in a text, all in one pass over it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "console/report/redaction/Letters.h"
#include "console/report/redaction/Secret.h"

namespace kelvane::console {

// A trie of the words with a link from each of its places to the longest other one that the letters
// read so far end with, so that no letter is read twice.
class WordFinder {
 public:
  // What a word is.
  struct Meaning {
    Secret secret = Secret::user;
    std::string key = {};
    bool isAlsoWithin = false;  // found within longer words as well
  };

  // `letters` are small ones. A word that is known already stays what it is.
  void add(const std::string& letters, const Meaning& meaning);

  // Places of a text where a word ends as well, whatever stands there.
  using Borders = std::unordered_set<std::size_t>;

  // Of the words that end at one place the longest.
  void findIn(const Letters& text, const Borders& borders, FoundSecrets& found);

  // How many places were looked at so far.
  std::size_t looks() const { return looks_; }

 private:
  struct Word {
    std::size_t length = 0;
    Meaning meaning;
  };
  class WordEnds;
  using Place = std::uint32_t;  // in nodes_; 0 is the root
  static constexpr std::size_t kNoWord = static_cast<std::size_t>(-1);
  struct Node {
    Place above = 0;
    char letter = 0;
    std::uint32_t depth = 0;
    std::size_t word = kNoWord;
    Place shorter = 0;      // the longest other beginning that its letters end with
    Place shorterWord = 0;  // the longest shorter word that they end with
  };

  Place next(Place from, char letter) const;  // 0: none
  Place step(Place from, char letter) const;
  void link();
  const Word* longestAt(Place place, const WordEnds& ends, std::size_t end) const;

  std::vector<Word> words_;
  std::vector<Node> nodes_ = {{}};
  std::unordered_map<std::uint64_t, Place> children_;  // by the place above and the letter
  bool isLinked_ = false;
  mutable std::size_t looks_ = 0;
};

}  // namespace kelvane::console
