#include "platform/Value.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <new>

#include "platform/Exception.h"

namespace kelvane::platform {

// What a container remembers of itself. A copy of the container remembers nothing.
class Value::Texts {
 public:
  Texts() = default;
  Texts(const Texts& /*other*/) {}
  Texts& operator=(const Texts&) = delete;
  ~Texts() { forget(); }

  static bool hasRoomFor(std::size_t size) { return size <= kMost - taken_; }

  const std::string* find(Form form) const { return texts_[static_cast<std::size_t>(form)].get(); }

  // Takes the text over in its last step, which cannot fail.
  const std::string* set(Form form, std::string& text) {
    auto& place = texts_[static_cast<std::size_t>(form)];
    if (place != nullptr || !hasRoomFor(text.size())) return nullptr;
    place.reset(new (std::nothrow) std::string);
    if (place == nullptr) return nullptr;
    taken_ += text.size();
    *place = std::move(text);
    return place.get();
  }

  void forget() {
    for (auto& text : texts_) {
      if (text == nullptr) continue;
      taken_ -= text->size();
      text.reset();
    }
  }

 private:
  static constexpr std::size_t kMost = std::size_t{64} << 20U;
  static inline std::size_t taken_ = 0;  // by the texts of all containers
  std::array<std::unique_ptr<std::string>, 3> texts_;
};

struct Value::Array {
  Elements elements;
  mutable Texts texts;
};

// Entries in the order of their first setting, found by a scan while they are few and by an index
// once they are many, so that no file can make the look-up quadratic.
class Value::Dictionary {
 public:
  const Entries& entries() const { return entries_; }
  mutable Texts texts;

  const Value* find(std::string_view key) const {
    const std::size_t position = positionOf(key);
    return position < entries_.size() ? &entries_[position].second : nullptr;
  }

  void set(std::string_view key, Value value) {
    const std::size_t position = positionOf(key);
    if (position < entries_.size()) {
      entries_[position].second = std::move(value);
      return;
    }
    entries_.emplace_back(key, std::move(value));
    if (entries_.size() == kIndexedFrom) {
      for (std::size_t i = 0; i < entries_.size(); ++i) index_.emplace(entries_[i].first, i);
    } else if (entries_.size() > kIndexedFrom) {
      index_.emplace(key, position);
    }
  }

 private:
  static constexpr std::size_t kIndexedFrom = 17;

  // The position of the key, or the number of entries where it is not there.
  std::size_t positionOf(std::string_view key) const {
    if (entries_.size() < kIndexedFrom) {
      std::size_t i = 0;
      while (i < entries_.size() && entries_[i].first != key) ++i;
      return i;
    }
    const auto found = index_.find(key);
    return found == index_.end() ? entries_.size() : found->second;
  }

