#include "simulators/make_service/PropertyListWriter.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <system_error>

#include <plist/plist.h>

#include "platform/Exception.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace {

constexpr std::int64_t kEpoch = 978'307'200;  // 2001-01-01, from which property lists count

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
struct FreeList {
  void operator()(void* list) const { ::plist_free(list); }
};
using List = std::unique_ptr<void, FreeList>;

List nodeOf(const Value& value);

const std::string& checkedText(const std::string& text) {
  if (text.find('\0') == std::string::npos) return text;
  throw Exception("a text with a NUL character has no form in a property list");
}

List realOf(const std::string& digits) {
  std::istringstream text(digits);
  text.imbue(std::locale::classic());
  double number = 0;
  text >> number;
  if (text.fail()) throw Exception(digits + " is too large for a property list");
  return List(::plist_new_real(number));
}

// The library takes negative numbers as the unsigned ones of the same bits.
List numberOf(const std::string& digits) {
  if (digits.find_first_of(".eE") != std::string::npos) return realOf(digits);
  std::int64_t number = 0;
  const char* end = digits.data() + digits.size();
  if (std::from_chars(digits.data(), end, number).ec != std::errc()) {
    throw Exception(digits + " is too large for a property list");
  }
  return List(::plist_new_uint(static_cast<std::uint64_t>(number)));
}

List dataOf(const std::string& bytes) { return List(::plist_new_data(bytes.data(), bytes.size())); }

List dateOf(platform::Date date) {
  const std::int64_t seconds = date.secondsSince1970 - kEpoch;
  if (seconds != static_cast<std::int32_t>(seconds)) {
    throw Exception("a date is too far away for a property list");
  }
  return List(::plist_new_date(static_cast<std::int32_t>(seconds), 0));
}

List arrayOf(const Value& value) {
  List array(::plist_new_array());
  for (const Value& element : value.elements()) {
    ::plist_array_append_item(array.get(), nodeOf(element).release());
  }
  return array;
}

List dictionaryOf(const Value& value) {
  List dictionary(::plist_new_dict());
  for (const auto& [key, element] : value.entries()) {
    const std::string& name = checkedText(key);  // raises before there is a node to lose
    ::plist_dict_set_item(dictionary.get(), name.c_str(), nodeOf(element).release());
  }
  return dictionary;
}

List nodeOf(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::boolean:
      return List(::plist_new_bool(value.truth() ? 1 : 0));
    case Value::Kind::number:
      return numberOf(value.digits());
    case Value::Kind::string:
      return List(::plist_new_string(checkedText(value.string()).c_str()));
    case Value::Kind::data:
      return dataOf(value.bytes());
    case Value::Kind::date:
      return dateOf(value.date());
    case Value::Kind::array:
      return arrayOf(value);
    case Value::Kind::dictionary:
      return dictionaryOf(value);
    default:
      throw Exception("null has no form in a property list");
  }
}

}  // namespace

std::string printPropertyList(const Value& value, PropertyListForm form) {
  const List list = nodeOf(value);
  char* raw = nullptr;
  std::uint32_t length = 0;
  const auto print = form == PropertyListForm::xml ? ::plist_to_xml : ::plist_to_bin;
  print(list.get(), &raw, &length);
  const std::unique_ptr<char, FreeMemory> bytes(raw);
  if (bytes == nullptr) throw Exception("the property list cannot be written");
  return {bytes.get(), length};
}

}  // namespace kelvane::simulator
