// Values and their texts: JSON, property lists, "%@", the order of numbers.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "console/job/LoggedValue.h"
#include "platform/Json.h"
#include "platform/PropertyList.h"
#include "platform/Text.h"
#include "platform/Utf8.h"
#include "simulators/make_service/PropertyListWriter.h"
#include "tests/properties/Drawn.h"
#include "tests/support/FreshValue.h"

namespace kelvane::properties {
namespace {

using platform::Value;
using test::fresh;

std::string printed(const Value& value) {
  const auto text = platform::printJson(value);
  RC_ASSERT(text.has_value());
  return *text;
}

RC_GTEST_PROP(JsonProperties, WhatIsWrittenIsReadToTheDigit, ()) {
  const Value value = *containers();
  const std::string text = printed(value);
  const Value read = platform::parseJson(text);
  RC_ASSERT(read == value);
  RC_ASSERT(printed(read) == text);  // the keys are in their order, too
}

RC_GTEST_PROP(JsonProperties, OneLineHoldsTheSame, ()) {
  const Value value = *containers();
  const std::string line = platform::printJsonLine(value).value_or("");
  RC_ASSERT(line.find('\n') == std::string::npos);
  RC_ASSERT(printed(platform::parseJson(line)) == printed(value));
}

RC_GTEST_PROP(JsonProperties, OfATextThatIsCutNothingIsRead, ()) {
  const std::string text = printed(*containers());
  const auto length = *between<std::size_t>(0, text.size());
  RC_ASSERT(platform::parseJson(text.substr(0, length)).isNothing());
}

// What a job does with its file: a record is changed in a copy, written, shown, and changed again.
RC_GTEST_PROP(RememberedTextProperties, AreWhatWouldBeMadeAnew, ()) {
  constexpr int kFew = 5;  // of what is changed again and again
  const auto drawn = rc::gen::container<std::vector<Value>>(objects());
  Value records = Value::array(*rc::gen::resize(kFew, drawn));
  const auto keys = rc::gen::container<std::vector<std::string>>(texts());
  for (const std::string& key : *rc::gen::resize(kFew, keys)) {
    Value updated = Value::array();
    for (const Value& record : records.elements()) {
      Value copy = record;
      if (*rc::gen::arbitrary<bool>()) copy.set(key, *rc::gen::resize(kFew, containers()));
      updated.append(copy);
      RC_ASSERT(platform::describe(copy) == platform::describe(fresh(copy)));
    }
    for (const Value* each : {&records, &updated}) {
      RC_ASSERT(platform::format("%@", *each) == platform::describe(fresh(*each)));
      RC_ASSERT(printed(*each) == printed(fresh(*each)));
      RC_ASSERT(printed(*each) == printed(fresh(*each)));
    }
    records = updated;
  }
}

RC_GTEST_PROP(DescriptionProperties, AreReadOutOfALogAgain, ()) {
  const Value value = *containers();
  RC_ASSERT(console::parseLogged(platform::describe(value)) == console::asLogged(value));
}

RC_GTEST_PROP(PropertyListProperties, BothFormsHoldTheSame, ()) {
  const Value value = *propertyLists();
  using simulator::PropertyListForm;
  for (const auto form : {PropertyListForm::xml, PropertyListForm::binary}) {
    const std::string list = simulator::printPropertyList(value, form);
    const Value read = platform::parsePropertyList(list);
    RC_LOG() << (form == PropertyListForm::xml ? list : "binary");
    RC_ASSERT(read == value);
  }
}

// The sign of the difference.
int orderOf(std::int64_t left, std::int64_t right) {
  if (left == right) return 0;
  return left < right ? -1 : 1;
}

RC_GTEST_PROP(OrderProperties, WholeNumbersGoByTheirValue,
              (std::int64_t left, std::int64_t right)) {
  RC_ASSERT(platform::compare(Value::integer(left), Value::integer(right)) == orderOf(left, right));
  RC_ASSERT(Value::integer(left).integerValue() == left);
}

RC_GTEST_PROP(OrderProperties, NumbersHaveOneOrder, ()) {
  std::vector<Value> all;
  for (const std::string& digits : *rc::gen::container<std::vector<std::string>>(numbers())) {
    all.push_back(Value::number(digits));
  }
  std::sort(all.begin(), all.end(), [](const Value& left, const Value& right) {
    return platform::compare(left, right) < 0;
  });
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = i; j < all.size(); ++j) {
      RC_ASSERT(platform::compare(all[i], all[j]) <= 0);
      RC_ASSERT(platform::compare(all[i], all[j]) == -platform::compare(all[j], all[i]));
    }
  }
}

RC_GTEST_PROP(Utf8Properties, WhatIsRepairedIsTextAndStaysSo, ()) {
  const std::string some = *bytes();
  const std::string text = platform::repairedUtf8(some);
  RC_ASSERT(platform::isUtf8(text));
  RC_ASSERT(platform::repairedUtf8(text) == text);
  RC_ASSERT(platform::isUtf8(some) == (text == some));
}

}  // namespace
}  // namespace kelvane::properties
