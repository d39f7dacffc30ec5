#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "console/report/redaction/SecretForms.h"

namespace kelvane::console {
namespace {

// Of a name that has one of these in it, or of which the last part is one.
constexpr std::string_view kTellingParts[] = {
    "password", "passwd",     "passphrase", "passcode",  "pwd",        "secret",  "token",
    "apikey",   "credential", "signature",  "accesskey", "privatekey", "authkey", "authorization"};
constexpr std::string_view kTellingNames[] = {"key", "sig", "auth", "pass", "pw", "sas"};
// What is looked for elsewhere, too; the others' values may be ordinary words.
constexpr std::string_view kPasswords[] = {"password", "passwd", "passphrase", "passcode",
                                           "pwd",      "secret", "token"};
// Before a credential that belongs to them.
constexpr std::string_view kSchemes[] = {"basic", "bearer", "digest", "negotiate", "ntlm", "token"};
constexpr std::string_view kNoValues[] = {"null", "(null", "true", "false", "nil", "none"};
constexpr char kBearer[] = "bearer";
constexpr char kKey[] = "key";
constexpr char kWwn[] = "wwn";

constexpr std::size_t kLongestName = 64;  // of a longer one its end is looked at

template <std::size_t kSize>
bool isAmong(const std::string_view (&all)[kSize], std::string_view text) {
  return std::find(std::begin(all), std::end(all), text) != std::end(all);
}

template <std::size_t kSize>
bool hasOneOf(const std::string_view (&all)[kSize], std::string_view text) {
  return std::any_of(std::begin(all), std::end(all), [text](std::string_view one) {
    return text.find(one) != std::string_view::npos;
  });
}

bool isOfName(char sign) {
  return isLetter(sign) || isDigit(sign) || sign == '_' || sign == '-' || sign == '.';
}

// "x-api-key" and "x_api_key" are one name.
std::string withoutSigns(std::string_view name) {
  std::string plain;
  for (const char sign : inSmallLetters(name)) {
    if (isLetter(sign) || isDigit(sign)) plain += sign;
  }
  return plain;
}

std::string lastPart(std::string_view name) {
  return inSmallLetters(name.substr(name.find_last_of("-_.") + 1));
}

// A name in the text, and where it stands.
struct NameOfSecret {
  std::size_t begin;
  std::size_t end;
  std::string text;
};

struct Range {
  std::size_t begin;
  std::size_t end;
};

// One after the other: what stands behind the name, up to its value.
class ValueOf {
 public:
  ValueOf(const Letters& text, const NameOfSecret& name)
      : text_(text), name_(name), at_(name.end) {}

  std::optional<Range> find() {
    if (const std::optional<Range> element = inElement()) return element;
    if (!skipSign()) return std::nullopt;
    const Range value = isQuotation(text_.at(at_)) ? quoted() : word(at_);
    if (value.begin == value.end) return std::nullopt;
    if (isAmong(kNoValues, shortPart(value))) return std::nullopt;
    return isAmong(kSchemes, shortPart(value)) ? behindScheme(value) : value;
  }

 private:
  static bool isQuotation(char sign) { return sign == '"' || sign == '\''; }

  // As much as is needed to compare it.
  std::string shortPart(const Range& value) const {
    constexpr std::size_t kLongest = 10;
    return text_.part(value.begin, std::min(value.end, value.begin + kLongest));
  }

  void skipBlanks() {
    while (text_.at(at_) == ' ') ++at_;
  }

  // "<password>VALUE<", "<key>password</key> <string>VALUE<"
  std::optional<Range> inElement() {
    constexpr std::string_view kEnd = "</key>";
    constexpr std::string_view kElement = "<string>";
    std::size_t begin = 0;
    if (text_.startsWith(at_, kEnd)) {
      const std::size_t element = text_.findAny("<", at_ + 1, at_ + kLongestName);
      if (!text_.startsWith(element, kElement)) return std::nullopt;
      begin = element + kElement.size();
    } else if (text_.at(at_) == '>' && name_.begin > 0 && text_.at(name_.begin - 1) == '<' &&
               name_.text != kKey) {
      begin = at_ + 1;
    } else {
      return std::nullopt;
    }
    const std::size_t end = text_.findAny("<\n", begin);
    return end == begin ? std::nullopt : std::optional(Range{begin, end});
  }

