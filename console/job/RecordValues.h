// What is read of a record that may be of any shape.
#pragma once

#include <string>

#include "contract/JobFile.h"
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

// The update engine's folder in the parameters of a query or a download: of several products the
// first one's. Empty where they name none.
inline std::string engineFolderOf(const platform::Value& inputs) {
  const bool isList = inputs.isArray() && inputs.count() > 0;
  return stringOf(memberOf(isList ? inputs.at(0) : inputs, job::kFolder));
}

}  // namespace kelvane::console
