#include <string>

#include <gtest/gtest.h>

#include "platform/PropertyList.h"
#include "support/PropertyLists.h"
#include "support/TempFolder.h"

namespace kelvane::platform {
namespace {

using kelvane::testing::binaryPropertyList;
using kelvane::testing::xmlPropertyList;

constexpr char kEveryKind[] =
    "<dict><key>s</key><string>text \xC3\xA9 &amp;</string><key>i</key><integer>42</integer>"
    "<key>n</key><integer>-7</integer><key>r</key><real>0.5</real><key>t</key><true/>"
    "<key>f</key><false/><key>d</key><data>AKt/</data><key>w</key><date>2026-01-31T23:59:59Z</date>"
    "<key>a</key><array><string>x</string><dict/></array></dict>";

Value everyKind() {
  return Value::dictionary({{"s", "text \xC3\xA9 &"},
                            {"i", Value::integer(42)},
                            {"n", Value::integer(-7)},
                            {"r", Value::number("0.5")},
                            {"t", Value::boolean(true)},
                            {"f", Value::boolean(false)},
                            {"d", Value::data(std::string("\x00\xAB\x7F", 3))},
                            {"w", Date{1769903999}},
                            {"a", Value::array({"x", Value::dictionary()})}});
}

class PropertyList : public ::testing::Test {
 protected:
  Value read(const std::string& bytes) const {
    return readPropertyList(folder.write("list.plist", bytes));
  }

  kelvane::testing::TempFolder folder;
};

TEST_F(PropertyList, ReadsEveryKindFromXml) {
  EXPECT_EQ(read(xmlPropertyList(kEveryKind)), everyKind());
}

TEST_F(PropertyList, ReadsEveryKindFromBinary) {
  EXPECT_EQ(read(binaryPropertyList(kEveryKind)), everyKind());
}

TEST_F(PropertyList, WhatCannotBeReadIsNothing) {
  EXPECT_TRUE(readPropertyList(folder / "missing").isNothing());
  EXPECT_TRUE(readPropertyList(folder.path()).isNothing());
  EXPECT_TRUE(read("").isNothing());
  EXPECT_TRUE(read("no list").isNothing());
}

TEST_F(PropertyList, ARootThatIsNoDictionaryIsNothing) {
  EXPECT_TRUE(read(xmlPropertyList("<array><string>x</string></array>")).isNothing());
  EXPECT_TRUE(read(xmlPropertyList("<string>x</string>")).isNothing());
}

TEST_F(PropertyList, NoPrefixOfAListBreaksTheReader) {
  for (const std::string& whole : {xmlPropertyList(kEveryKind), binaryPropertyList(kEveryKind)}) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const Value found = read(whole.substr(0, length));
      EXPECT_TRUE(found.isNothing() || found.isDictionary());
    }
  }
}

TEST_F(PropertyList, NoFlippedByteBreaksTheReader) {
  for (const std::string& whole : {xmlPropertyList(kEveryKind), binaryPropertyList(kEveryKind)}) {
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const int flip : {0x01, 0x80, 0xFF}) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ flip);
        const Value found = read(damaged);
        EXPECT_TRUE(found.isNothing() || found.isDictionary());
      }
    }
  }
}

}  // namespace
}  // namespace kelvane::platform
