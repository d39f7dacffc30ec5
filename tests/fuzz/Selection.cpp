#include "tests/fuzz/Selection.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>

#include "tests/fuzz/ListNumber.h"

namespace kelvane::fuzz {
namespace {

using Kind = platform::Value::Kind;

PlainField plainField(const platform::Value& value) {
  switch (value.kind()) {
    case Kind::string:
      return {value.kind(), value.string()};
    case Kind::number:
      return {value.kind(), value.digits()};
    case Kind::date:
      return {value.kind(), std::to_string(value.date().secondsSince1970)};
    default:
      return {value.kind(), ""};
  }
}

const PlainField* fieldOf(const PlainRule& rule, const char* key) {
  const auto found = rule->find(key);
  return found == rule->end() ? nullptr : &found->second;
}

bool isOfferable(const PlainRule& rule) {
  return fieldOf(rule, "ProductID") != nullptr && fieldOf(rule, "Version") != nullptr &&
         fieldOf(rule, "Size") != nullptr && fieldOf(rule, "Hash256") != nullptr;
}

bool isWordCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

std::size_t wordEnd(std::string_view text, std::size_t start) {
  while (start < text.size() && isWordCharacter(text[start])) ++start;
  return start;
}

// Whether a character that ends no line stands there, and one of a word behind it.
bool goesOnBehind(std::string_view text, std::size_t at) {
  return at + 1 < text.size() && (text[at] < '\n' || text[at] > '\r') &&
         isWordCharacter(text[at + 1]);
}

std::int64_t leadingNumber(std::string_view word) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  std::int64_t number = 0;
  for (const char digit : word) {
    if (digit < '0' || digit > '9') break;
    const int value = digit - '0';
    if (number > (kMost - value) / 10) return kMost;
    number = number * 10 + value;
  }
  return number;
}

using Version = std::array<std::int64_t, 3>;

// The first three words with any character between them, the first and then the second as long as
// it can be.
std::optional<Version> threeNumbers(std::string_view text) {
  for (std::size_t start = 0; start < text.size(); ++start) {
    for (std::size_t first = wordEnd(text, start); first > start; --first) {
      if (!goesOnBehind(text, first)) continue;
      for (std::size_t second = wordEnd(text, first + 1); second > first + 1; --second) {
        if (!goesOnBehind(text, second)) continue;
        const std::size_t end = wordEnd(text, second + 1);
        return Version{leadingNumber(text.substr(start, first - start)),
                       leadingNumber(text.substr(first + 1, second - first - 1)),
                       leadingNumber(text.substr(second + 1, end - second - 1))};
      }
    }
  }
  return std::nullopt;
}

bool isAsciiText(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isWholeNumber(const std::string& digits) {
  return digits.find_first_not_of("0123456789", digits[0] == '-' ? 1 : 0) == std::string::npos;
}

template <typename Number>
int signOf(const Number& left, const Number& right) {
  return left < right ? -1 : right < left ? 1 : 0;
}

// Of whole numbers as texts, without zeros in front.
int orderOfDigits(const std::string& left, const std::string& right) {
  const bool isNegative = left[0] == '-';
  if (isNegative != (right[0] == '-')) return isNegative ? -1 : 1;
  const int order =
      left.size() != right.size() ? signOf(left.size(), right.size()) : signOf(left, right);
  return isNegative ? -order : order;
}

// What can be ordered has one kind.
int orderOf(const PlainField& left, const PlainField& right) {
  if (left.kind == Kind::string) return signOf(left.text, right.text);
  if (isWholeNumber(left.text) && isWholeNumber(right.text) && left.text != "-0" &&
      right.text != "-0") {
    return orderOfDigits(left.text, right.text);
  }
  return signOf(std::strtod(left.text.c_str(), nullptr), std::strtod(right.text.c_str(), nullptr));
}

bool areOrdered(const PlainField& left, const PlainField& right) {
  return left.kind == right.kind &&
         (left.kind == Kind::string || left.kind == Kind::number || left.kind == Kind::date);
}

// The highest minimum, by its characters, and of those the highest version; the first of equals.
Choice highest(const std::vector<PlainRule>& rules, const std::vector<std::size_t>& candidates) {
  std::size_t best = candidates.front();
  for (const std::size_t each : candidates) {
    const PlainField& minimum = *fieldOf(rules[each], "MinimumOSVersion");
    const PlainField& version = *fieldOf(rules[each], "Version");
    for (const std::size_t other : candidates) {
      if (other == each || fieldOf(rules[other], "MinimumOSVersion")->text != minimum.text)
        continue;
      if (!areOrdered(version, *fieldOf(rules[other], "Version"))) return {};
      if (version.text == "nan") return {Choice::Kind::untold};
    }
    const int order = signOf(minimum.text, fieldOf(rules[best], "MinimumOSVersion")->text);
    if (order > 0 || (order == 0 && orderOf(version, *fieldOf(rules[best], "Version")) > 0)) {
      best = each;
    }
  }
  return {Choice::Kind::one, best};
}

std::string lastPart(const std::string& text, char separator) {
  return text.substr(text.rfind(separator) + 1);  // the whole where there is none
}

// The name under which what was fetched may lie, none where there is none to look for.
std::optional<std::string> packageName(const std::string& codebase) {
  const std::string name = lastPart(codebase, '/');
  const std::string ending = lastPart(name, '.');
  if (name.find('.') == std::string::npos || ending == "dmg" || ending == "zip") return {};
  return name;
}

std::optional<std::string> expectedName(const std::string& product) {
  if (product == "t2") return "FW_QRX550.img";
  if (product == "sw") return "Manager.app";
  if (product == "t3" || product == "tarselT3USBFW") return "FW_T3.img";
  return {};
}

}  // namespace

std::vector<PlainRule> plainRules(const platform::Value& rules) {
  std::vector<PlainRule> plain;
  if (!rules.isArray()) return plain;
  for (const platform::Value& rule : rules.elements()) {
    PlainRule& one = plain.emplace_back();
    if (!rule.isDictionary()) continue;
    one.emplace();
    for (const auto& [key, value] : rule.entries()) one->insert_or_assign(key, plainField(value));
  }
  return plain;
}

// A value of another kind than it has to be ends the choice with none.
Choice chosenRule(const std::vector<PlainRule>& rules, const std::string& product,
                  const std::string& software, const std::array<std::int64_t, 3>& running) {
  bool isFound = false;
  std::vector<std::size_t> candidates;
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (!rules[i]) return {};
    if (!isOfferable(rules[i])) continue;
    const PlainField& own = *fieldOf(rules[i], "ProductID");
    if (own.kind != Kind::string) return {};
    if (own.text != product) continue;
    if (product != software) return {Choice::Kind::one, i};
    isFound = true;
    const PlainField* const minimum = fieldOf(rules[i], "MinimumOSVersion");
    if (minimum == nullptr) continue;
    if (minimum->kind != Kind::string) return {};
    if (!isAsciiText(minimum->text)) return {Choice::Kind::untold};
    const auto wanted = threeNumbers(minimum->text);
    if (wanted && running >= *wanted) candidates.push_back(i);
  }
  if (!candidates.empty()) return highest(rules, candidates);
  return isFound ? Choice{Choice::Kind::one, rules.size() - 1} : Choice{};
}

std::vector<std::optional<std::string>> describedPaths(
    const std::vector<std::string>& products, const std::vector<PlainRule>& rules,
    const std::string& folder, const std::function<bool(const std::string&)>& exists) {
  std::vector<std::optional<std::string>> paths;
  std::optional<std::string> expected;  // carried on to products without a name of their own
  bool hasPackage = false;              // found by its "Codebase", of the product before
  for (std::size_t i = 0; i < products.size(); ++i) {
    if (const auto name = expectedName(products[i])) expected = folder + "/" + *name;
    if (expected && exists(*expected)) {
      paths.push_back(expected);
      continue;
    }
    const PlainField* const codebase = fieldOf(rules[i], "Codebase");
    if (codebase != nullptr && codebase->kind != Kind::string) return paths;
    const auto name = codebase == nullptr ? std::nullopt : packageName(codebase->text);
    if (!name) {
      paths.push_back(hasPackage ? std::nullopt : std::optional<std::string>(""));
      continue;
    }
    const std::string path = folder + "/" + *name;
    hasPackage = exists(path);
    paths.emplace_back(hasPackage ? path : "");
  }
  return paths;
}

}  // namespace kelvane::fuzz