  Entries entries_;
  std::map<std::string, std::size_t, std::less<>> index_;
};

namespace {

// In the order of the kinds.
const char* nameOf(Value::Kind kind) {
  static constexpr const char* kNames[] = {"nothing",  "null",     "a boolean",
                                           "a number", "a string", "data",
                                           "a date",   "an array", "a dictionary"};
  return kNames[static_cast<std::size_t>(kind)];
}

const Value kNothing;
const Value::Elements kNoElements;
const Value::Entries kNoEntries;

}  // namespace

Value::Value(std::string text) : storage_(std::move(text)) {}
Value::Value(std::string_view text) : storage_(std::string(text)) {}
Value::Value(const char* text) : storage_(std::string(text)) {}
Value::Value(Date date) : storage_(date) {}

Value Value::null() { return Value(std::in_place_type<Null>, {}); }
Value Value::boolean(bool truth) { return Value(std::in_place_type<bool>, truth); }
Value Value::integer(std::int64_t number) { return Value::number(std::to_string(number)); }
Value Value::number(std::string digits) {
  return Value(std::in_place_type<Number>, {std::move(digits)});
}
Value Value::data(std::string bytes) { return Value(std::in_place_type<Data>, {std::move(bytes)}); }
Value Value::array() {
  return Value(std::in_place_type<std::shared_ptr<Array>>, std::make_shared<Array>());
}
Value Value::dictionary() {
  return Value(std::in_place_type<std::shared_ptr<Dictionary>>, std::make_shared<Dictionary>());
}

Value Value::array(Elements elements) {
  Value made = array();
  for (Value& element : elements) made.append(std::move(element));
  return made;
}

Value Value::dictionary(Entries entries) {
  Value made = dictionary();
  for (Entry& entry : entries) made.set(entry.first, std::move(entry.second));
  return made;
}

Value::Kind Value::kind() const { return static_cast<Kind>(storage_.index()); }

void Value::refuse(const char* what) const {
  throw Exception(std::string("asked ") + nameOf(kind()) + " for " + what);
}

template <typename T>
const T& Value::expect(const char* what) const {
  const T* held = std::get_if<T>(&storage_);
  if (held == nullptr) refuse(what);
  return *held;
}

bool Value::truth() const { return expect<bool>("its truth"); }
const std::string& Value::string() const { return expect<std::string>("its text"); }
const std::string& Value::bytes() const { return expect<Data>("its bytes").bytes; }
const std::string& Value::digits() const { return expect<Number>("its number").digits; }
Date Value::date() const { return expect<Date>("its date"); }

std::int64_t Value::integerValue() const {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::string& text = digits();
  std::int64_t whole = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), whole);
  if (error == std::errc() && end == text.data() + text.size()) return whole;
  const double real = std::strtod(text.c_str(), nullptr);
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63
  if (std::isnan(real)) return 0;
  if (real >= kBeyond) return Limits::max();
  if (real < -kBeyond) return Limits::min();
  return static_cast<std::int64_t>(real);
}

std::size_t Value::count() const { return elements().size(); }

const Value& Value::at(std::size_t index) const {
  if (isNothing()) return kNothing;
  const Elements& all = elements();
  if (index >= all.size()) {
    throw Exception("asked for element " + std::to_string(index) + " of an array of " +
                    std::to_string(all.size()));
  }
  return all[index];
}

const Value::Elements& Value::elements() const& {
  if (isNothing()) return kNoElements;
  return expect<std::shared_ptr<Array>>("its elements")->elements;
}

Value::Elements& Value::ownElements() {
  if (!isArray()) refuse("its elements");
  auto& shared = std::get<std::shared_ptr<Array>>(storage_);
  if (shared.use_count() > 1) shared = std::make_shared<Array>(*shared);
  shared->texts.forget();
  return shared->elements;
}

void Value::append(Value element) {
  if (element.isNothing()) throw Exception("appended nothing to an array");
  ownElements().push_back(std::move(element));
}

const Value& Value::get(std::string_view key) const {
  if (isNothing()) return kNothing;
  const auto* held = std::get_if<std::shared_ptr<Dictionary>>(&storage_);
  if (held == nullptr) {
    throw Exception(std::string("asked ") + nameOf(kind()) + " for the key \"" + std::string(key) +
                    "\"");
  }
  const Value* found = (*held)->find(key);
  return found == nullptr ? kNothing : *found;
}

Value::Dictionary& Value::ownDictionary() {
  if (!isDictionary()) refuse("its entries");
  auto& shared = std::get<std::shared_ptr<Dictionary>>(storage_);
  if (shared.use_count() > 1) shared = std::make_shared<Dictionary>(*shared);
  shared->texts.forget();
  return *shared;
}

void Value::set(std::string_view key, Value value) {
  if (value.isNothing())
    throw Exception("stored nothing under the key \"" + std::string(key) + "\"");
  ownDictionary().set(key, std::move(value));
}

void Value::setAll(const Value& changes) {
  for (const Entry& entry : changes.entries()) set(entry.first, entry.second);
}

const Value::Entries& Value::entries() const& {
  if (isNothing()) return kNoEntries;
  return expect<std::shared_ptr<Dictionary>>("its entries")->entries();
}

const Value& Value::asDictionary() const {
  if (!isDictionary()) refuse("its entries");
  return *this;
}

