#include "tests/properties/Drawn.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/Text.h"

namespace kelvane::platform {

void showValue(const Value& value, std::ostream& out) { out << describe(value); }

}  // namespace kelvane::platform

namespace kelvane::properties {
namespace {

using platform::Value;
using rc::Gen;

[[maybe_unused]] const int kSeeded =
    ::setenv("RC_PARAMS", "seed=17 max_success=200 max_size=12", 0);

std::string joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += piece;
  return text;
}

Gen<std::string> textsOf(const std::vector<std::string>& pieces) {
  constexpr int kMost = 40;
  return rc::gen::resize(
      kMost, rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces)),
                          joined));
}

Gen<std::string> digits() {
  constexpr int kMost = 25;  // more than any machine number has
  return rc::gen::resize(kMost,
                         rc::gen::nonEmpty(rc::gen::container<std::string>(between('0', ':'))));
}

// Without zeros in front.
Gen<std::string> wholeNumbers() {
  return rc::gen::map(rc::gen::pair(rc::gen::arbitrary<bool>(), digits()), [](auto drawn) {
    std::string number = std::move(drawn.second);
    number.erase(0, std::min(number.find_first_not_of('0'), number.size() - 1));
    return drawn.first ? number.insert(0, "-") : number;
  });
}

// What makes the elements, with so many containers around one another.
struct Kinds {
  Gen<Value> (*leaves)();
  Gen<std::string> (*texts)();
};

Gen<Value> valuesOf(const Kinds& kinds, int depth);

Gen<Value> arraysOf(const Kinds& kinds, int depth) {
  return rc::gen::map(
      rc::gen::container<std::vector<Value>>(valuesOf(kinds, depth - 1)),
      [](std::vector<Value> elements) { return Value::array(std::move(elements)); });
}

Gen<Value> objectsOf(const Kinds& kinds, int depth) {
  return rc::gen::map(
      rc::gen::container<Value::Entries>(rc::gen::pair(kinds.texts(), valuesOf(kinds, depth - 1))),
      [](Value::Entries entries) { return Value::dictionary(std::move(entries)); });
}

Gen<Value> valuesOf(const Kinds& kinds, int depth) {
  if (depth == 0) return kinds.leaves();
  return rc::gen::weightedOneOf<Value>({{4, kinds.leaves()},
                                        {1, rc::gen::scale(0.4, arraysOf(kinds, depth))},
                                        {1, rc::gen::scale(0.4, objectsOf(kinds, depth))}});
}

// XML has no form for other control characters, and makes line feeds of carriage returns.
Gen<std::string> textsWithoutControls() {
  return textsOf({"a", "7", " ", "\"", "\\", "\n", "\t", "\x7F", "\xC3\xA4", "\xE6\xBC\xA2",
                  "\xF0\x9F\x98\x80", "<", "&", "]]>", "&amp;"});
}

Gen<Value> booleans() { return rc::gen::map(rc::gen::arbitrary<bool>(), &Value::boolean); }
Gen<Value> strings(const Gen<std::string>& texts) {
  return rc::gen::map(texts, [](std::string text) { return Value(std::move(text)); });
}

Gen<Value> jsonLeaves() {
  return rc::gen::oneOf(strings(texts()), booleans(), rc::gen::just(Value::null()),
                        rc::gen::map(numbers(), &Value::number));
}

// 68 years around 2001: as far as those who write them reach.
Gen<Value> dates() {
  constexpr std::int64_t kYear2001 = 978'307'200;
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  return rc::gen::map(between<std::int64_t>(kYear2001 - kMost, kYear2001 + kMost),
                      [](std::int64_t seconds) { return Value(platform::Date{seconds}); });
}

Gen<Value> reals() {
  return rc::gen::map(between(-1'000'000, 1'000'000), [](int number) {
    return Value::number(platform::shortestText(number / 64.0 + 1.0 / 128));
  });
}

Gen<Value> propertyListLeaves() {
  return rc::gen::oneOf(strings(textsWithoutControls()), booleans(), dates(), reals(),
                        rc::gen::map(rc::gen::arbitrary<std::int64_t>(), &Value::integer),
                        rc::gen::map(rc::gen::arbitrary<std::string>(), &Value::data));
}

constexpr int kDepth = 4;
constexpr Kinds kJson = {jsonLeaves, texts};
constexpr Kinds kPropertyList = {propertyListLeaves, textsWithoutControls};

}  // namespace

Gen<std::string> texts() {
  return textsOf({"a",
                  "B",
                  "7",
                  "_",
                  " ",
                  "-",
                  "/",
                  "word",
                  "\"",
                  "\\",
                  "'",
                  "\n",
                  "\r",
                  "\t",
                  "\x01",
                  "\x1B[2J",
                  "\x7F",
                  "\xC2\x9B",
                  "\xC3\xA4",
                  "\xE2\x82\xAC",
                  "\xE6\xBC\xA2",
                  "a\xCC\x81",
                  "\xF0\x9F\x98\x80",
                  "\xE2\x80\xAE",
                  "(",
                  ")",
                  "{",
                  "}",
                  ";",
                  "=",
                  ",",
                  "<",
                  "&"});
}

Gen<std::string> bytes() {
  return textsOf({"a", " ", "\n", "\xC3\xA4", "\xE6\xBC\xA2", "\xF0\x9F\x98\x80", "\xC3", "\x80",
                  "\xED\xA0\x80", "\xF5", "\xFF", "\xC0\x80", "long run of plain text "});
}

Gen<std::string> words() {
  return textsOf({"a", "Z", "7", "_", " ", " ", "word", "-", ".", "/", "longer-word"});
}

Gen<std::string> numbers() {
  const auto exponents = rc::gen::map(between(-99, 99), [](int exponent) {
    return (exponent % 2 == 0 ? "e" : "E") + std::to_string(exponent);
  });
  const auto none = rc::gen::just(std::string());
  const auto fractions = rc::gen::map(
      digits(), [](const std::string& digits) { return std::string(".").append(digits); });
  return rc::gen::map(rc::gen::tuple(wholeNumbers(), rc::gen::oneOf(none, fractions),
                                     rc::gen::oneOf(none, exponents)),
                      [](const auto& drawn) {
                        return std::get<0>(drawn) + std::get<1>(drawn) + std::get<2>(drawn);
                      });
}

Gen<Value> containers() {
  return rc::gen::oneOf(arraysOf(kJson, kDepth), objectsOf(kJson, kDepth));
}
Gen<Value> objects() { return objectsOf(kJson, kDepth); }
Gen<Value> propertyLists() { return objectsOf(kPropertyList, kDepth); }

}  // namespace kelvane::properties
