// JSON text: what is read is what stands there, by a reader of the tests' own, and is written
// again, to the digit.

#include "platform/Json.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "platform/Text.h"
#include "platform/Utf8.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/support/FreshValue.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;
using test::fresh;
using test::PlainJson;

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

std::string printed(const Value& value) {
  const auto text = platform::printJson(value);
  require(text.has_value(), "what was read from JSON can be written");
  return *text;
}

void judgeJson(const Value& value, const PlainJson& plain) {
  require(value.isArray() || value.isDictionary(), "the top level is an array or an object");
  require(depthOf(value) <= platform::kJsonDepthLimit, "nothing is read beyond the depth");
  require(plain == test::plainJson(value), "what is read is what stands there, to the digit");
  const std::string text = printed(value);
  requireSame(test::printed(plain), text, "what stands there is what is written");
  requireSame(text, printed(value), "a remembered text is the text");
  requireSame(text, printed(fresh(value)), "a remembered text is what is made anew");
  require(nlohmann::json::accept(text), "what is written is JSON", text);
  const Value again = platform::parseJson(text);
  require(value == again, "what is written is read again", text);
  requireSame(text, printed(again), "what is read again is written the same");
  const std::string line = platform::printJsonLine(value).value_or("");
  require(line.find('\n') == std::string::npos && value == platform::parseJson(line),
          "one line holds the same", line);
  requireSame(platform::describe(value), platform::describe(fresh(value)),
              "a remembered description is what is made anew");
  require(platform::isUtf8(platform::describe(value)), "a description is UTF-8");
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  const std::string text = fuzz::Bytes(data, size).rest();
  const platform::Value value = platform::parseJson(text);
  const auto plain = test::readPlainJson(text);
  fuzz::require(plain.has_value() != value.isNothing(), "JSON is read, and nothing else", text);
  if (plain) fuzz::judgeJson(value, *plain);
  return 0;
}
