#include "tests/support/FreshValue.h"

namespace kelvane::test {

using platform::Value;

Value fresh(const Value& value) {
  if (value.isArray()) {
    Value made = Value::array();
    for (const Value& element : value.elements()) made.append(fresh(element));
    return made;
  }
  if (!value.isDictionary()) return value;
  Value made = Value::dictionary();
  for (const auto& [key, inner] : value.entries()) made.set(key, fresh(inner));
  return made;
}

}  // namespace kelvane::test
