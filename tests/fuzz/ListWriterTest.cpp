// The tests' own writers of property lists, byte by byte, and what is made for them.

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/PropertyList.h"
#include "tests/fuzz/ListWriter.h"
#include "tests/fuzz/MadeList.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

Value entryOf(const Value& value) { return Value::dictionary({{"a", value}}); }

std::string xmlWith(const std::vector<std::uint8_t>& style, const Value& value) {
  Bytes bytes(style.data(), style.size());
  return xmlList(entryOf(value), bytes);
}

std::string binaryWith(const std::vector<std::uint8_t>& style, const Value& value) {
  Bytes bytes(style.data(), style.size());
  return binaryList(entryOf(value), bytes);
}

TEST(XmlListWriter, WritesEachKind) {
  const auto element = [](const Value& value) {
    const std::string all = xmlWith({}, value);
    const std::string start = "<plist><dict><key>a</key>";
    const std::string end = "</dict></plist>\n";
    EXPECT_TRUE(all.starts_with(start) && all.ends_with(end)) << all;
    return all.substr(start.size(), all.size() - start.size() - end.size());
  };
  EXPECT_EQ(element("x<&>\r"), "<string>x&lt;&amp;&gt;&#13;</string>");
  EXPECT_EQ(element(""), "<string/>");
  EXPECT_EQ(element(Value::boolean(true)), "<true/>");
  EXPECT_EQ(element(Value::number("18446744073709551615")),
            "<integer>18446744073709551615</integer>");
  EXPECT_EQ(element(Value::number("0.5")), "<real>0.5</real>");
  EXPECT_EQ(element(Value::number("-0")), "<real>-0</real>");
  EXPECT_EQ(element(Value::data(std::string("\x00\xAB\x7F\x01", 4))), "<data>AKt/AQ==</data>");
  EXPECT_EQ(element(platform::Date{1769903999}), "<date>2026-01-31T23:59:59Z</date>");
  EXPECT_EQ(element(platform::Date{-62167219200}), "<date>0000-01-01T00:00:00Z</date>");
  EXPECT_EQ(element(Value::array({Value::boolean(false)})), "<array><false/></array>");
}

TEST(XmlListWriter, SpellsTextsInSeveralWays) {
  EXPECT_EQ(xmlWith({0, 0, 0, 0, 0, 0, 1}, "]]>"),
            "<plist><dict><key>a</key><string><![CDATA[]]]]><![CDATA[>]]></string></dict>"
            "</plist>\n");
  EXPECT_EQ(xmlWith({0, 0, 0, 0, 2, 0, 3}, "\xC3\xA4"),
            "<plist><dict><key>&#x61;</key><string>&#228;</string></dict></plist>\n");
}

TEST(XmlListWriter, HasNoFormForControlCharacters) {
  EXPECT_TRUE(hasXmlForm(entryOf("\t\n\r \x7F\xC3\xA4\xF0\x9F\x98\x80")));
  EXPECT_FALSE(hasXmlForm(entryOf(Value::array({"\x01"}))));
  EXPECT_FALSE(hasXmlForm(entryOf("\xEF\xBF\xBE")));
  EXPECT_FALSE(hasXmlForm(Value::dictionary({{"\x1F", "x"}})));
}

// Of the objects, with the references as they are, and of three of them.
std::string objectsOf(const std::string& list) {
  EXPECT_TRUE(list.starts_with("bplist00"));
  const auto table = static_cast<unsigned char>(list.back());
  return list.substr(8, table - 8U);
}

TEST(BinaryListWriter, WritesAWholeList) {
  const std::string list("bplist00QaQb\xD1\x00\x01\x08\x0A\x0C", 18);
  const std::string trailer = std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') + "\x03" +
                              std::string(7, '\0') + "\x02" + std::string(7, '\0') + "\x0F";
  EXPECT_EQ(binaryWith({}, "b"), list + trailer);
}

TEST(BinaryListWriter, WritesWhatIsTheSameOnceOrTwice) {
  EXPECT_EQ(objectsOf(binaryWith({0}, "a")), std::string("QaQa\xD1\x00\x01", 7));
  EXPECT_EQ(objectsOf(binaryWith({1}, "a")), std::string("Qa\xD1\x00\x00", 5));
}

TEST(BinaryListWriter, WritesEachKind) {
  const auto object = [](const Value& value) {
    const std::string all = objectsOf(binaryWith({}, value));
    return all.substr(2, all.size() - 5);
  };
  EXPECT_EQ(object(Value::boolean(false)), "\x08");
  EXPECT_EQ(object(Value::number("255")), "\x10\xFF");
  EXPECT_EQ(object(Value::number("256")), std::string("\x11\x01\x00", 3));
  EXPECT_EQ(object(Value::number("-1")), "\x13" + std::string(8, '\xFF'));
  EXPECT_EQ(object(Value::number("9223372036854775808")),
            "\x14" + std::string(8, '\0') + "\x80" + std::string(7, '\0'));
  EXPECT_EQ(object(Value::number("0.5")), std::string("\x22\x3F\x00\x00\x00", 5));
  EXPECT_EQ(object(Value::number("0.1")), "\x23\x3F\xB9\x99\x99\x99\x99\x99\x9A");
  EXPECT_EQ(object(platform::Date{978307201}), "\x33\x3F\xF0" + std::string(6, '\0'));
  EXPECT_EQ(object(Value::data("xyz")), "\x43xyz");
  EXPECT_EQ(object(std::string(16, 'x')), "\x5F\x10\x10" + std::string(16, 'x'));
  EXPECT_EQ(object("\xC3\xA4\xF0\x9F\x98\x80"), std::string("\x63\x00\xE4\xD8\x3D\xDE\x00", 7));
  EXPECT_EQ(object(""), "P");
}

TEST(MadeList, ComesToTheDepthThatIsReadAndBeyond) {
  const auto depthOf = [](const std::vector<std::uint8_t>& made) {
    Bytes bytes(made.data(), made.size());
    return depthOfList(madeList(bytes));
  };
  EXPECT_EQ(depthOf({0, 1, 254, 1}), platform::kPropertyListDepthLimit);
  EXPECT_EQ(depthOf({0, 1, 255, 0}), platform::kPropertyListDepthLimit + 1);
  EXPECT_EQ(depthOf({}), 1);
}

}  // namespace
}  // namespace kelvane::fuzz
