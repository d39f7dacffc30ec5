#include "console/report/redaction/Redaction.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "console/report/redaction/SecretForms.h"

namespace kelvane::console {
namespace {

constexpr std::size_t kShortestName = 2;
constexpr std::size_t kShortestNumber = 5;  // of a user whose name is one: "17" is a job as well
constexpr std::size_t kShortestPassword = 4;
constexpr std::size_t kShortestWwn = 6;  // of one that is written in a form of its own

bool isNumber(std::string_view text) { return std::all_of(text.begin(), text.end(), isDigit); }

bool hasLength(std::string_view text, std::size_t shortest) {
  return text.size() >= shortest && text.size() <= kLongestSecret;
}

// Whether it is a secret also within a longer word: no other word has it in it by chance.
bool isTelling(std::string_view text) {
  constexpr std::size_t kTellingLength = 8;
  return text.size() >= kTellingLength;
}

// In the order of the text; of those that overlap one, named for the first.
FoundSecrets apart(FoundSecrets found) {
  std::stable_sort(
      found.begin(), found.end(), [](const FoundSecret& one, const FoundSecret& other) {
        return one.begin != other.begin ? one.begin < other.begin : one.end > other.end;
      });
  FoundSecrets all;
  for (FoundSecret& one : found) {
    if (!all.empty() && one.begin < all.back().end) {
      all.back().end = std::max(all.back().end, one.end);
    } else {
      all.push_back(std::move(one));
    }
  }
  return all;
}

// Where stand-ins begin and end, in the text: what is glued to one stands alone beside it.
WordFinder::Borders bordersOf(const FoundSecrets& found) {
  WordFinder::Borders borders;
  for (const FoundSecret& one : found) {
    borders.insert(one.begin);
    borders.insert(one.end);
  }
  return borders;
}

void placeInText(const Letters& letters, std::size_t from, FoundSecrets& found) {
  for (std::size_t i = from; i < found.size(); ++i) {
    found[i].begin = letters.placeInText(found[i].begin);
    found[i].end = letters.placeInText(found[i].end);
  }
}

void findForms(const Letters& letters, FoundSecrets& found) {
  const std::size_t before = found.size();
  findHomes(letters, found);
  findWwns(letters, found);
  findUserInformation(letters, found);
  findNamedSecrets(letters, found);
  placeInText(letters, before, found);
}

// Once more where something stands: a word may be glued to it.
void findWords(const std::vector<Letters>& readings, WordFinder& words, FoundSecrets& found) {
  const auto find = [&](const WordFinder::Borders& borders) {
    for (const Letters& letters : readings) {
      const std::size_t before = found.size();
      words.findIn(letters, borders, found);
      placeInText(letters, before, found);
    }
  };
  find({});
  if (!found.empty()) find(bordersOf(found));
}

// The whole text as the value of its name.
void findAsValue(std::string_view text, std::string_view name, FoundSecrets& found) {
  Secret secret = Secret::credentials;
  if (text.empty() || !isNameOfSecret(name, secret)) return;
  const std::string letters = inSmallLetters(text);
  found.push_back(
      {0, text.size(), secret, secret == Secret::wwn ? plainWwn(letters) : letters, letters});
}

}  // namespace

void Redaction::addUser(std::string_view name) {
  const std::size_t shortest = isNumber(name) ? kShortestNumber : kShortestName;
  if (isSystemUser(name) || !hasLength(name, shortest)) return;
  const std::string letters = inSmallLetters(name);
  words_.add(letters, {Secret::user, letters, isTelling(name)});
}

void Redaction::addHome(std::string_view folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
  if (folder.substr(0, 1) != "/" || folder == "/nonexistent" || !hasLength(folder, 2)) return;
  const std::string letters = inSmallLetters(folder);
  words_.add(letters, {Secret::home, letters, false});
}

void Redaction::addWwn(std::string_view wwn) {
  if (!hasLength(wwn, kShortestWwn)) return;
  const std::string plain = plainWwn(wwn);
  numberOf(Secret::wwn, plain);
  for (const std::string& letters : {inSmallLetters(wwn), plain}) {
    words_.add(letters, {Secret::wwn, plain, isWwn(plain)});
  }
  if (!isWwn(plain)) return;
  for (const char sign : {':', '-'}) words_.add(inPairs(plain, sign), {Secret::wwn, plain, true});
}

void Redaction::addPassword(std::string_view password) {
  if (!hasLength(password, kShortestPassword)) return;
  const std::string letters = inSmallLetters(password);
  words_.add(letters, {Secret::credentials, letters, isTelling(password)});
}

void Redaction::learn(std::string_view text, std::string_view name) {
  for (const FoundSecret& one : secretsIn(text, name, nullptr)) {
    if (one.word.empty()) continue;
    switch (one.secret) {
      case Secret::home:
        addHome(one.key);
        addUser(one.word);
        break;
      case Secret::wwn:
        addWwn(one.word);
        break;
      case Secret::credentials:
        addPassword(one.word);
        break;
      case Secret::user:
        addUser(one.word);
        break;
    }
  }
}

std::string Redaction::applied(std::string_view text, std::string_view name, std::size_t shown) {
  FoundSecrets found = secretsIn(text, name, &words_);
  std::string result;
  std::size_t at = 0;
  const std::size_t end = std::min(shown, text.size());
  for (const FoundSecret& one : apart(std::move(found))) {
    if (one.begin >= end) break;
    result.append(text.substr(at, one.begin - at)).append(standIn(one.secret, one.key));
    at = one.end;
  }
  return at < end ? result.append(text.substr(at, end - at)) : result;
}

// As it is meant before as it stands: of two that are the same, the first one names it.
FoundSecrets Redaction::secretsIn(std::string_view text, std::string_view name, WordFinder* words) {
  FoundSecrets found;
  findAsValue(text, name, found);
  std::vector<Letters> readings;
  if (!hasNoEscapes(text)) readings.push_back(asItIsMeant(text));
  readings.push_back(asItStands(text));
  for (const Letters& letters : readings) findForms(letters, found);
  if (words != nullptr) findWords(readings, *words, found);
  for (const Letters& letters : readings) looks_ += letters.looks();
  return found;
}

std::size_t Redaction::numberOf(Secret secret, const std::string& key) {
  auto& numbers = numbers_[static_cast<std::size_t>(secret)];
  return numbers.try_emplace(key, numbers.size() + 1).first->second;
}

std::string Redaction::standIn(Secret secret, const std::string& key) {
  const auto kind = static_cast<std::size_t>(secret);
  replaced_[kind].insert(key);
  ++places_[kind];
  std::string text = "[";
  text.append(kSecretKinds[kind].standIn).append("-");
  return text.append(std::to_string(numberOf(secret, key))).append("]");
}

Redaction::Count Redaction::count(Secret secret) const {
  const auto kind = static_cast<std::size_t>(secret);
  return {replaced_[kind].size(), places_[kind]};
}

}  // namespace kelvane::console