Value::Texts& Value::texts() const {
  if (isArray()) return std::get<std::shared_ptr<Array>>(storage_)->texts;
  return expect<std::shared_ptr<Dictionary>>("its text")->texts;
}

const std::string* Value::rememberedText(Form form) const { return texts().find(form); }

const std::string* Value::rememberText(Form form, std::string& text) const {
  return texts().set(form, text);
}

void Value::rememberPart(Form form, const std::string& text, std::size_t start) const {
  if (!Texts::hasRoomFor(text.size() - start)) return;
  try {
    std::string part(text, start);
    texts().set(form, part);
  } catch (const std::bad_alloc&) {
    return;  // it is made again the next time
  }
}

std::size_t Value::expectedSize(Form form) const {
  constexpr std::size_t kBetween = 8;  // bytes from element to element
  constexpr std::size_t kSpare = 1024;
  std::size_t size = kBetween * count();
  for (const Value& element : elements()) {
    if (!element.isArray() && !element.isDictionary()) continue;
    if (const std::string* text = element.rememberedText(form)) size += text->size();
  }
  return size + size / 16 + kSpare;
}

bool Value::operator==(const Value& other) const {
  if (kind() != other.kind()) return false;
  switch (kind()) {
    case Kind::nothing:
    case Kind::null:
      return true;
    case Kind::boolean:
      return truth() == other.truth();
    case Kind::number:
      return digits() == other.digits();
    case Kind::string:
      return string() == other.string();
    case Kind::data:
      return bytes() == other.bytes();
    case Kind::date:
      return date() == other.date();
    case Kind::array:
      return elements() == other.elements();
    case Kind::dictionary:
      break;
  }
  if (entries().size() != other.entries().size()) return false;
  for (const Entry& entry : entries()) {
    if (!(other.get(entry.first) == entry.second)) return false;
  }
  return true;
}

bool equalStrings(const Value& left, const Value& right) {
  if (left.isNothing() || right.isNothing()) return false;
  for (const Value* side : {&left, &right}) {
    if (!side->isString()) {
      throw Exception(std::string("compared ") + nameOf(side->kind()) + " as a string");
    }
  }
  return left == right;
}

namespace {

template <typename T>
int order(const T& left, const T& right) {
  if (left == right) return 0;
  return left < right ? -1 : 1;
}

bool isWhole(const std::string& digits) {
  return digits.find_first_not_of("0123456789", digits[0] == '-' ? 1 : 0) == std::string::npos;
}

double realValue(const std::string& digits) { return std::strtod(digits.c_str(), nullptr); }

// Whole numbers digit by digit: a double has no room for more than 15 of them.
int orderOfWhole(std::string_view left, std::string_view right) {
  const bool isNegative = left[0] == '-';
  if (isNegative != (right[0] == '-')) return isNegative ? -1 : 1;
  if (left.size() != right.size()) return (left.size() < right.size()) != isNegative ? -1 : 1;
  const int byDigits = order(left, right);
  return isNegative ? -byDigits : byDigits;
}

// JSON knows a zero with a sign, which is no other number.
std::string_view withPlainZero(std::string_view digits) { return digits == "-0" ? "0" : digits; }

// What is no number stands below all numbers, so that there is one order.
int orderOfReals(double left, double right) {
  if (std::isnan(left) || std::isnan(right)) return order(!std::isnan(left), !std::isnan(right));
  return order(left, right);
}

int orderOfNumbers(const std::string& left, const std::string& right) {
  if (isWhole(left) && isWhole(right)) {
    return orderOfWhole(withPlainZero(left), withPlainZero(right));
  }
  return orderOfReals(realValue(left), realValue(right));
}

}  // namespace

int compare(const Value& left, const Value& right) {
  if (left.isString() && right.isString()) return order(left.string(), right.string());
  if (left.isNumber() && right.isNumber()) return orderOfNumbers(left.digits(), right.digits());
  if (left.kind() == Value::Kind::date && right.kind() == Value::Kind::date) {
    return order(left.date(), right.date());
  }
  throw Exception(std::string("cannot order ") + nameOf(left.kind()) + " and " +
                  nameOf(right.kind()));
}

}  // namespace kelvane::platform
