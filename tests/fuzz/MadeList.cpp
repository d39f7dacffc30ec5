#include "tests/fuzz/MadeList.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "contract/Catalogue.h"
#include "platform/Text.h"
#include "platform/Utf8.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

constexpr int kMostValues = 200;
constexpr int kMostDepth = 6;
constexpr std::size_t kMostKept = 16;
constexpr std::size_t kMostAgain = 64;

std::uint64_t longWord(Bytes& bytes) {
  const std::uint64_t high = bytes.word();
  return high << 32U | bytes.word();
}

// Any but the NUL character.
std::string listText(Bytes& bytes) {
  std::string text = platform::repairedUtf8(bytes.text());
  std::erase(text, '\0');
  return text;
}

std::string integerDigits(Bytes& bytes) {
  const unsigned kind = bytes.pick(4);
  if (kind < 2) return std::to_string(bytes.byte());
  const std::uint64_t number = longWord(bytes);
  return kind == 2 ? std::to_string(number) : std::to_string(static_cast<std::int64_t>(number));
}

Value realNumber(Bytes& bytes) {
  double number = static_cast<double>(bytes.word()) / 64;
  if (bytes.flag()) number = std::bit_cast<double>(longWord(bytes));
  return Value::number(std::isnan(number) ? "nan" : platform::shortestText(number));
}

Value yearsOfFourDigits(Bytes& bytes) {
  constexpr std::int64_t kFirst = -62'167'219'200;
  constexpr std::int64_t kLast = 253'402'300'799;
  const std::uint64_t range = kLast - kFirst + 1;
  return platform::Date{kFirst + static_cast<std::int64_t>(longWord(bytes) % range)};
}

class ListMaker {
 public:
  explicit ListMaker(Bytes& bytes) : bytes_(bytes) {}

  Value root() {
    Value list = dictionary(kMostDepth);
    if (bytes_.pick(8) == 1) list.set("deep", wrapped());
    return list;
  }

 private:
  Value any(int depth) {
    const bool isLast = depth == 0 || ++values_ > kMostValues;
    switch (bytes_.pick(isLast ? 6 : 9)) {
      case 1:
        return Value::boolean(bytes_.flag());
      case 2:
        return Value::number(integerDigits(bytes_));
      case 3:
        return realNumber(bytes_);
      case 4:
        return Value::data(bytes_.text());
      case 5:
        return yearsOfFourDigits(bytes_);
      case 6:
        return kept(array(depth - 1));
      case 7:
        return kept(dictionary(depth - 1));
      case 8:
        return again();
      default:
        return kept(listText(bytes_));
    }
  }

  Value array(int depth) {
    Value list = Value::array();
    const unsigned count = bytes_.pick(20);
    for (unsigned i = 0; i < count && !bytes_.isEmpty(); ++i) list.append(any(depth));
    return list;
  }

  Value dictionary(int depth) {
    Value list = Value::dictionary();
    const unsigned count = bytes_.pick(20);
    for (unsigned i = 0; i < count && !bytes_.isEmpty(); ++i) {
      const std::string key = listText(bytes_);
      list.set(key, any(depth));
    }
    return list;
  }

  Value kept(const Value& value) {
    if (made_.size() < kMostKept) made_.push_back(value);
    return value;
  }

  // One that stands elsewhere already; a small one, so that what is shared does not multiply.
  Value again() {
    std::vector<Value> small;
    std::copy_if(made_.begin(), made_.end(), std::back_inserter(small),
                 [](const Value& one) { return platform::describe(one).size() < kMostAgain; });
    return small.empty() ? Value("") : small[bytes_.pick(static_cast<unsigned>(small.size()))];
  }

  // Up to and beyond the depth that is read.
  Value wrapped() {
    Value inner = Value::array();
    const unsigned count = 2U * bytes_.byte() + bytes_.pick(2);
    for (unsigned i = 0; i < count; ++i) {
      inner = i % 2 == 0 ? Value::array({inner}) : Value::dictionary({{"", inner}});
    }
    return inner;
  }

  Bytes& bytes_;
  int values_ = 0;
  std::vector<Value> made_;
};

constexpr const char* kMadeProducts[] = {"sw", "t3", "sw", "other", "", "SW", "t2"};
// Around the system that runs, 14.2.1.
constexpr const char* kMinima[] = {"14.2.1",
                                   "14.2.2",
                                   "14.2",
                                   "9.0.0",
                                   "10.15.0",
                                   "15.0.0",
                                   "abc.def.ghi",
                                   "14x2x0",
                                   "1402100",
                                   "14..2.0",
                                   "v14.2.1",
                                   "13.9.9 or later",
                                   "14.2.\n1.0.0",
                                   "99999999999999999999.0.0",
                                   ""};
constexpr const char* kVersions[] = {"1.0", "10.0", "9.1", "1.0", "", "\xC3\xA4"};

template <std::size_t size>
const char* chosen(Bytes& bytes, const char* const (&choices)[size]) {
  return choices[bytes.pick(size)];
}

// What is not there, is a text of the choices, or anything.
template <std::size_t size>
void fill(Value& rule, const char* key, Bytes& bytes, const char* const (&choices)[size]) {
  const unsigned kind = bytes.pick(12);
  if (kind == 1) return;
  if (kind == 2) {
    rule.set(key, Value::number(integerDigits(bytes)));
  } else if (kind == 3) {
    rule.set(key, yearsOfFourDigits(bytes));
  } else if (kind == 4) {
    rule.set(key, Value::boolean(bytes.flag()));
  } else if (kind == 5) {
    rule.set(key, listText(bytes));
  } else {
    rule.set(key, chosen(bytes, choices));
  }
}

Value madeRule(Bytes& bytes) {
  static constexpr const char* kCodebases[] = {"http://x/p.bin",   "p.bin",      "http://x/p.dmg",
                                               "http://x/a.b.zip", "http://x/p", "/",
                                               "none.bin"};
  if (bytes.pick(32) == 31) return listText(bytes);
  Value rule = Value::dictionary();
  fill(rule, catalogue::kProductId, bytes, kMadeProducts);
  fill(rule, catalogue::kVersion, bytes, kVersions);
  fill(rule, catalogue::kMinimumOs, bytes, kMinima);
  fill(rule, catalogue::kSize, bytes, kVersions);
  fill(rule, catalogue::kHash, bytes, kVersions);
  if (bytes.flag()) fill(rule, catalogue::kCodebase, bytes, kCodebases);
  return rule;
}

}  // namespace

Value madeList(Bytes& bytes) { return ListMaker(bytes).root(); }

Value madeCatalogue(Bytes& bytes) {
  Value rules = Value::array();
  const unsigned count = bytes.pick(10);
  for (unsigned i = 0; i < count; ++i) rules.append(madeRule(bytes));
  return Value::dictionary({{catalogue::kRules, rules}});
}

int depthOfList(const Value& value) {
  int most = 0;
  if (value.isArray()) {
    for (const Value& element : value.elements()) most = std::max(most, depthOfList(element));
  } else if (value.isDictionary()) {
    for (const auto& [key, inner] : value.entries()) most = std::max(most, depthOfList(inner));
  } else {
    return 0;
  }
  return most + 1;
}

}  // namespace kelvane::fuzz
