// Bytes and what they mean, the last ones remembered: a file that is read again and again is parsed
// anew only when its bytes differ.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::platform {

class ParsedBytes {
 public:
  using Parse = Value (*)(std::string_view bytes);
  explicit ParsedBytes(Parse parse) : parse_(parse) {}

  // What the bytes mean. Raises what the parser raises, and then remembers nothing.
  const Value& valueOf(std::string bytes) {
    if (!isKnown_ || bytes != bytes_) {
      keep({}, {});  // nothing of the old ones while the new ones are parsed
      Value value = parse_(bytes);
      keep(std::move(bytes), std::move(value));
    }
    return value_;
  }

  // What the file's bytes mean, which are read every time. Raises what reading and parsing raise.
  const Value& valueOfFile(const std::string& path) {
    const std::string_view known = isKnown_ ? std::string_view(bytes_) : std::string_view();
    std::optional<std::string> others = readFileUnlessKnown(path, known);
    if (!others && isKnown_) return value_;
    return valueOf(std::move(others).value_or(std::string()));
  }

  // Remembers bytes that were made of the value, and would be parsed to it again. What means
  // nothing may do so for want of memory, and is parsed anew.
  void keep(std::string bytes, Value value) {
    bytes_ = std::move(bytes);
    value_ = std::move(value);
    isKnown_ = !value_.isNothing();
  }

 private:
  Parse parse_;
  bool isKnown_ = false;
  std::string bytes_;
  Value value_;
};

}  // namespace kelvane::platform
