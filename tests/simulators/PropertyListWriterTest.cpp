// Property lists as they are written: read again by the platform, they are the same values.

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/PropertyList.h"
#include "simulators/make_service/PropertyListWriter.h"
#include "tests/support/TempFolder.h"

namespace kelvane::simulator {
namespace {

using platform::Value;

constexpr PropertyListForm kForms[] = {PropertyListForm::xml, PropertyListForm::binary};

Value everyKind() {
  return Value::dictionary({{"s", "text \xC3\xA9 & <b>"},
                            {"e", ""},
                            {"i", Value::integer(42)},
                            {"n", Value::integer(-7)},
                            {"g", Value::integer(INT64_MAX)},
                            {"r", Value::number("0.5")},
                            {"t", Value::boolean(true)},
                            {"f", Value::boolean(false)},
                            {"d", Value::data(std::string("\x00\xAB\x7F", 3))},
                            {"w", platform::Date{1769903999}},
                            {"a", Value::array({"x", Value::dictionary()})}});
}

std::string refusalOf(const Value& value) {
  try {
    printPropertyList(value, PropertyListForm::binary);
    return "";
  } catch (const platform::Exception& caught) {
    return caught.what();
  }
}

TEST(PropertyListWriter, EveryKindIsReadAgain) {
  const test::TempFolder folder;
  for (const PropertyListForm form : kForms) {
    const std::string path = folder.write("list.plist", printPropertyList(everyKind(), form));
    EXPECT_EQ(platform::readPropertyList(path), everyKind());
  }
}

TEST(PropertyListWriter, TheFormsDiffer) {
  EXPECT_TRUE(printPropertyList(Value::dictionary(), PropertyListForm::xml).starts_with("<?xml"));
  EXPECT_TRUE(
      printPropertyList(Value::dictionary(), PropertyListForm::binary).starts_with("bplist00"));
}

TEST(PropertyListWriter, WhatHasNoFormIsTold) {
  EXPECT_EQ(refusalOf(Value::null()), "null has no form in a property list");
  EXPECT_EQ(refusalOf(Value::array({Value::null()})), "null has no form in a property list");
  EXPECT_EQ(refusalOf(std::string("a\0b", 3)),
            "a text with a NUL character has no form in a property list");
  EXPECT_EQ(refusalOf(Value::dictionary({{std::string("a\0b", 3), "x"}})),
            "a text with a NUL character has no form in a property list");
  EXPECT_EQ(refusalOf(Value::number("9223372036854775808")),
            "9223372036854775808 is too large for a property list");
  EXPECT_EQ(refusalOf(Value::number("1e999")), "1e999 is too large for a property list");
  EXPECT_EQ(refusalOf(platform::Date{1LL << 40}), "a date is too far away for a property list");
}

}  // namespace
}  // namespace kelvane::simulator