  // The sign between name and value; behind an option a blank is one.
  bool skipSign() {
    if (isQuotation(text_.at(at_))) ++at_;
    const bool isOption = name_.text.substr(0, 1) == "-" || name_.text == kBearer;
    const bool isBlank = text_.at(at_) == ' ';
    skipBlanks();
    const char sign = text_.at(at_);
    if (sign != ':' && sign != '=') return isOption && isBlank;
    ++at_;
    if (text_.at(at_) == '>' || text_.at(at_) == '=') ++at_;
    skipBlanks();
    return true;
  }

  // Up to the quotation mark of the same kind on this line; without one, as a word.
  Range quoted() const {
    const char mark = text_.at(at_);
    const std::size_t begin = at_ + 1;
    for (std::size_t end = begin; end < begin + kLongestSecret; ++end) {
      const char sign = text_.at(end);
      if (sign == mark) return {begin, end};
      if (sign == '\n') break;
      if (sign == '\\') ++end;
    }
    return word(begin);
  }

  // Signs behind the word are not its own. In an address it goes to the next parameter.
  Range word(std::size_t begin) const {
    constexpr std::string_view kSigns = ";,.()[]{}'";
    constexpr std::string_view kEnds = " \"<>\n&#";
    const char before = name_.begin > 0 ? text_.at(name_.begin - 1) : ' ';
    const bool isParameter = before == '?' || before == '&' || before == ';';
    std::size_t end = text_.findAny(kEnds.substr(0, isParameter ? kEnds.size() : 5), begin);
    while (end > begin && kSigns.find(text_.at(end - 1)) != std::string_view::npos) --end;
    return {begin, end};
  }

  // The scheme tells nothing; without anything behind it, it is none.
  Range behindScheme(const Range& scheme) const {
    if (text_.at(scheme.end) != ' ') return scheme;
    const Range value = word(scheme.end + 1);
    return value.begin == value.end ? scheme : value;
  }

  const Letters& text_;
  const NameOfSecret& name_;
  std::size_t at_;
};

void addValue(const Letters& text, const NameOfSecret& name, Secret secret, const Range& value,
              FoundSecrets& found) {
  const std::string plain = text.part(value.begin, value.end);
  const bool isTelling = secret == Secret::wwn || hasOneOf(kPasswords, withoutSigns(name.text));
  found.push_back({value.begin, value.end, secret, secret == Secret::wwn ? plainWwn(plain) : plain,
                   isTelling ? plain : ""});
}

}  // namespace

bool isNameOfSecret(std::string_view name, Secret& secret) {
  const std::string plain = withoutSigns(name);
  secret = plain == kWwn ? Secret::wwn : Secret::credentials;
  return plain == kWwn || plain == kBearer || hasOneOf(kTellingParts, plain) ||
         isAmong(kTellingNames, lastPart(name));
}

void findNamedSecrets(const Letters& text, FoundSecrets& found) {
  for (std::size_t at = 0; at < text.size();) {
    if (!isOfName(text.at(at))) {
      ++at;
      continue;
    }
    std::size_t end = at;
    while (isOfName(text.at(end))) ++end;
    const std::size_t begin = end - at > kLongestName ? end - kLongestName : at;
    const NameOfSecret name{at, end, text.part(begin, end)};
    Secret secret = Secret::credentials;
    at = end;
    if (!isNameOfSecret(name.text, secret)) continue;
    const std::optional<Range> value = ValueOf(text, name).find();
    if (!value) continue;
    addValue(text, name, secret, *value, found);
    at = value->end;
  }
}

}  // namespace kelvane::console
