#include "platform/BinaryPropertyList.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <plist/plist.h>

#include "platform/BinaryPropertyListLimits.h"
#include "platform/Exception.h"
#include "platform/FreeMemory.h"
#include "platform/PropertyListDate.h"
#include "platform/Text.h"
#include "platform/Utf8.h"

namespace kelvane::platform {
namespace {

struct FreeList {
  void operator()(void* list) const { ::plist_free(list); }
};
using List = std::unique_ptr<void, FreeList>;

Value valueOf(plist_t node);

// The list is nothing then, and nobody is told why.
[[noreturn]] void raiseDamage() { throw Exception("a property list is damaged"); }

std::string checkedText(const std::string& text) {
  if (!isUtf8(text)) raiseDamage();
  return text;
}

Value textOf(plist_t node) {
  std::uint64_t length = 0;
  const char* text = ::plist_get_string_ptr(node, &length);
  const auto size = static_cast<std::size_t>(length);
  return text == nullptr ? Value("") : Value(checkedText(std::string(text, size)));
}

// The part of a property list written out as XML. Of some values that is all the library tells.
std::string xmlOf(plist_t node) {
  char* raw = nullptr;
  std::uint32_t length = 0;
  ::plist_to_xml(node, &raw, &length);
  const std::unique_ptr<char, FreeMemory> xml(raw);
  return xml == nullptr ? std::string() : std::string(xml.get(), length);
}

// The text between the node's own tags in its XML.
std::string contentOf(plist_t node, const std::string& tag) {
  const std::string xml = xmlOf(node);
  const std::size_t start = xml.find("<" + tag + ">");
  const std::size_t end = xml.find("</" + tag + ">");
  if (start == std::string::npos || end == std::string::npos) return {};
  return xml.substr(start + tag.size() + 2, end - start - tag.size() - 2);
}

// What does not fit into the signed numbers may be a negative one or a large one.
Value integerOf(plist_t node) {
  std::uint64_t number = 0;
  ::plist_get_uint_val(node, &number);
  const auto signedNumber = static_cast<std::int64_t>(number);
  if (signedNumber >= 0) return Value::integer(signedNumber);
  std::string digits = contentOf(node, "integer");
  if (digits.empty()) raiseDamage();
  return Value::number(std::move(digits));
}

Value realOf(plist_t node) {
  double number = 0;
  ::plist_get_real_val(node, &number);
  return Value::number(shortestText(number));
}

Value booleanOf(plist_t node) {
  std::uint8_t truth = 0;
  ::plist_get_bool_val(node, &truth);
  return Value::boolean(truth != 0);
}

Value dataOf(plist_t node) {
  std::uint64_t length = 0;
  const char* bytes = ::plist_get_data_ptr(node, &length);
  const auto size = static_cast<std::size_t>(length);
  return Value::data(bytes == nullptr ? std::string() : std::string(bytes, size));
}

// The library's numbers reach 68 years around 2001; its XML tells every date:
// "2026-01-31T23:59:59Z".
Value dateOf(plist_t node) {
  const std::optional<Date> date = dateFromText(contentOf(node, "date"));
  if (!date) raiseDamage();
  return *date;
}

// By iterator: access by index would walk the list anew each time.
Value arrayOf(plist_t node) {
  plist_array_iter raw = nullptr;
  ::plist_array_new_iter(node, &raw);
  const std::unique_ptr<void, FreeMemory> iterator(raw);
  Value array = Value::array();
  for (;;) {
    plist_t item = nullptr;
    ::plist_array_next_item(node, raw, &item);
    if (item == nullptr) return array;
    array.append(valueOf(item));
  }
}

Value dictionaryOf(plist_t node) {
  plist_dict_iter raw = nullptr;
  ::plist_dict_new_iter(node, &raw);
  const std::unique_ptr<void, FreeMemory> iterator(raw);
  Value dictionary = Value::dictionary();
  for (;;) {
    char* rawKey = nullptr;
    plist_t item = nullptr;
    ::plist_dict_next_item(node, raw, &rawKey, &item);
    const std::unique_ptr<char, FreeMemory> key(rawKey);
    if (item == nullptr || key == nullptr) return dictionary;
    dictionary.set(checkedText(key.get()), valueOf(item));
  }
}

Value valueOf(plist_t node) {
  switch (::plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
      return booleanOf(node);
    case PLIST_UINT:
      return integerOf(node);
    case PLIST_REAL:
      return realOf(node);
    case PLIST_STRING:
      return textOf(node);
    case PLIST_ARRAY:
      return arrayOf(node);
    case PLIST_DICT:
      return dictionaryOf(node);
    case PLIST_DATE:
      return dateOf(node);
    case PLIST_DATA:
      return dataOf(node);
    default:
      raiseDamage();
  }
}

List parseAsItIs(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  if (!isWithinLimits(bytes)) return nullptr;
  plist_t list = nullptr;
  ::plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
  return List(list);
}

List parse(std::string_view bytes) {
  List list = parseAsItIs(bytes);
  if (list != nullptr) return list;
  const std::optional<std::string> changed = withEmptyTextsAsAscii(bytes);
  return changed ? parseAsItIs(*changed) : nullptr;
}

// Whether some text of the list holds a NUL character. The library ends the process when it is
// asked for such a key, but writes it out as it is.
bool holdsNul(plist_t list) {
  const std::string xml = xmlOf(list);
  return xml.empty() || xml.find('\0') != std::string::npos;
}

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
  constexpr std::string_view kStart = "bplist";
  return bytes.substr(0, kStart.size()) == kStart;
}

Value parseBinaryPropertyList(std::string_view bytes) {
  const List list = parse(bytes);
  if (list == nullptr || holdsNul(list.get())) return {};
  try {
    return valueOf(list.get());
  } catch (const Exception&) {
    return {};
  }
}

}  // namespace kelvane::platform
