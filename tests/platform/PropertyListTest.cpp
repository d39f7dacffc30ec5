#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/PropertyList.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TempFolder.h"

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

TEST_F(PropertyList, LargeNumbersStayAsTheyAre) {
  const std::string content =
      "<dict><key>a</key><integer>18446744073709551615</integer>"
      "<key>b</key><integer>9223372036854775808</integer>"
      "<key>c</key><integer>9223372036854775807</integer>"
      "<key>d</key><integer>-9223372036854775808</integer><key>e</key><integer>-1</integer></dict>";
  for (const std::string& list : {xmlPropertyList(content), binaryPropertyList(content)}) {
    const Value found = read(list);
    EXPECT_EQ(found.get("a").digits(), "18446744073709551615");
    EXPECT_EQ(found.get("b").digits(), "9223372036854775808");
    EXPECT_EQ(found.get("c").digits(), "9223372036854775807");
    EXPECT_EQ(found.get("d").digits(), "-9223372036854775808");
    EXPECT_EQ(found.get("e").digits(), "-1");
  }
}

TEST_F(PropertyList, DatesFarFrom2001StayAsTheyAre) {
  const std::string content =
      "<dict><key>a</key><date>2100-01-01T00:00:00Z</date>"
      "<key>b</key><date>1900-01-01T00:00:00Z</date></dict>";
  for (const std::string& list : {xmlPropertyList(content), binaryPropertyList(content)}) {
    const Value found = read(list);
    EXPECT_EQ(found.get("a"), Value(Date{4102444800}));
    EXPECT_EQ(found.get("b"), Value(Date{-2208988800}));
  }
}

TEST_F(PropertyList, AByteOrderMarkIsPassedOver) {
  EXPECT_EQ(read("\xEF\xBB\xBF" + xmlPropertyList(kEveryKind)), everyKind());
}

// Arrays inside one another below the root's key.
std::string nested(int arrays) {
  std::string content = "<dict><key>a</key>";
  for (int i = 0; i < arrays; ++i) content += "<array>";
  for (int i = 0; i < arrays; ++i) content += "</array>";
  return content + "</dict>";
}

TEST_F(PropertyList, NestingIsReadDownToTheLimitAndNotBelow) {
  for (const auto& make : {xmlPropertyList, binaryPropertyList}) {
    EXPECT_TRUE(read(make(nested(511))).isDictionary());
    EXPECT_TRUE(read(make(nested(512))).isNothing());
  }
}

TEST_F(PropertyList, AMillionContainersInsideOneAnotherNeitherOverflowNorHang) {
  EXPECT_TRUE(read(xmlPropertyList(nested(1'000'000))).isNothing());
}

TEST_F(PropertyList, WhatStandsInCommentsAndTextsIsNoNesting) {
  std::string arrays;
  for (int i = 0; i < 600; ++i) arrays += "<array>";
  EXPECT_TRUE(read(xmlPropertyList("<!-- " + arrays + " --><dict/>")).isDictionary());
  std::string siblings = "<dict><key>a</key><array>";
  for (int i = 0; i < 600; ++i) siblings += "<array/><dict></dict>";
  EXPECT_TRUE(read(xmlPropertyList(siblings + "</array></dict>")).isDictionary());
}

// A binary list of these objects, the first of them the root; references are single bytes.
std::string binaryOf(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += {static_cast<char>(bytes.size() >> 8U), static_cast<char>(bytes.size() & 0xFFU)};
    bytes += object;
  }
  const auto position = static_cast<std::uint16_t>(bytes.size());
  const auto eight = [](std::size_t value) {
    return std::string(6, '\0') + static_cast<char>(value >> 8U) + static_cast<char>(value & 0xFFU);
  };
  return bytes + table + std::string(6, '\0') + "\x02\x01" + eight(objects.size()) + eight(0) +
         eight(position);
}

// A dictionary of one entry: the key is object 1, the value object 2.
const std::string kOneEntry = {'\xD1', 1, 2};

TEST_F(PropertyList, ABinaryListByHandIsRead) {
  EXPECT_EQ(read(binaryOf({kOneEntry, "Qa", {'\xA2', 1, 1}})),
            Value::dictionary({{"a", Value::array({"a", "a"})}}));
}

TEST_F(PropertyList, ReferencesThatMultiplyAreNotFollowed) {
  // Each array holds the next one ten times over: ten to the power of sixty.
  std::vector<std::string> objects = {kOneEntry, "Qa"};
  for (char next = 3; next < 63; ++next) objects.push_back('\xAA' + std::string(10, next));
  objects.emplace_back("Qb");
  EXPECT_TRUE(read(binaryOf(objects)).isNothing());
}

TEST_F(PropertyList, ReferencesInACircleAreNotFollowed) {
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\xA1', 2}})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\xA1', 3}, {'\xA1', 2}})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\xA1', 0}})).isNothing());
}

TEST_F(PropertyList, ReferencesAndCountsOutsideTheListAreDamage) {
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\xA1', 9}})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\xAE', 1}})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", "\xAF\x12\x7F\xFF\xFF\xFF"})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", "\xAF"})).isNothing());
}

TEST_F(PropertyList, ACountOfItsOwnIsRead) {
  const Value found = read(binaryOf({kOneEntry, "Qa", "\xAF\x10\x10" + std::string(16, '\x01')}));
  EXPECT_EQ(found.get("a").count(), 16U);
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
