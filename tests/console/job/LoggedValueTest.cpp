// Values, read out of the log's form of them.

#include <gtest/gtest.h>

#include "console/job/LoggedValue.h"
#include "platform/Json.h"
#include "platform/Text.h"

namespace kelvane::console {
namespace {

using platform::parseJson;
using platform::Value;

TEST(LoggedValue, IsWhatWasLogged) {
  const Value value = parseJson(R"({"wwn": "50A1", "path": "/tmp/a b.img", "n": -1, "empty": {},
      "list": ["A1", "", "two words", "line\nfeed \"quoted\" \\ \t", true, null, 0.10, [], [["x"]]],
      "inside": {"é = ;": {"a": "(", "b": "}"}}})");
  EXPECT_EQ(parseLogged(platform::describe(value)), parseJson(R"({"wwn": "50A1",
      "path": "/tmp/a b.img", "n": "-1", "empty": {},
      "list": ["A1", "", "two words", "line\nfeed \"quoted\" \\ \t", "1", "<null>", "0.10", [],
               [["x"]]],
      "inside": {"é = ;": {"a": "(", "b": "}"}}})"));
}

TEST(LoggedValue, WhatIsCutOrNoContainerIsNothing) {
  const std::string whole = platform::describe(parseJson(R"([{"a": "b c"}, "d"])"));
  EXPECT_FALSE(parseLogged(whole).isNothing());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_TRUE(parseLogged(whole.substr(0, length)).isNothing()) << whole.substr(0, length);
  }
  for (const char* text :
       {"(null)x", "{a}", "{a = ;}", "(a b)", "(a}", "{a = b;)", "word", "(a))"}) {
    EXPECT_TRUE(parseLogged(text).isNothing()) << text;
  }
}

TEST(LoggedValue, AnyValueCanBeComparedWithWhatWasLogged) {
  EXPECT_EQ(asLogged(parseJson("[5]")), parseJson(R"(["5"])"));
  EXPECT_EQ(asLogged(Value("/a b")), Value("/a b"));
  EXPECT_EQ(asLogged(Value::integer(5)), Value("5"));
}

}  // namespace
}  // namespace kelvane::console
