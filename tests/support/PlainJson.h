// JSON read and written apart from the platform: what its reading and writing are held against.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Value.h"

namespace kelvane::test {

struct PlainJson {
  enum class Kind { word, number, text, list, object };

  Kind kind = Kind::word;
  std::string text;               // "null", "true", "false"; a number's digits; a text's characters
  std::vector<std::string> keys;  // of an object, in their order
  std::vector<PlainJson> elements;  // of a list, or of an object behind its keys

  bool is(Kind wanted) const { return kind == wanted; }
  bool isText(std::string_view wanted) const { return is(Kind::text) && text == wanted; }
  // Null where there is none.
  const PlainJson* find(std::string_view key) const;
  void set(const std::string& key, const PlainJson& value);

  bool operator==(const PlainJson& other) const;
};

// Nothing where the text is not JSON as the platform promises to read it: a list or an object, no
// deeper than its limit, every number of which a double has room for.
std::optional<PlainJson> readPlainJson(std::string_view text);

PlainJson plainJson(const platform::Value& value);

// Over lines, as a job file is.
std::string printed(const PlainJson& value, std::size_t level = 0);

}  // namespace kelvane::test
