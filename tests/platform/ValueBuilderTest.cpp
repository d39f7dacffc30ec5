#include <gtest/gtest.h>

#include "platform/ValueBuilder.h"

namespace kelvane::platform {
namespace {

TEST(ValueBuilder, NothingIsAddedClosedOrNamedBeforeAContainerIsOpen) {
  EXPECT_FALSE(ValueBuilder(1).add("x"));
  EXPECT_FALSE(ValueBuilder(1).close());
  EXPECT_FALSE(ValueBuilder(1).key("a"));
  EXPECT_FALSE(ValueBuilder(1).isOpen());
  EXPECT_FALSE(ValueBuilder(1).isInDictionary());
}

TEST(ValueBuilder, AKeyHasOneValueAndAValueItsKey) {
  ValueBuilder builder(1);
  EXPECT_TRUE(builder.open(Value::dictionary()));
  EXPECT_TRUE(builder.isInDictionary());
  EXPECT_FALSE(builder.add("x"));
  EXPECT_TRUE(builder.key("a"));
  EXPECT_FALSE(builder.key("b"));
  EXPECT_FALSE(builder.close());
  EXPECT_TRUE(builder.add("x"));
  EXPECT_TRUE(builder.close());
  EXPECT_EQ(builder.take(), Value::dictionary({{"a", "x"}}));
}

TEST(ValueBuilder, AnArrayHasNoKeys) {
  ValueBuilder builder(1);
  EXPECT_TRUE(builder.open(Value::array()));
  EXPECT_FALSE(builder.isInDictionary());
  EXPECT_FALSE(builder.key("a"));
}

TEST(ValueBuilder, ContainersStandInsideOneAnotherAsDeepAsTheLimit) {
  ValueBuilder builder(2);
  EXPECT_TRUE(builder.open(Value::array()));
  EXPECT_TRUE(builder.open(Value::array()));
  EXPECT_FALSE(builder.open(Value::array()));
}

}  // namespace
}  // namespace kelvane::platform
