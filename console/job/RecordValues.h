// What is read of a record that may be of any shape.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// Empty where the value is no string.
inline std::string stringOf(const platform::Value& value) {
  return value.isString() ? value.string() : "";
}

// What stands at the key; nothing where the value is no dictionary.
inline platform::Value memberOf(const platform::Value& value, const char* key) {
  return value.isDictionary() ? value.get(key) : platform::Value();
}

}  // namespace kelvane::console
