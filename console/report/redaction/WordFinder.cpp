#include "console/report/redaction/WordFinder.h"

#include <algorithm>
#include <numeric>

namespace kelvane::console {
namespace {

std::uint64_t keyOf(std::uint32_t above, char letter) {
  return std::uint64_t{above} << 8U | static_cast<unsigned char>(letter);
}

}  // namespace

// Where a text's words begin and end.
class WordFinder::WordEnds {
 public:
  WordEnds(const Letters& text, const Borders& borders) : text_(text), borders_(borders) {}

  bool fits(const Word& word, std::size_t end) const {
    if (word.meaning.isAlsoWithin) return true;
    if (word.meaning.secret == Secret::home) return endsHome(end);
    return isEnd(end) && isEnd(end - word.length);
  }

 private:
  bool endsHome(std::size_t end) const {
    const char behind = text_.at(end);
    return (!isLetter(behind) && !isDigit(behind)) || isBorder(end);
  }

  bool isEnd(std::size_t place) const {
    return place == 0 || isBetweenWords(text_.at(place - 1), text_.at(place)) || isBorder(place);
  }

  bool isBorder(std::size_t place) const {
    return !borders_.empty() && borders_.count(text_.placeInText(place)) > 0;
  }

  const Letters& text_;
  const Borders& borders_;
};

void WordFinder::add(const std::string& letters, const Meaning& meaning) {
  if (letters.empty()) return;
  Place place = 0;
  for (const char letter : letters) {
    const auto [child, isNew] =
        children_.try_emplace(keyOf(place, letter), static_cast<Place>(nodes_.size()));
    if (isNew)
      nodes_.push_back({.above = place, .letter = letter, .depth = nodes_[place].depth + 1});
    place = child->second;
  }
  looks_ += letters.size();
  if (nodes_[place].word != kNoWord) return;
  nodes_[place].word = words_.size();
  words_.push_back({letters.size(), meaning});
  isLinked_ = false;
}

void WordFinder::findIn(const Letters& text, const Borders& borders, FoundSecrets& found) {
  if (words_.empty()) return;
  if (!isLinked_) link();
  const WordEnds ends(text, borders);
  Place place = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    place = step(place, text.at(at));
    if (const Word* word = longestAt(place, ends, at + 1)) {
      found.push_back({at + 1 - word->length, at + 1, word->meaning.secret, word->meaning.key, ""});
    }
  }
}

WordFinder::Place WordFinder::next(Place from, char letter) const {
  ++looks_;
  const auto child = children_.find(keyOf(from, letter));
  return child == children_.end() ? 0 : child->second;
}

WordFinder::Place WordFinder::step(Place from, char letter) const {
  for (; from != 0; from = nodes_[from].shorter) {
    if (const Place to = next(from, letter); to != 0) return to;
  }
  return next(0, letter);
}

// From the root downwards: what is shorter has its links before.
void WordFinder::link() {
  std::vector<Place> downwards(nodes_.size());
  std::iota(downwards.begin(), downwards.end(), Place{0});
  std::stable_sort(downwards.begin(), downwards.end(), [this](Place one, Place other) {
    return nodes_[one].depth < nodes_[other].depth;
  });
  for (const Place place : downwards) {
    Node& node = nodes_[place];
    if (node.depth > 1) node.shorter = step(nodes_[node.above].shorter, node.letter);
    const Node& shorter = nodes_[node.shorter];
    node.shorterWord = shorter.word != kNoWord ? node.shorter : shorter.shorterWord;
  }
  isLinked_ = true;
}

const WordFinder::Word* WordFinder::longestAt(Place place, const WordEnds& ends,
                                              std::size_t end) const {
  if (nodes_[place].word == kNoWord) place = nodes_[place].shorterWord;
  for (; place != 0; place = nodes_[place].shorterWord) {
    ++looks_;
    const Word& word = words_[nodes_[place].word];
    if (ends.fits(word, end)) return &word;
  }
  return nullptr;
}

}  // namespace kelvane::console
