#include <limits>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Value.h"

namespace kelvane::platform {
namespace {

Value record() { return Value::dictionary({{"a", "1"}, {"b", Value::array({"x", "y"})}}); }

TEST(Value, StartsAsNothing) { EXPECT_TRUE(Value().isNothing()); }

TEST(Value, NothingAndNullDiffer) {
  EXPECT_FALSE(Value::null().isNothing());
  EXPECT_FALSE(Value::null() == Value());
}

TEST(Value, NothingAnswersWithNothing) {
  const Value nothing;
  EXPECT_TRUE(nothing.get("key").isNothing());
  EXPECT_TRUE(nothing.at(3).isNothing());
  EXPECT_EQ(nothing.count(), 0U);
  EXPECT_TRUE(nothing.elements().empty());
  EXPECT_TRUE(nothing.entries().empty());
}

TEST(Value, AMissingKeyIsNothing) { EXPECT_TRUE(record().get("c").isNothing()); }

TEST(Value, AKeyThatHoldsNullIsThere) {
  EXPECT_TRUE(Value::dictionary({{"a", Value::null()}}).has("a"));
}

TEST(Value, AskingForWhatTheKindHasNotRaises) {
  const Value null = Value::null();
  const Value array = Value::array();
  EXPECT_THROW(Value("text").get("key"), Exception);
  EXPECT_THROW(Value::null().get("key"), Exception);
  EXPECT_THROW(Value::array().get("key"), Exception);
  EXPECT_THROW(Value("text").count(), Exception);
  EXPECT_THROW(Value::dictionary().count(), Exception);
  EXPECT_THROW(null.elements(), Exception);
  EXPECT_THROW(Value::integer(1).string(), Exception);
  EXPECT_THROW(array.entries(), Exception);
  EXPECT_THROW(Value::array().asDictionary(), Exception);
  EXPECT_THROW(Value().asDictionary(), Exception);
}

TEST(Value, AnElementPastTheEndRaises) {
  EXPECT_EQ(Value::array({"x"}).at(0).string(), "x");
  EXPECT_THROW(Value::array({"x"}).at(1), Exception);
}

TEST(Value, StoringNothingRaisesAndLeavesTheValueAsItWas) {
  Value changed = record();
  EXPECT_THROW(changed.set("a", Value()), Exception);
  EXPECT_EQ(changed, record());
}

TEST(Value, AppendingNothingRaises) {
  Value list = Value::array();
  EXPECT_THROW(list.append(Value()), Exception);
  EXPECT_EQ(list.count(), 0U);
}

TEST(Value, AChangeToACopyNeverShowsInTheOriginal) {
  const Value original = record();
  Value copy = original;
  copy.set("a", "2");
  Value list = copy.get("b");
  list.append("z");
  EXPECT_EQ(original, record());
  EXPECT_EQ(copy.get("b").count(), 2U);
  EXPECT_EQ(list.count(), 3U);
}

TEST(Value, AChangeToTheOriginalNeverShowsInACopy) {
  Value original = record();
  const Value copy = original;
  original.set("a", "2");
  EXPECT_EQ(copy, record());
}

TEST(Value, KeysKeepTheOrderOfTheirFirstSetting) {
  Value changed = record();
  changed.set("c", "3");
  changed.set("a", "9");
  ASSERT_EQ(changed.entries().size(), 3U);
  EXPECT_EQ(changed.entries()[0].first, "a");
  EXPECT_EQ(changed.entries()[0].second.string(), "9");
  EXPECT_EQ(changed.entries()[2].first, "c");
}

TEST(Value, ManyKeysAreFoundAndKeepTheirOrder) {
  Value large = Value::dictionary();
  for (int i = 0; i < 100; ++i) large.set("key" + std::to_string(i), Value::integer(i));
  for (int i = 0; i < 100; ++i)
    large.set("key" + std::to_string(i), Value::integer(std::int64_t{2} * i));
  ASSERT_EQ(large.entries().size(), 100U);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(large.get("key" + std::to_string(i)).integerValue(), std::int64_t{2} * i);
    EXPECT_EQ(large.entries()[static_cast<std::size_t>(i)].first, "key" + std::to_string(i));
  }
  EXPECT_FALSE(large.has("key100"));
}

TEST(Value, SetAllReplacesAndAddsButRemovesNothing) {
  Value changed = record();
  changed.setAll(Value::dictionary({{"b", "new"}, {"c", "added"}}));
  EXPECT_EQ(changed, Value::dictionary({{"a", "1"}, {"b", "new"}, {"c", "added"}}));
}

TEST(Value, EqualityDoesNotDependOnTheOrderOfKeys) {
  EXPECT_EQ(Value::dictionary({{"a", "1"}, {"b", "2"}}),
            Value::dictionary({{"b", "2"}, {"a", "1"}}));
  EXPECT_FALSE(Value::dictionary({{"a", "1"}}) == Value::dictionary({{"b", "1"}}));
}

TEST(Value, EveryKindEqualsItselfAndNoOther) {
  const std::vector<Value> all = {
      Value(),           Value::null(),       Value::boolean(true),
      Value::integer(1), Value("1"),          Value::data("1"),
      Value(Date{1}),    Value::array({"1"}), Value::dictionary({{"1", "1"}})};
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < all.size(); ++j) EXPECT_EQ(all[i] == all[j], i == j) << i << j;
  }
  EXPECT_FALSE(Value::boolean(true) == Value::boolean(false));
  EXPECT_FALSE(Value("a") == Value("b"));
  EXPECT_FALSE(Value::data("a") == Value::data("b"));
  EXPECT_FALSE(Value(Date{1}) == Value(Date{2}));
  EXPECT_FALSE(Value::array({"a"}) == Value::array({"b"}));
  EXPECT_FALSE(Value::array({"a"}) == Value::array({"a", "a"}));
}

