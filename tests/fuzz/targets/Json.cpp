// JSON text: what is read is what stands there, by a reader of the tests' own, and is written
// again, to the digit.

#include "platform/Json.h"

#include <string>

#include "platform/Text.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/laws/JsonLaws.h"
#include "tests/fuzz/laws/TextLaws.h"
#include "tests/support/FreshValue.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;
using test::fresh;
using test::PlainJson;

std::string printed(const Value& value) {
  const auto text = platform::printJson(value);
  require(text.has_value(), "what was read from JSON can be written");
  return *text;
}

void judgeJson(const Value& value, const PlainJson& plain) {
  requireRead(plain, value);
  const std::string text = printed(value);
  requirePrinted(plain, text);
  requireSame(text, printed(value), "a remembered text is the text");
  requireSame(text, printed(fresh(value)), "a remembered text is what is made anew");
  const Value again = platform::parseJson(text);
  require(value == again, "what is written is read again", text);
  requireSame(text, printed(again), "what is read again is written the same");
  requireLineOfJson(plain, platform::printJsonLine(value).value_or(""));
  requireShown(value, platform::describe(value));
  requireShown(value, platform::describe(fresh(value)));
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
