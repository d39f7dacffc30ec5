// Value: the data that passes between the worker's methods and its files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kelvane::platform {

// A point in time, in whole seconds since 1970-01-01 00:00:00 UTC.
struct Date {
  std::int64_t secondsSince1970 = 0;
  bool operator==(const Date&) const = default;
  bool operator<(const Date& other) const { return secondsSince1970 < other.secondsSince1970; }
};

// One value: null, boolean, number, string (UTF-8), data (bytes), date, array or dictionary; or
// nothing, which is what a missing key holds. Nothing and null differ: null is a value that is
// there.
//
// Values behave as values: a change to a copy never shows in the original. Copying is cheap
// (arrays and dictionaries are shared until one side is changed). Not thread-safe.
//
// Asking a value for what its kind has not raises Exception. Nothing, however, answers every
// question with nothing, 0 or "no elements".
class Value {
 public:
  enum class Kind { nothing, null, boolean, number, string, data, date, array, dictionary };
  using Elements = std::vector<Value>;
  using Entry = std::pair<std::string, Value>;
  using Entries = std::vector<Entry>;

  Value() = default;  // nothing
  // A text, or a date, is a value.
  Value(std::string text);
  Value(std::string_view text);
  Value(const char* text);
  Value(Date date);

  static Value null();
  static Value boolean(bool truth);
  static Value integer(std::int64_t number);
  // `digits` is a number as it was written in a file; it is kept letter by letter.
  static Value number(std::string digits);
  static Value data(std::string bytes);
  static Value array();
  static Value array(Elements elements);
  static Value dictionary();
  // The entries are set one after the other; a nothing among them raises.
  static Value dictionary(Entries entries);

  Kind kind() const;
  bool isNothing() const { return kind() == Kind::nothing; }
  bool isString() const { return kind() == Kind::string; }
  bool isNumber() const { return kind() == Kind::number; }
  bool isArray() const { return kind() == Kind::array; }
  bool isDictionary() const { return kind() == Kind::dictionary; }

  bool truth() const;                 // of a boolean
  const std::string& string() const;  // of a string
  const std::string& bytes() const;   // of data
  const std::string& digits() const;  // of a number: as it was written
  Date date() const;                  // of a date
  // The number as a whole number: fractions are cut off, values out of range are held at the
  // limits.
  std::int64_t integerValue() const;

  // Arrays.
  std::size_t count() const;
  const Value& at(std::size_t index) const;  // past the end: raises
  // For walking; valid until the array is changed. Not of a value that ends with the expression.
  const Elements& elements() const&;
  const Elements& elements() const&& = delete;
  void append(Value element);  // nothing: raises

  // Dictionaries. Keys keep the order in which they were first set.
  const Value& get(std::string_view key) const;  // nothing where the key is not there
  bool has(std::string_view key) const { return !get(key).isNothing(); }
  void set(std::string_view key, Value value);  // nothing: raises
  void setAll(const Value& changes);            // every key of the dictionary `changes`
  // For walking, in order; as with elements().
  const Entries& entries() const&;
  const Entries& entries() const&& = delete;

  // This value, which must be a dictionary: a record before it is changed.
  const Value& asDictionary() const;

  // A container's own text, remembered until the container is changed, for those who make texts of
  // values: as it is shown alone, as it is shown inside one other, and its JSON inside one other.
  enum class Form { shownAlone, shownInside, jsonInside };
  // Null where none is remembered.
  const std::string* rememberedText(Form form) const;
  // Takes a text over where none is remembered; returns it as it is kept. Null, and the text as it
  // was, where there is no room: all texts together take 64 MiB at the most.
  const std::string* rememberText(Form form, std::string& text) const;
  // The same of a part of a text, which is copied.
  void rememberPart(Form form, const std::string& text, std::size_t start) const;
  // About as many bytes as a text of a whole array takes, by what is remembered of its elements,
  // and some to spare for those that have changed.
  std::size_t expectedSize(Form form) const;

  // Same kind and content; numbers by their digits, dictionaries regardless of order.
  bool operator==(const Value& other) const;

 private:
  class Texts;
  struct Array;
  class Dictionary;
  struct Null {};
  struct Number {
    std::string digits;
  };
  struct Data {
    std::string bytes;
  };
  using Storage = std::variant<std::monostate, Null, bool, Number, std::string, Data, Date,
                               std::shared_ptr<Array>, std::shared_ptr<Dictionary>>;

  template <typename Held>
  explicit Value(std::in_place_type_t<Held> kind, Held held) : storage_(kind, std::move(held)) {}
  template <typename T>
  const T& expect(const char* what) const;
  [[noreturn]] void refuse(const char* what) const;
  Texts& texts() const;
  Elements& ownElements();
  Dictionary& ownDictionary();

  Storage storage_;
};

// Orders two values of one kind: below, at or above 0. Strings order by their characters' code
// values, numbers by value, dates by time; anything else, or two kinds, raises.
int compare(const Value& left, const Value& right);

// Whether two strings are the same. What is absent never equals anything, whatever the other is; of
// two values that are there, one that is not a string raises.
bool equalStrings(const Value& left, const Value& right);

}  // namespace kelvane::platform