TEST(Value, NumbersKeepTheirDigits) {
  EXPECT_EQ(Value::number("12345678901234567890123").digits(), "12345678901234567890123");
  EXPECT_EQ(Value::integer(-7).digits(), "-7");
}

TEST(Value, TheWholeNumberOfANumber) {
  EXPECT_EQ(Value::number("42").integerValue(), 42);
  EXPECT_EQ(Value::number("-42").integerValue(), -42);
  EXPECT_EQ(Value::number("1e3").integerValue(), 1000);
  EXPECT_EQ(Value::number("2.9").integerValue(), 2);
  EXPECT_EQ(Value::number("9223372036854775807").integerValue(),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Value::number("12345678901234567890123").integerValue(),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Value::number("-12345678901234567890123").integerValue(),
            std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(Value::number("nan").integerValue(), 0);
}

TEST(Compare, OrdersStringsByCharactersNumbersByValueAndDatesByTime) {
  EXPECT_GT(compare("9.0.0", "10.15.0"), 0);
  EXPECT_LT(compare("a", "\xC3\xA9"), 0);
  EXPECT_EQ(compare("a", "a"), 0);
  EXPECT_LT(compare(Value::number("9"), Value::number("1e1")), 0);
  EXPECT_EQ(compare(Value::number("1.0"), Value::number("1")), 0);
  EXPECT_GT(compare(Date{2}, Date{1}), 0);
}

TEST(Compare, WholeNumbersAreOrderedToTheLastDigit) {
  const auto order = [](const char* left, const char* right) {
    return compare(Value::number(left), Value::number(right));
  };
  EXPECT_LT(order("20240115123045001", "20240115123045002"), 0);
  EXPECT_GT(order("20240115123045002", "20240115123045001"), 0);
  EXPECT_EQ(order("20240115123045002", "20240115123045002"), 0);
  EXPECT_LT(order("9", "10"), 0);
  EXPECT_GT(order("-9", "-10"), 0);
  EXPECT_LT(order("-12", "-11"), 0);
  EXPECT_LT(order("-1", "0"), 0);
  EXPECT_GT(order("1", "-20"), 0);
}

TEST(Compare, TwoKindsOrOneWithoutAnOrderRaise) {
  EXPECT_THROW(compare("1", Value::integer(1)), Exception);
  EXPECT_THROW(compare(Value::null(), Value::null()), Exception);
  EXPECT_THROW(compare(Value(), "a"), Exception);
}

TEST(EqualStrings, ComparesExactly) {
  EXPECT_TRUE(equalStrings("WAIT", "WAIT"));
  EXPECT_FALSE(equalStrings("WAIT", "wait"));
}

TEST(EqualStrings, WhatIsAbsentNeverEqualsAnything) {
  EXPECT_FALSE(equalStrings(Value(), "a"));
  EXPECT_FALSE(equalStrings("a", Value()));
  EXPECT_FALSE(equalStrings(Value(), Value()));
}

TEST(EqualStrings, WhatIsThereAndIsNoStringRaises) {
  EXPECT_THROW(equalStrings("a", Value::integer(1)), Exception);
  EXPECT_THROW(equalStrings(Value::null(), "a"), Exception);
}

TEST(EqualStrings, WhatIsAbsentEqualsNothingWhateverTheOtherIs) {
  for (const Value& other : {Value(), Value("a"), Value::integer(1), Value::null()}) {
    EXPECT_FALSE(equalStrings(Value(), other));
    EXPECT_FALSE(equalStrings(other, Value()));
  }
}

}  // namespace
}  // namespace kelvane::platform
