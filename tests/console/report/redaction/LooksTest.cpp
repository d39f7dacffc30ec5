// How often the redaction looks at the letters of a text: twice as many letters may be looked at
// twice as often, and not four times.

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "console/report/redaction/Redaction.h"

namespace kelvane::console {
namespace {

std::size_t looksAt(const std::string& text) {
  Redaction redaction;
  redaction.learn(text);
  redaction.applied(text);
  return redaction.looks();
}

std::string repeated(const std::string& part, std::size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += part;
  return text;
}

constexpr std::size_t kBytes = 4000;

TEST(Looks, GrowWithTheTextWhateverIsRepeatedInIt) {
  for (const char* part : {"://",
                           "x",
                           " ",
                           "/",
                           "@",
                           "\"",
                           "\\",
                           "%25",
                           "&amp;",
                           "5",
                           "50:",
                           "a:",
                           "/home/",
                           "/Users//",
                           "/home/a b ",
                           "://a:b",
                           "://a:1/",
                           "://a@",
                           "key:",
                           "key=\"",
                           "token='",
                           "pw=(",
                           "--key ",
                           "bearer ",
                           "authorization: basic ",
                           "<key>key</key>",
                           "<key>key",
                           "<pw>",
                           "wwn = a;\n",
                           "key=\\\"",
                           "%2F%2Fusers",
                           "&#47;",
                           "0x5000000000000001"}) {
    const std::size_t once = looksAt(repeated(part, kBytes));
    const std::size_t twice = looksAt(repeated(part, 2 * kBytes));
    EXPECT_LT(twice, 2 * once + 1000) << part;
    EXPECT_LT(once, 100 * kBytes) << part;
  }
}

// So many homes, each with a user of its own, looked for in all of them.
TEST(Looks, GrowWithTheNumberOfUsers) {
  const auto homes = [](std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += "/home/user" + std::to_string(i) + "/x\n";
    return looksAt(text);
  };
  EXPECT_LT(homes(1000), 2 * homes(500) * 11 / 10);
}

// Many texts, each of which tells of another user.
TEST(Looks, GrowWithTheNumberOfTexts) {
  const auto texts = [](std::size_t count) {
    Redaction redaction;
    for (std::size_t i = 0; i < count; ++i) redaction.learn("/home/user" + std::to_string(i));
    for (std::size_t i = 0; i < count; ++i) redaction.applied("user" + std::to_string(i));
    return redaction.looks();
  };
  EXPECT_LT(texts(1000), 2 * texts(500) * 11 / 10);
}

// Words that begin alike and end one another.
TEST(Looks, GrowWithTheTextHoweverAlikeTheWordsAre) {
  const auto alike = [](std::size_t bytes) {
    Redaction redaction;
    for (std::size_t length = 2; length < 250; ++length)
      redaction.addUser(std::string(length, 'a'));
    const std::size_t before = redaction.looks();
    redaction.applied(repeated("a", bytes) + repeated("b" + std::string(60, 'a') + "-", bytes));
    return redaction.looks() - before;
  };
  EXPECT_LT(alike(2 * kBytes), 2 * alike(kBytes));
}

}  // namespace
}  // namespace kelvane::console
