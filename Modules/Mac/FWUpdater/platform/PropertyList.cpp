#include "platform/PropertyList.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include <fmt/format.h>
#include <plist/plist.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Utf8.h"

namespace kelvane::platform {
namespace {

constexpr int kDepthLimit = 512;
constexpr std::int64_t kEpoch = 978'307'200;  // 2001-01-01, from which property lists count

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
struct FreeList {
  void operator()(void* list) const { ::plist_free(list); }
};
using List = std::unique_ptr<void, FreeList>;

Value valueOf(plist_t node, int depth);

std::string checkedText(const std::string& text) {
  if (!isUtf8(text)) throw Exception("a property list's text is not UTF-8");
  return text;
}

Value textOf(plist_t node) {
  std::uint64_t length = 0;
  const char* text = ::plist_get_string_ptr(node, &length);
  return text == nullptr ? Value("") : Value(checkedText(std::string(text, length)));
}

// Above the signed numbers stand the negative ones.
Value integerOf(plist_t node) {
  std::uint64_t number = 0;
  ::plist_get_uint_val(node, &number);
  return Value::integer(static_cast<std::int64_t>(number));
}

Value realOf(plist_t node) {
  double number = 0;
  ::plist_get_real_val(node, &number);
  return Value::number(fmt::format("{}", number));
}

Value booleanOf(plist_t node) {
  std::uint8_t truth = 0;
  ::plist_get_bool_val(node, &truth);
  return Value::boolean(truth != 0);
}

Value dataOf(plist_t node) {
  std::uint64_t length = 0;
  const char* bytes = ::plist_get_data_ptr(node, &length);
  return Value::data(bytes == nullptr ? std::string() : std::string(bytes, length));
}

Value dateOf(plist_t node) {
  std::int32_t seconds = 0;
  std::int32_t microseconds = 0;
  ::plist_get_date_val(node, &seconds, &microseconds);
  return Date{kEpoch + seconds};
}

// By iterator: access by index would walk the list anew each time.
Value arrayOf(plist_t node, int depth) {
  plist_array_iter raw = nullptr;
  ::plist_array_new_iter(node, &raw);
  const std::unique_ptr<void, FreeMemory> iterator(raw);
  Value array = Value::array();
  for (;;) {
    plist_t item = nullptr;
    ::plist_array_next_item(node, raw, &item);
    if (item == nullptr) return array;
    array.append(valueOf(item, depth + 1));
  }
}

Value dictionaryOf(plist_t node, int depth) {
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
    dictionary.set(checkedText(key.get()), valueOf(item, depth + 1));
  }
}

Value valueOf(plist_t node, int depth) {
  if (depth > kDepthLimit) throw Exception("a property list is nested too deeply");
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
      return arrayOf(node, depth);
    case PLIST_DICT:
      return dictionaryOf(node, depth);
    case PLIST_DATE:
      return dateOf(node);
    case PLIST_DATA:
      return dataOf(node);
    default:
      throw Exception("a property list holds something of no known kind");
  }
}

List parse(const std::string& bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  plist_t list = nullptr;
  ::plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
  return List(list);
}

// Whether some text of the list holds a NUL character. The library ends the process when it is
// asked for such a key, but writes it out as it is.
bool holdsNul(plist_t list) {
  char* raw = nullptr;
  std::uint32_t length = 0;
  ::plist_to_xml(list, &raw, &length);
  const std::unique_ptr<char, FreeMemory> xml(raw);
  return xml == nullptr || std::memchr(xml.get(), '\0', length) != nullptr;
}

}  // namespace

Value readPropertyList(const std::string& path) {
  try {
    const List list = parse(readFile(path));
    if (list == nullptr || ::plist_get_node_type(list.get()) != PLIST_DICT) return {};
    if (holdsNul(list.get())) return {};
    return valueOf(list.get(), 1);
  } catch (const Exception&) {
    return {};
  }
}

}  // namespace kelvane::platform
