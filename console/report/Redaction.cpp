#include "console/report/Redaction.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace kelvane::console {
namespace {

constexpr std::size_t kWwnDigits = 16;
constexpr std::size_t kShortestName = 2;
constexpr std::size_t kShortestPassword = 4;
constexpr std::size_t kShortestWwn = 6;  // of one that is written in a form of its own

constexpr std::string_view kHomesOfAll[] = {"/Users/", "/home/"};
// What a path ends with where it stands in a text.
constexpr std::string_view kEndsOfPaths = "\"'<>|;,:()[]{}=\n";
constexpr std::string_view kEndsOfUrls = "\"'<>;,()[]{} \n";
constexpr std::string_view kSystemUsers[] = {"root",    "wheel", "daemon", "nobody",
                                             "nogroup", "staff", "Shared", "Guest"};
constexpr std::string_view kSecretParameters[] = {
    "token",    "access_token", "auth", "key",    "api_key", "apikey",   "pass",
    "password", "passwd",       "pwd",  "secret", "sig",     "signature"};

bool isWordCharacter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || std::isalnum(byte) != 0 || character == '_';
}

bool isHexadecimal(char character) {
  return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

bool startsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Whether a word may end before this rest of the text.
bool isWordEnd(std::string_view rest) { return rest.empty() || !isWordCharacter(rest.front()); }

bool isHomeEnd(std::string_view rest) {
  return isWordEnd(rest) && (rest.empty() || (rest.front() != '-' && rest.front() != '.'));
}

bool isSystemUser(const std::string& name) {
  return std::find(std::begin(kSystemUsers), std::end(kSystemUsers), name) !=
         std::end(kSystemUsers);
}

// How long the WWN is that the text starts with: 16 hexadecimal digits, with a sign between each
// two of them or not, and nothing else behind them; 0 where there is none.
std::size_t lengthOfWwn(std::string_view text) {
  std::size_t digits = 0;
  std::size_t at = 0;
  char sign = 0;
  for (; at < text.size() && digits < kWwnDigits; ++at) {
    if (isHexadecimal(text[at])) {
      ++digits;
      continue;
    }
    const bool isSign = (text[at] == ':' || text[at] == '-') && digits % 2 == 0 && digits > 0;
    if (!isSign || (sign != 0 && text[at] != sign) || (sign == 0 && digits != 2)) return 0;
    if (!isHexadecimal(text[at - 1])) return 0;
    sign = text[at];
  }
  const bool isWhole = digits == kWwnDigits && isWordEnd(text.substr(at));
  return isWhole && (sign == 0 || at == kWwnDigits + kWwnDigits / 2 - 1) ? at : 0;
}

// One text for all forms of a WWN.
std::string plainWwn(std::string_view wwn) {
  std::string plain;
  for (const char character : wwn) {
    if (character == ':' || character == '-') continue;
    plain += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
  }
  return plain;
}

bool isNumber(std::string_view text) {
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

// One text for all that get one stand-in.
std::string keyOf(const std::string& text, Secret secret) {
  return secret == Secret::wwn ? plainWwn(text) : text;
}

// Who and with what in "://WHO:WHAT@host", which the text starts with; nothing where there is
// nobody. A password may hold signs that were not written as they have to be.
std::optional<std::string_view> userInformation(std::string_view text) {
  constexpr std::string_view kStart = "://";
  constexpr std::string_view kEnds = " \"<>\n";
  if (!startsWith(text, kStart)) return std::nullopt;
  const std::string_view rest = text.substr(kStart.size());
  const std::string_view url = rest.substr(0, rest.find_first_of(kEnds));
  const std::string_view authority = url.substr(0, url.find_first_of("/?#"));
  const std::size_t colon = authority.find(':');
  const bool hasPort = colon == std::string_view::npos || isNumber(authority.substr(colon + 1));
  std::size_t at = authority.rfind('@');
  if (at == std::string_view::npos && !hasPort) at = url.rfind('@');
  if (at == std::string_view::npos || at == 0) return std::nullopt;
  return url.substr(0, at);
}

// The value of "?token=VALUE", which the text starts with; empty where it is no secret.
std::string_view secretParameter(std::string_view text) {
  if (text.empty() || (text.front() != '?' && text.front() != '&')) return {};
  constexpr std::size_t kLongestName = 32;
  const std::size_t equals = text.substr(0, kLongestName).find('=');
  if (equals == std::string_view::npos) return {};
  std::string name(text.substr(1, equals - 1));
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  if (std::find(std::begin(kSecretParameters), std::end(kSecretParameters), name) ==
      std::end(kSecretParameters)) {
    return {};
  }
  const std::string_view rest = text.substr(equals + 1);
  return rest.substr(0, std::min(rest.find_first_of("&#"), rest.find_first_of(kEndsOfUrls)));
}

// The user whose home the text starts with; a name with blanks only where a path goes on behind it.
std::string_view userOfHome(std::string_view text) {
  for (const std::string_view above : kHomesOfAll) {
    if (!startsWith(text, above)) continue;
    const std::string_view rest = text.substr(above.size());
    const std::size_t end = std::min(rest.find('/'), rest.find_first_of(kEndsOfPaths));
    const std::string_view name = rest.substr(0, end);
    const bool goesOn = end < rest.size() && rest[end] == '/';
    return goesOn ? name : name.substr(0, name.find(' '));
  }
  return {};
}

}  // namespace

// A text on its way through the redaction.
class Redaction::Reading {
 public:
  Reading(Redaction& redaction, std::string_view text) : redaction_(redaction), text_(text) {}

  std::string result() {
    while (at_ < text_.size()) {
      if (!takeUrl() && !takeParameter() && !takeHome() && !(isWordStart() && takeWord())) {
        result_ += text_[at_++];
      }
    }
    return std::move(result_);
  }

 private:
  std::string_view rest() const { return text_.substr(at_); }
  bool isWordStart() const {
    return isWordCharacter(text_[at_]) && (at_ == 0 || !isWordCharacter(text_[at_ - 1]));
  }

  void replace(std::size_t length, Secret secret, const std::string& key) {
    result_ += redaction_.standIn(secret, key);
    at_ += length;
  }

  bool takeUrl() {
    const auto who = userInformation(rest());
    if (!who) return false;
    result_ += "://";
    at_ += 3;
    replace(who->size(), Secret::credentials, std::string(*who));
    return true;
  }

  bool takeParameter() {
    const std::string_view value = secretParameter(rest());
    if (value.empty()) return false;
    const auto before = static_cast<std::size_t>(value.data() - rest().data());
    result_ += rest().substr(0, before);
    at_ += before;
    replace(value.size(), Secret::credentials, std::string(value));
    return true;
  }

  bool takeHome() {
    if (text_[at_] != '/') return false;
    for (const std::string& home : redaction_.homes_) {
      if (!startsWith(rest(), home) || !isHomeEnd(rest().substr(home.size()))) continue;
      replace(home.size(), Secret::home, home);
      return true;
    }
    return false;
  }

  bool takeWord() {
    if (takeWwn()) return true;
    for (const Word& word : redaction_.words_) {
      if (!startsWith(rest(), word.text) || !isWordEnd(rest().substr(word.text.size()))) continue;
      replace(word.text.size(), word.secret, keyOf(word.text, word.secret));
      return true;
    }
    return false;
  }

  bool takeWwn() {
    const std::size_t prefix = startsWith(rest(), "0x") || startsWith(rest(), "0X") ? 2 : 0;
    const std::size_t length = lengthOfWwn(rest().substr(prefix));
    if (length == 0) return false;
    replace(prefix + length, Secret::wwn, plainWwn(rest().substr(prefix, length)));
    return true;
  }

  Redaction& redaction_;
  std::string_view text_;
  std::size_t at_ = 0;
  std::string result_;
};

void Redaction::addWord(const std::string& text, Secret secret) {
  for (const Word& word : words_) {
    if (word.text == text) return;
  }
  const auto place = std::find_if(words_.begin(), words_.end(),
                                  [&](const Word& word) { return word.text.size() < text.size(); });
  words_.insert(place, {text, secret});
  numberOf(secret, keyOf(text, secret));
}

void Redaction::addUser(const std::string& name) {
  if (name.size() >= kShortestName && !isSystemUser(name)) addWord(name, Secret::user);
}

void Redaction::addHome(const std::string& folder) {
  std::string home = folder;
  while (home.size() > 1 && home.back() == '/') home.pop_back();
  const bool isOwn = home.size() > 1 && home.front() == '/' && home != "/nonexistent";
  if (!isOwn || std::find(homes_.begin(), homes_.end(), home) != homes_.end()) return;
  const auto place = std::find_if(homes_.begin(), homes_.end(),
                                  [&](const std::string& one) { return one.size() < home.size(); });
  homes_.insert(place, home);
  numberOf(Secret::home, home);
}

void Redaction::addWwn(const std::string& wwn) {
  if (wwn.size() >= kShortestWwn) addWord(wwn, Secret::wwn);
}

void Redaction::learn(std::string_view text) {
  for (std::size_t at = text.find('/'); at < text.size(); at = text.find('/', at + 1)) {
    const std::string_view rest = text.substr(at);
    const std::string name(userOfHome(rest));
    if (!name.empty() && !isSystemUser(name)) {
      addUser(name);
      const std::string_view above = rest.substr(0, rest.find('/', 1) + 1);
      addHome(std::string(above) + name);
    }
    const auto who = at == 0 ? std::nullopt : userInformation(text.substr(at - 1));
    if (!who) continue;
    const std::size_t colon = who->find(':');
    if (colon == std::string_view::npos) continue;
    const std::string password(who->substr(colon + 1));
    numberOf(Secret::credentials, std::string(*who));
    if (password.size() >= kShortestPassword) addWord(password, Secret::credentials);
  }
}

std::string Redaction::applied(std::string_view text) { return Reading(*this, text).result(); }

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
