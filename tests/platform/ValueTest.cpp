#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/Value.h"
#include "tests/platform/Reason.h"

namespace kelvane::platform {
namespace {

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();

// What the action raises, to the character.
using test::reasonOf;

std::int64_t whole(const char* digits) { return Value::number(digits).integerValue(); }

// How two numbers are ordered, and whether that turns round with them.
int order(const char* left, const char* right) {
  const int forward = compare(Value::number(left), Value::number(right));
  EXPECT_EQ(compare(Value::number(right), Value::number(left)), -forward) << left << " " << right;
  return forward;
}

Value twoKeys() { return Value::dictionary({{"a", "1"}, {"b", Value::array({"x", "y"})}}); }

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

TEST(Value, AMissingKeyIsNothing) { EXPECT_TRUE(twoKeys().get("c").isNothing()); }

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

TEST(Value, AReasonNamesTheKindThatWasAsked) {
  const auto keyOf = [](const Value& value) { return reasonOf([&] { value.get("wwn"); }); };
  EXPECT_EQ(keyOf(Value::null()), "asked null for the key \"wwn\"");
  EXPECT_EQ(keyOf(Value::boolean(true)), "asked a boolean for the key \"wwn\"");
  EXPECT_EQ(keyOf(Value::integer(1)), "asked a number for the key \"wwn\"");
  EXPECT_EQ(keyOf("text"), "asked a string for the key \"wwn\"");
  EXPECT_EQ(keyOf(Value::data("x")), "asked data for the key \"wwn\"");
  EXPECT_EQ(keyOf(Date{1}), "asked a date for the key \"wwn\"");
  EXPECT_EQ(keyOf(Value::array()), "asked an array for the key \"wwn\"");
  EXPECT_EQ(reasonOf([] { Value().string(); }), "asked nothing for its text");
  EXPECT_EQ(reasonOf([] { Value::dictionary().string(); }), "asked a dictionary for its text");
}

TEST(Value, AReasonNamesWhatWasAskedFor) {
  const Value null = Value::null();
  EXPECT_EQ(reasonOf([&] { null.truth(); }), "asked null for its truth");
  EXPECT_EQ(reasonOf([&] { null.string(); }), "asked null for its text");
  EXPECT_EQ(reasonOf([&] { null.bytes(); }), "asked null for its bytes");
  EXPECT_EQ(reasonOf([&] { null.digits(); }), "asked null for its number");
  EXPECT_EQ(reasonOf([&] { null.integerValue(); }), "asked null for its number");
  EXPECT_EQ(reasonOf([&] { null.date(); }), "asked null for its date");
  EXPECT_EQ(reasonOf([&] { null.elements(); }), "asked null for its elements");
  EXPECT_EQ(reasonOf([&] { null.count(); }), "asked null for its elements");
  EXPECT_EQ(reasonOf([&] { null.at(0); }), "asked null for its elements");
  EXPECT_EQ(reasonOf([&] { null.entries(); }), "asked null for its entries");
  EXPECT_EQ(reasonOf([&] { null.asDictionary(); }), "asked null for its entries");
}

TEST(Value, OnlyAnArrayTakesElementsAndOnlyADictionaryKeys) {
  Value nothing;
  Value text = "text";
  EXPECT_EQ(reasonOf([&] { nothing.append("x"); }), "asked nothing for its elements");
  EXPECT_EQ(reasonOf([&] { text.append("x"); }), "asked a string for its elements");
  EXPECT_EQ(reasonOf([&] { nothing.set("a", "x"); }), "asked nothing for its entries");
  EXPECT_EQ(reasonOf([&] { text.set("a", "x"); }), "asked a string for its entries");
  EXPECT_EQ(reasonOf([&] { text.setAll(twoKeys()); }), "asked a string for its entries");
  EXPECT_EQ(nothing, Value());
  EXPECT_EQ(text, Value("text"));
}

TEST(Value, AReasonTellsThePlaceInAnArray) {
  EXPECT_EQ(reasonOf([] { Value::array({"x"}).at(1); }), "asked for element 1 of an array of 1");
  EXPECT_EQ(reasonOf([] { Value::array().at(7); }), "asked for element 7 of an array of 0");
}

TEST(Value, AReasonTellsWhereNothingWasToBeStored) {
  EXPECT_EQ(reasonOf([] { Value::array().append(Value()); }), "appended nothing to an array");
  EXPECT_EQ(reasonOf([] { Value::dictionary().set("a b", Value()); }),
            "stored nothing under the key \"a b\"");
  EXPECT_EQ(reasonOf([] {
              Value::dictionary({{"a", "1"}, {"c", Value()}});
            }),
            "stored nothing under the key \"c\"");
}

TEST(Value, AnElementPastTheEndRaises) {
  EXPECT_EQ(Value::array({"x"}).at(0).string(), "x");
  EXPECT_THROW(Value::array({"x"}).at(1), Exception);
}

TEST(Value, StoringNothingRaisesAndLeavesTheValueAsItWas) {
  Value changed = twoKeys();
  EXPECT_THROW(changed.set("a", Value()), Exception);
  EXPECT_EQ(changed, twoKeys());
}

TEST(Value, AppendingNothingRaises) {
  Value list = Value::array();
  EXPECT_THROW(list.append(Value()), Exception);
  EXPECT_EQ(list.count(), 0U);
}

TEST(Value, AChangeToACopyNeverShowsInTheOriginal) {
  const Value original = twoKeys();
  Value copy = original;
  copy.set("a", "2");
  Value list = copy.get("b");
  list.append("z");
  EXPECT_EQ(original, twoKeys());
  EXPECT_EQ(copy.get("b").count(), 2U);
  EXPECT_EQ(list.count(), 3U);
}

TEST(Value, AnElementAppendedToACopyNeverShowsInTheOriginal) {
  const Value original = Value::array({"x"});
  Value copy = original;
  copy.append("y");
  EXPECT_EQ(original, Value::array({"x"}));
  EXPECT_EQ(copy, Value::array({"x", "y"}));
}

TEST(Value, ElementsAppendedOneByOneAllStay) {
  Value list = Value::array();
  for (int i = 0; i < 3; ++i) list.append(Value::integer(i));
  EXPECT_EQ(list, Value::array({Value::integer(0), Value::integer(1), Value::integer(2)}));
}

TEST(Value, AChangeToTheOriginalNeverShowsInACopy) {
  Value original = twoKeys();
  const Value copy = original;
  original.set("a", "2");
  EXPECT_EQ(copy, twoKeys());
}

TEST(Value, KeysKeepTheOrderOfTheirFirstSetting) {
  Value changed = twoKeys();
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

TEST(Value, KeysAreFoundAndReplacedAtEverySize) {
  Value growing = Value::dictionary();
  for (int size = 1; size <= 20; ++size) {
    growing.set("key" + std::to_string(size), "first");
    for (int i = 1; i <= size; ++i) growing.set("key" + std::to_string(i), Value::integer(size));
    ASSERT_EQ(growing.entries().size(), static_cast<std::size_t>(size));
    for (int i = 1; i <= size; ++i) {
      EXPECT_EQ(growing.get("key" + std::to_string(i)), Value::integer(size)) << size;
    }
    EXPECT_FALSE(growing.has("key0")) << size;
    EXPECT_FALSE(growing.has("key" + std::to_string(size + 1))) << size;
  }
}

TEST(Value, AChangeToACopyOfManyKeysNeverShowsInTheOriginal) {
  Value original = Value::dictionary();
  for (int i = 0; i < 30; ++i) original.set("key" + std::to_string(i), "old");
  Value copy = original;
  copy.set("key3", "new");
  copy.set("more", "new");
  EXPECT_EQ(original.get("key3"), Value("old"));
  EXPECT_EQ(copy.get("key3"), Value("new"));
  EXPECT_EQ(copy.get("key29"), Value("old"));
  EXPECT_FALSE(original.has("more"));
}

TEST(Value, SettingAllOfNothingChangesNothing) {
  Value changed = twoKeys();
  changed.setAll(Value());
  EXPECT_EQ(changed, twoKeys());
}

TEST(Value, SetAllReplacesAndAddsButRemovesNothing) {
  Value changed = twoKeys();
  changed.setAll(Value::dictionary({{"b", "new"}, {"c", "added"}}));
  EXPECT_EQ(changed, Value::dictionary({{"a", "1"}, {"b", "new"}, {"c", "added"}}));
}

TEST(Value, EqualityDoesNotDependOnTheOrderOfKeys) {
  EXPECT_EQ(Value::dictionary({{"a", "1"}, {"b", "2"}}),
            Value::dictionary({{"b", "2"}, {"a", "1"}}));
  EXPECT_FALSE(Value::dictionary({{"a", "1"}}) == Value::dictionary({{"b", "1"}}));
}

TEST(Value, DictionariesAreEqualOnlyWithTheSameKeysAndValues) {
  EXPECT_FALSE(twoKeys() == Value::dictionary({{"a", "1"}}));
  EXPECT_FALSE(Value::dictionary({{"a", "1"}}) == twoKeys());
  EXPECT_FALSE(Value::dictionary({{"a", "1"}}) == Value::dictionary({{"a", "2"}}));
  EXPECT_FALSE(Value::dictionary({{"a", Value::null()}}) ==
               Value::dictionary({{"b", Value::null()}}));
  EXPECT_TRUE(Value::dictionary() == Value::dictionary());
}

TEST(Value, NumbersAreEqualByTheirDigits) {
  EXPECT_TRUE(Value::number("1") == Value::integer(1));
  EXPECT_FALSE(Value::number("1") == Value::number("1.0"));
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

TEST(Value, AWholeNumberIsExactUpToTheLimitsAndHeldAtThem) {
  EXPECT_EQ(whole("9223372036854775806"), kMost - 1);
  EXPECT_EQ(whole("9223372036854775807"), kMost);
  EXPECT_EQ(whole("9223372036854775808"), kMost);
  EXPECT_EQ(whole("-9223372036854775807"), kLeast + 1);
  EXPECT_EQ(whole("-9223372036854775808"), kLeast);
  EXPECT_EQ(whole("-9223372036854775809"), kLeast);
}

TEST(Value, ARealIsHeldAtTheLimits) {
  EXPECT_EQ(whole("9223372036854774784.0"), 9223372036854774784);  // the last double below 2^63
  EXPECT_EQ(whole("9223372036854775808.0"), kMost);
  EXPECT_EQ(whole("-9223372036854774784.0"), -9223372036854774784);
  EXPECT_EQ(whole("-9223372036854775808.0"), kLeast);
  EXPECT_EQ(whole("-9223372036854777856.0"), kLeast);
  EXPECT_EQ(whole("1e18"), 1'000'000'000'000'000'000);
  EXPECT_EQ(whole("1e19"), kMost);
  EXPECT_EQ(whole("-1e19"), kLeast);
  EXPECT_EQ(whole("inf"), kMost);
  EXPECT_EQ(whole("-inf"), kLeast);
}

TEST(Value, FractionsAreCutOffTowardsZero) {
  EXPECT_EQ(whole("0.9"), 0);
  EXPECT_EQ(whole("-0.9"), 0);
  EXPECT_EQ(whole("-2.9"), -2);
  EXPECT_EQ(whole("25e-1"), 2);
  EXPECT_EQ(whole("1.5E1"), 15);
  EXPECT_EQ(whole("-0"), 0);
  EXPECT_EQ(whole("-nan"), 0);
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
  EXPECT_LT(order("20240115123045001", "20240115123045002"), 0);
  EXPECT_GT(order("20240115123045002", "20240115123045001"), 0);
  EXPECT_EQ(order("20240115123045002", "20240115123045002"), 0);
  EXPECT_LT(order("9", "10"), 0);
  EXPECT_GT(order("-9", "-10"), 0);
  EXPECT_LT(order("-12", "-11"), 0);
  EXPECT_LT(order("-1", "0"), 0);
  EXPECT_GT(order("1", "-20"), 0);
}

TEST(Compare, WholeNumbersOfTwoLengthsAreOrderedByValue) {
  EXPECT_EQ(order("99", "100"), -1);
  EXPECT_EQ(order("-99", "-100"), 1);
  EXPECT_EQ(order("9", "-10"), 1);
  EXPECT_EQ(order("-9", "10"), -1);
  EXPECT_EQ(order("0", "1"), -1);
  EXPECT_EQ(order("9", "12345678901234567890123"), -1);
  EXPECT_EQ(order("-9", "-12345678901234567890123"), 1);
}

TEST(Compare, WholeNumbersOfOneLengthAreOrderedByTheirDigits) {
  EXPECT_EQ(order("12345678901234567890123", "12345678901234567890124"), -1);
  EXPECT_EQ(order("-12345678901234567890123", "-12345678901234567890124"), 1);
  EXPECT_EQ(order("-7", "-7"), 0);
  EXPECT_EQ(order("0", "0"), 0);
  EXPECT_EQ(order("7", "-7"), 1);
}

TEST(Compare, RealsAreOrderedByValueAlsoAmongWholeNumbers) {
  EXPECT_EQ(order("1.5", "1.50"), 0);
  EXPECT_EQ(order("1.5", "1.25"), 1);
  EXPECT_EQ(order("-1.5", "-1.25"), -1);
  EXPECT_EQ(order("-0.0", "0.0"), 0);
  EXPECT_EQ(order("10", "9.5"), 1);
  EXPECT_EQ(order("10.0", "9"), 1);
  EXPECT_EQ(order("-10", "-9.5"), -1);
  EXPECT_EQ(order("1e2", "100"), 0);
  EXPECT_EQ(order("1e-2", "1e-1"), -1);
}

TEST(Compare, ZeroWithASignIsZero) {
  EXPECT_EQ(order("-0", "0"), 0);
  EXPECT_EQ(order("0", "-0"), 0);
  EXPECT_EQ(order("-0", "-0"), 0);
  EXPECT_LT(order("-1", "-0"), 0);
  EXPECT_GT(order("1", "-0"), 0);
}

TEST(Compare, WhatIsNoNumberStandsBelowAllNumbers) {
  EXPECT_LT(order("nan", "-inf"), 0);
  EXPECT_GT(order("1", "nan"), 0);
  EXPECT_LT(order("nan", "1"), 0);
  EXPECT_EQ(order("nan", "nan"), 0);
}

TEST(Compare, StringsAreOrderedCharacterByCharacter) {
  EXPECT_EQ(compare("a", "b"), -1);
  EXPECT_EQ(compare("b", "a"), 1);
  EXPECT_EQ(compare("a", "aa"), -1);
  EXPECT_EQ(compare("", "a"), -1);
  EXPECT_EQ(compare("Z", "a"), -1);
}

TEST(Compare, DatesAreOrderedByTimeBeforeTheEpochToo) {
  EXPECT_EQ(compare(Date{1}, Date{2}), -1);
  EXPECT_EQ(compare(Date{-2}, Date{-1}), -1);
  EXPECT_EQ(compare(Date{-1}, Date{-2}), 1);
  EXPECT_EQ(compare(Date{5}, Date{5}), 0);
  EXPECT_FALSE(Date{5} < Date{5});
}

TEST(Compare, AReasonNamesBothKinds) {
  const auto reason = [](const Value& left, const Value& right) {
    return reasonOf([&] { compare(left, right); });
  };
  EXPECT_EQ(reason("1", Value::integer(1)), "cannot order a string and a number");
  EXPECT_EQ(reason(Value::integer(1), "1"), "cannot order a number and a string");
  EXPECT_EQ(reason(Date{1}, Value::integer(1)), "cannot order a date and a number");
  EXPECT_EQ(reason(Value::integer(1), Date{1}), "cannot order a number and a date");
  EXPECT_EQ(reason(Value(), Value::null()), "cannot order nothing and null");
  EXPECT_EQ(reason(Value::data("x"), Value::data("x")), "cannot order data and data");
  EXPECT_EQ(reason(Value::boolean(true), Value::boolean(true)),
            "cannot order a boolean and a boolean");
  EXPECT_EQ(reason(Value::array(), Value::dictionary()), "cannot order an array and a dictionary");
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

TEST(EqualStrings, AReasonNamesTheKind) {
  EXPECT_EQ(reasonOf([] { equalStrings("a", Value::integer(1)); }),
            "compared a number as a string");
  EXPECT_EQ(reasonOf([] { equalStrings(Value::null(), Value::integer(1)); }),
            "compared null as a string");
  EXPECT_EQ(reasonOf([] { equalStrings("a", Value::array()); }), "compared an array as a string");
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
