// JSON for machines that steers no terminal.

#include <gtest/gtest.h>

#include "console/display/JsonText.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

using platform::Value;

TEST(JsonText, WhatSteersATerminalIsEscaped) {
  // U+009B begins a command as ESC and "[" do; U+202E turns the writing round.
  const Value value =
      Value::array({"\x1B[2J \x7F \xC2\x9B"
                    "2J \xE2\x80\xAE \xEF\xBB\xBF"});
  EXPECT_EQ(jsonLine(value), R"(["\u001b[2J \u007f \u009b2J \u202e \ufeff"])");
  EXPECT_EQ(platform::parseJson(jsonLine(value)), value);
  EXPECT_EQ(platform::parseJson(jsonText(value)), value);
}

TEST(JsonText, AllElseStaysAsItIs) {
  const Value value = platform::parseJson(R"({"\u00e4 \u20ac": [0.10, {}, "\ud83d\ude00\n"]})");
  EXPECT_EQ(jsonText(value), *platform::printJson(value));
  EXPECT_EQ(jsonLine(value), *platform::printJsonLine(value));
}

TEST(JsonText, WhatJsonHasNoFormForIsNull) {
  EXPECT_EQ(jsonLine(Value::array({Value::data("x")})), "null");
}

}  // namespace
}  // namespace kelvane::console
