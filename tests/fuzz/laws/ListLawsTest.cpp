// The laws of property lists and of chosen packages bite.
#include <optional>

#include <gtest/gtest.h>

#include "tests/fuzz/laws/ListLaws.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

const Value kList = Value::dictionary({{"a", Value::array({Value::number("1.50"), "b"})}});

TEST(ListLaw, IsOfARootThatIsShownAndWritten) {
  requireList(kList, "shown", R"({"a": [1.50, "b"]})");
  EXPECT_DEATH(requireList(Value::array(), "", "[]"), "the root is a dictionary");
  EXPECT_DEATH(requireList(kList, "\xFF", R"({"a": [1.50, "b"]})"), "what is shown is UTF-8");
  EXPECT_DEATH(requireList(kList, "", R"({"a": [1.5, "b"]})"), "is read again");
}

TEST(ListLaw, IsOfWhatJsonHasAFormFor) {
  EXPECT_DEATH(requireList(kList, "", std::nullopt), "has a form for is written");
  for (const Value& formless :
       {Value::data("x"), Value(platform::Date{0}), Value::number("inf"), Value::number("nan")}) {
    const Value list =
        Value::dictionary({{"a", Value::array({Value::dictionary({{"b", formless}})})}});
    requireList(list, "", std::nullopt);
    EXPECT_DEATH(requireList(list, "", "{}"), "has a form for is written");
  }
}

TEST(ReadListLaw, IsOfEveryDigitAndOfNothingTooDeep) {
  requireReadList(kList, false, kList, "");
  requireReadList(kList, true, Value(), "");
  EXPECT_DEATH(requireReadList(kList, false, Value(), "bytes"), "as it was meant\n.*bytes");
  EXPECT_DEATH(requireReadList(Value::dictionary({{"a", Value::number("1.50")}}), false,
                               Value::dictionary({{"a", Value::number("1.5")}}), ""),
               "as it was meant");
  EXPECT_DEATH(requireReadList(kList, true, kList, ""), "what is too deep is not read");
}

const Value kFirst = Value::dictionary({{"version", "1"}});
const Value kSecond = Value::dictionary({{"version", "2"}});
const Value kRules = Value::array({kFirst, kSecond});

TEST(ChosenLaw, IsOfTheOneRuleThatApplies) {
  const Choice second = {Choice::Kind::one, 1};
  requireChosen(second, kRules, "t3", kSecond);
  EXPECT_DEATH(requireChosen(second, kRules, "t3", kFirst), "applies to the product is chosen");
  EXPECT_DEATH(requireChosen(second, kRules, "t3", Value::dictionary()), "applies to the product");
}

TEST(ChosenLaw, IsOfNoneWhereNoneApplies) {
  requireChosen({}, kRules, "t3", Value::dictionary());
  EXPECT_DEATH(requireChosen({}, kRules, "t3", kFirst), "none is chosen");
}

TEST(ChosenLaw, IsOfSomeRuleOfTheCatalogueWhereItIsNotLaidDown) {
  const Choice untold = {Choice::Kind::untold, 0};
  requireChosen(untold, kRules, "t3", Value::dictionary());
  requireChosen(untold, kRules, "t3", kFirst);
  EXPECT_DEATH(requireChosen(untold, kRules, "t3", Value::dictionary({{"version", "3"}})),
               "a rule of the catalogue is chosen");
}

}  // namespace
}  // namespace kelvane::fuzz
