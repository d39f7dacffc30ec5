// What is done again and again takes no more memory each time.

#include <cstddef>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "platform/ChildProcess.h"
#include "platform/PropertyList.h"
#include "platform/Regex.h"
#include "tests/platform/HeldMemory.h"
#include "tests/platform/Reason.h"
#include "tests/support/PropertyLists.h"

namespace kelvane::platform {
namespace {

using test::heldMemory;

constexpr int kTimes = 100;
// Less than the smallest piece there is, each time.
constexpr std::size_t kFew = std::size_t{kTimes} * 10;

// What the action leaves behind in all, once the first times have filled what is kept.
std::size_t leftBy(const std::function<void()>& action) {
  for (int i = 0; i < kTimes; ++i) action();
  const std::size_t before = heldMemory();
  for (int i = 0; i < kTimes; ++i) action();
  const std::size_t after = heldMemory();
  return after > before ? after - before : 0;
}

constexpr char kList[] =
    "<dict><key>a</key><array><string>x</string></array><key>w</key>"
    "<date>2026-01-31T23:59:59Z</date><key>n</key><integer>-7</integer></dict>";

TEST(HeldMemory, ABinaryPropertyListLeavesNone) {
  const std::string list = test::binaryPropertyList(kList);
  EXPECT_LT(leftBy([&] { parsePropertyList(list); }), kFew);
}

TEST(HeldMemory, AnXmlPropertyListLeavesNone) {
  const std::string list = test::xmlPropertyList(kList);
  EXPECT_LT(leftBy([&] { parsePropertyList(list); }), kFew);
}

TEST(HeldMemory, ARegularExpressionLeavesNone) {
  EXPECT_LT(leftBy([] { Regex("(\\w+).(\\w+)").firstMatch("a.b"); }), kFew);
}

TEST(HeldMemory, AChildThatCannotBeStartedLeavesNone) {
  const auto start = [] { const ChildProcess child("/no such program", Value::array()); };
  EXPECT_LT(leftBy([&] { test::reasonOf(start); }), kFew);
}

TEST(HeldMemory, AChildsOutputLeavesNone) {
  EXPECT_LT(leftBy([] { ChildOutput().append("text"); }), kFew);
}

}  // namespace
}  // namespace kelvane::platform
