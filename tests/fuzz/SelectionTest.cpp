// Which rule of a catalogue has to be chosen, as the fuzz target of property lists holds it.

#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fuzz/Selection.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;
using ::testing::ElementsAre;

Value ruleOf(const std::string& product, const Value& version, const Value& minimum = {}) {
  Value rule = Value::dictionary(
      {{"ProductID", product}, {"Version", version}, {"Size", "1"}, {"Hash256", "h"}});
  if (!minimum.isNothing()) rule.set("MinimumOSVersion", minimum);
  return rule;
}

// The number of the rule that is chosen, none or -1 where it cannot be told.
std::optional<int> chosenOf(const std::vector<Value>& rules, const std::string& product = "sw") {
  const Choice choice = chosenRule(plainRules(Value::array(rules)), product, "sw", {14, 2, 1});
  if (choice.kind == Choice::Kind::none) return {};
  return choice.kind == Choice::Kind::one ? static_cast<int>(choice.rule) : -1;
}

TEST(Selection, OfFirmwareIsTheFirstWholeRule) {
  Value partial = Value::dictionary({{"ProductID", "fw"}, {"Version", "3"}, {"Size", "1"}});
  EXPECT_EQ(chosenOf({ruleOf("sw", "1"), partial, ruleOf("fw", "1"), ruleOf("fw", "2")}, "fw"), 2);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1"), partial}, "fw"), std::nullopt);
  EXPECT_EQ(chosenOf({}, "fw"), std::nullopt);
}

TEST(Selection, OfSoftwareIsTheHighestByCharacters) {
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "10.15.0"), ruleOf("sw", "1", "9.0.0")}), 1);
  EXPECT_EQ(chosenOf({ruleOf("sw", "10", "9.0.0"), ruleOf("sw", "9", "9.0.0"),
                      ruleOf("sw", "9", "9.0.0")}),
            1);
  EXPECT_EQ(
      chosenOf({ruleOf("sw", Value::integer(9), "9.0.0"), ruleOf("sw", Value::integer(10), "9.0.0"),
                ruleOf("sw", Value::number("9.5"), "9.0.0")}),
      1);
}

TEST(Selection, OfSoftwareGoesByTheSystem) {
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "14.2.1"), ruleOf("sw", "1", "14.2.2")}), 0);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "abc.def.ghi"), ruleOf("sw", "1", "99.0.0")}), 0);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "1x2y3"), ruleOf("sw", "1", "11.0")}), 0);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "12345"), ruleOf("fw", "1")}), 0);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "9999345"), ruleOf("fw", "1")}), 1);
}

TEST(Selection, WhereNoSoftwareIsSuitedIsTheLastRule) {
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "99.0.0"), ruleOf("fw", "1")}), 1);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "11.0"), ruleOf("fw", "1")}), 1);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1"), ruleOf("fw", "1")}), 1);
  EXPECT_EQ(chosenOf({ruleOf("fw", "1")}), std::nullopt);
}

TEST(Selection, OfOtherKindsIsNone) {
  EXPECT_EQ(chosenOf({"no rule", ruleOf("fw", "1")}, "fw"), std::nullopt);
  EXPECT_EQ(chosenOf({ruleOf("fw", "1"), "no rule"}, "fw"), 0);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", Value::integer(9))}), std::nullopt);
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "9.0.0"), ruleOf("sw", Value::integer(1), "9.0.0")}),
            std::nullopt);
  EXPECT_EQ(chosenOf({ruleOf("sw", Value::boolean(true), "9.0.0")}), 0);
  EXPECT_TRUE(plainRules("text").empty());
}

TEST(Selection, OfTextsBeyondAsciiIsNotTold) {
  EXPECT_EQ(chosenOf({ruleOf("sw", "1", "\xC3\xA4.0.0")}), -1);
}

Value rulesFrom(const std::vector<std::string>& codebases) {
  Value rules = Value::array();
  for (const std::string& each : codebases) {
    rules.append(each.empty() ? Value::dictionary() : Value::dictionary({{"Codebase", each}}));
  }
  return rules;
}

TEST(DescribedPaths, AreThoseOfTheImageOrOfThePackage) {
  const auto exists = [](const std::string& path) {
    return path == "/d/FW_T3.img" || path == "/d/p.bin";
  };
  EXPECT_THAT(
      describedPaths({"x", "t3", "x", "sw", "sw", "sw"},
                     plainRules(rulesFrom({"p.bin", "", "", "h/p.zip", "h/p.bin", "h/q.bin"})),
                     "/d", exists),
      ElementsAre("/d/p.bin", "/d/FW_T3.img", "/d/FW_T3.img", std::nullopt, "/d/p.bin", ""));
  EXPECT_THAT(describedPaths({"x", "x"}, plainRules(rulesFrom({"p.dmg", "p"})), "/d", exists),
              ElementsAre("", ""));
}

TEST(DescribedPaths, EndWhereOneCannotBeDescribed) {
  Value rules = rulesFrom({""});
  rules.append(Value::dictionary({{"Codebase", Value::integer(1)}}));
  EXPECT_THAT(
      describedPaths({"x", "x"}, plainRules(rules), "/d", [](const std::string&) { return false; }),
      ElementsAre(""));
}

}  // namespace
}  // namespace kelvane::fuzz
