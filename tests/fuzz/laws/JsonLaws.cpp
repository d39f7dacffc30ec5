#include "tests/fuzz/laws/JsonLaws.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "platform/Json.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

int depthOf(const Value& value) {
  int most = 0;
  if (value.isArray()) {
    for (const Value& element : value.elements()) most = std::max(most, depthOf(element));
  } else if (value.isDictionary()) {
    for (const auto& [key, inner] : value.entries()) most = std::max(most, depthOf(inner));
  } else {
    return 0;
  }
  return most + 1;
}

}  // namespace

void requireRead(const test::PlainJson& plain, const Value& value) {
  require(value.isArray() || value.isDictionary(), "the top level is an array or an object");
  require(depthOf(value) <= platform::kJsonDepthLimit, "nothing is read beyond the depth");
  require(plain == test::plainJson(value), "what is read is what stands there, to the digit");
}

void requirePrinted(const test::PlainJson& plain, const std::string& text) {
  requireSame(test::printed(plain), text, "what stands there is what is written");
  require(nlohmann::json::accept(text), "what is written is JSON", text);
}

void requireLineOfJson(const test::PlainJson& plain, const std::string& line) {
  require(line.find('\n') == std::string::npos && plain == test::readPlainJson(line),
          "one line holds the same", line);
}

}  // namespace kelvane::fuzz
