#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Json.h"
#include "platform/PropertyList.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

using kelvane::test::binaryPropertyList;
using kelvane::test::xmlPropertyList;

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

  kelvane::test::TempFolder folder;
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

TEST_F(PropertyList, WhatFollowsAByteOrderMarkIsReadAsIfItStoodAlone) {
  EXPECT_EQ(read("\xEF\xBB\xBF" + binaryPropertyList(kEveryKind)), everyKind());
  EXPECT_EQ(read("\xEF\xBB\xBF\n" + xmlPropertyList(kEveryKind)), everyKind());
}

// Arrays inside one another below the root's key.
std::string nestedList(int arrays) {
  std::string content = "<dict><key>a</key>";
  for (int i = 0; i < arrays; ++i) content += "<array>";
  for (int i = 0; i < arrays; ++i) content += "</array>";
  return content + "</dict>";
}

// What is read stands one container deeper in a job record.
TEST_F(PropertyList, NestingIsReadDownToWhatJsonCanHoldAndNotBelow) {
  for (const auto& make : {xmlPropertyList, binaryPropertyList}) {
    const Value deepest = read(make(nestedList(510)));
    ASSERT_TRUE(deepest.isDictionary());
    EXPECT_TRUE(printJson(Value::array({deepest})).has_value());
    EXPECT_TRUE(read(make(nestedList(511))).isNothing());
  }
}

TEST_F(PropertyList, AValueInTheDeepestContainerCountsAsNoContainer) {
  std::string content = nestedList(510);
  content.insert(content.find("</array>"), "<string>x</string>");
  EXPECT_TRUE(read(xmlPropertyList(content)).isDictionary());
  EXPECT_TRUE(read(binaryPropertyList(content)).isDictionary());
}

// Where other readers of tags have been led astray.
TEST_F(PropertyList, NestingThatIsHiddenFromASimpleScanIsStillNesting) {
  const std::string deep = nestedList(30'000);
  for (const std::string& before :
       {std::string("<!--> --><plist>"), std::string("<?x > ?><plist>"),
        std::string("<!DOCTYPE plist [ <!ELEMENT x (#PCDATA)> ]><plist>"),
        std::string("<plist version=\"/>\">"), std::string("<!----><plist>")}) {
    EXPECT_TRUE(read("<?xml version=\"1.0\"?>" + before + deep + "</plist>").isNothing()) << before;
    EXPECT_TRUE(read(before + "<dict><key>a</key><string>x</string></dict></plist>").isDictionary())
        << before;
  }
}

TEST_F(PropertyList, WhatACommentHidesIsNotThere) {
  EXPECT_EQ(read("<plist><!--><dict><key>a</key><string>x</string></dict>--><dict/></plist>"),
            Value::dictionary());
}

TEST_F(PropertyList, EntitiesOfItsOwnAreDamage) {
  const std::string content = "<plist><dict><key>a</key><string>&e;</string></dict></plist>";
  EXPECT_TRUE(read("<!DOCTYPE plist [<!ENTITY e \"x\">]>" + content).isNothing());
  EXPECT_TRUE(read("<!DOCTYPE plist SYSTEM \"elsewhere.dtd\">" + content).isNothing());
  EXPECT_TRUE(read(content).isNothing());
}

TEST_F(PropertyList, CharactersByNumberAndMarkedTextsAreRead) {
  EXPECT_EQ(read("<plist><dict><key>&#97;</key><string>&lt;&#xE9;<![CDATA[<&]]></string></dict>"
                 "</plist>"),
            Value::dictionary({{"a", "<\xC3\xA9<&"}}));
}

TEST_F(PropertyList, BlanksInFrontOfTheFirstTagAreNoDamage) {
  EXPECT_TRUE(read(" \r\n\t" + xmlPropertyList("<dict/>")).isDictionary());
}

// One entry "a" with this value.
std::string entry(const std::string& value) {
  return "<plist><dict><key>a</key>" + value + "</dict></plist>";
}

class Damaged : public PropertyList, public ::testing::WithParamInterface<const char*> {};

TEST_P(Damaged, ValueDamagesTheWhole) {
  EXPECT_TRUE(read(entry("<string>x</string><key>b</key>" + std::string(GetParam()))).isNothing());
}

INSTANTIATE_TEST_SUITE_P(
    InXml, Damaged,
    ::testing::Values(
        "<integer>12abc</integer>", "<integer></integer>", "<integer>-</integer>", "<integer/>",
        "<integer>1 2</integer>", "<integer>0x</integer>", "<integer>0xG</integer>",
        "<integer>1.5</integer>", "<integer>18446744073709551616</integer>",
        "<integer>-9223372036854775809</integer>", "<integer>--1</integer>", "<real>abc</real>",
        "<real></real>", "<real>1.5x</real>", "<real>0x10</real>", "<date>yesterday</date>",
        "<date></date>", "<date>2026-13-01T00:00:00Z</date>", "<date>2026-01-01</date>",
        "<date>2026-01-01T00:00:00</date>", "<date>2026-01-01T00:00:00ZZ</date>",
        "<date>2026- 1-31T23:59:59Z</date>", "<date>2026-1-31T23:59:59ZZ</date>",
        "<data>AKt</data>", "<data>A=t/</data>", "<data>AK*/</data>", "<data>====</data>",
        "<data>A===</data>", "<wrong/>", "<string><b/></string>", "<string>x</integer>", "text",
        "<plist/>", "<string>x<plist/></string>", "<key>c</key><string/>", ""));

TEST_F(PropertyList, NoPrintableCharacterIsABlank) {
  for (char character = '!'; character <= '~'; ++character) {
    const std::string one(1, character);
    const bool isDigit = character >= '0' && character <= '9';
    EXPECT_TRUE(parsePropertyList(entry(one + "<true/>")).isNothing()) << one;
    EXPECT_EQ(parsePropertyList(entry("<integer>1" + one + "</integer>")).isNothing(), !isDigit)
        << one;
    EXPECT_TRUE(parsePropertyList(entry("<data>AKt/" + one + "</data>")).isNothing()) << one;
  }
}

TEST_F(PropertyList, DataIsMadeOfTheDigitsOfBase64Alone) {
  for (char character = '!'; character <= '~'; ++character) {
    const bool isDigit =
        (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
        (character >= '0' && character <= '9') || character == '+' || character == '/';
    const std::string one(1, character);
    EXPECT_EQ(parsePropertyList(entry("<data>AK" + one + "/</data>")).isNothing(), !isDigit) << one;
  }
}

TEST_F(PropertyList, AValueWithoutAKeyIsDamage) {
  EXPECT_TRUE(read("<plist><dict><string>x</string></dict></plist>").isNothing());
  EXPECT_TRUE(read("<plist><dict><key>a</key></dict></plist>").isNothing());
  EXPECT_TRUE(read(entry("<array><key>b</key></array>")).isNothing());
}

TEST_F(PropertyList, MoreThanOneRootIsDamage) {
  EXPECT_TRUE(read("<plist><dict/><dict/></plist>").isNothing());
  EXPECT_TRUE(read("<plist></plist>").isNothing());
  EXPECT_TRUE(read("<dict/>").isDictionary());
}

TEST_F(PropertyList, OfAKeyThatStandsTwiceTheLastValueCounts) {
  EXPECT_EQ(read(entry("<string>x</string><key>a</key><true/>")),
            Value::dictionary({{"a", Value::boolean(true)}}));
}

struct Written {
  const char* element;
  Value value;
};

class Sound : public PropertyList, public ::testing::WithParamInterface<Written> {};

TEST_P(Sound, ValueIsReadAsItWasMeant) {
  EXPECT_EQ(read(entry(GetParam().element)).get("a"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    InXml, Sound,
    ::testing::Values(
        Written{"<integer> 12\n</integer>", Value::integer(12)},
        Written{"<integer>+012</integer>", Value::integer(12)},
        Written{"<integer>-0</integer>", Value::integer(0)},
        Written{"<integer>0x1F</integer>", Value::integer(31)},
        Written{"<integer>-0X1f</integer>", Value::integer(-31)},
        Written{"<real> -1.50 </real>", Value::number("-1.5")},
        Written{"<real>3</real>", Value::number("3")},
        Written{"<real>1e30</real>", Value::number("1e+30")},
        Written{"<real>nan</real>", Value::number("nan")},
        Written{"<real>-inf</real>", Value::number("-inf")},
        Written{"<real>+infinity</real>", Value::number("inf")},
        Written{"<date> 2026-01-31T23:59:59Z </date>", Date{1769903999}},
        Written{"<data>\n\tAK\n\tt/\n</data>", Value::data(std::string("\x00\xAB\x7F", 3))},
        Written{"<data>AKs=</data>", Value::data(std::string("\x00\xAB", 2))},
        Written{"<data>AA==</data>", Value::data(std::string("\x00", 1))},
        Written{"<data></data>", Value::data("")}, Written{"<data/>", Value::data("")},
        Written{"<string/>", ""}, Written{"<string> x\n</string>", " x\n"},
        Written{"<true/>", Value::boolean(true)}, Written{"<array/>", Value::array()}));

TEST_F(PropertyList, ManyKeysAreReadInOneDictionary) {
  std::string content = "<dict>";
  for (int i = 0; i < 200'000; ++i) content += "<key>" + std::to_string(i) + "</key><true/>";
  const Value found = read("<plist>" + content + "</dict></plist>");
  EXPECT_EQ(found.entries().size(), 200'000U);
}

TEST_F(PropertyList, AMillionContainersInsideOneAnotherNeitherOverflowNorHang) {
  EXPECT_TRUE(read(xmlPropertyList(nestedList(1'000'000))).isNothing());
}

TEST_F(PropertyList, WhatStandsInCommentsAndTextsIsNoNesting) {
  std::string arrays;
  for (int i = 0; i < 600; ++i) arrays += "<array>";
  EXPECT_TRUE(read(xmlPropertyList("<!-- " + arrays + " --><dict/>")).isDictionary());
  std::string siblings = "<dict><key>a</key><array>";
  for (int i = 0; i < 600; ++i) siblings += "<array/><dict></dict>";
  EXPECT_TRUE(read(xmlPropertyList(siblings + "</array></dict>")).isDictionary());
}

// Eight bytes, the most significant first.
std::string eight(std::uint64_t value) {
  std::string bytes;
  for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFFU);
  return bytes;
}

// A binary list of these objects, the first of them the root; references are single bytes.
std::string binaryOf(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += eight(bytes.size());
    bytes += object;
  }
  return bytes + table + std::string(6, '\0') + "\x08\x01" + eight(objects.size()) + eight(0) +
         eight(bytes.size());
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

TEST_F(PropertyList, ATextThatManyReferToIsNotCopiedForEach) {
  // A text of 60,000 bytes and an array of 60,000 references to it: 3.6 GB once it is read.
  const std::string text = "\x5F\x11\xEA\x60" + std::string(60'000, 'x');
  const std::string array = "\xAF\x11\xEA\x60" + std::string(60'000, '\x02');
  EXPECT_TRUE(read(binaryOf({{'\xD1', 1, 3}, "Qa", text, array})).isNothing());
  const std::string few = "\xAF\x10\x40" + std::string(64, '\x02');
  EXPECT_EQ(read(binaryOf({{'\xD1', 1, 3}, "Qa", text, few})).get("a").at(63).string().size(),
            60'000U);
}

// Arrays of one inside one another, and in the deepest 40 times an array of 250 times "true".
std::string sharedBelow(int arrays) {
  std::vector<std::string> objects = {{'\xD1', 1, 2}, "Qa"};
  auto next = static_cast<char>(3);
  for (int i = 0; i < arrays; ++i) objects.push_back({'\xA1', next++});
  objects.push_back("\xAF\x10\x28" + std::string(40, next++));
  objects.push_back("\xAF\x10\xFA" + std::string(250, next));
  objects.emplace_back("\x09");
  return binaryOf(objects);
}

// Each of the lines that show it would be indented by hundreds of blanks.
TEST_F(PropertyList, WhatIsSharedMayNotBeFarDown) {
  EXPECT_EQ(read(sharedBelow(0)).get("a").count(), 40U);
  EXPECT_TRUE(read(sharedBelow(100)).isNothing());
}

TEST_F(PropertyList, AWholeNumberBeyond64BitsIsDamageInABinaryListToo) {
  const auto number = [](char ninth) {
    return "\x14" + std::string(7, '\0') + ninth + "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF";
  };
  EXPECT_EQ(read(binaryOf({kOneEntry, "Qa", number(0)})).get("a").digits(), "18446744073709551615");
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", number(1)})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", "\x15" + std::string(32, '\0')})).isNothing());
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", "\x14"})).isNothing());
}

TEST_F(PropertyList, WhatIsOfNoKnownKindIsDamage) {
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", {'\x80', 1}})).isNothing());
}

// A year of five digits: the text has no more the form of others.
TEST_F(PropertyList, ADateOfFiveDigitsIsDamage) {
  EXPECT_EQ(read(binaryOf({kOneEntry, "Qa", "\x33" + eight(0)})).get("a"), Value(Date{978307200}));
  const std::string late = "\x33" + eight(0x4256000000000000U);
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", late})).isNothing());
}

TEST_F(PropertyList, ATextThatIsNotUtf8IsDamageInABinaryListToo) {
  EXPECT_TRUE(read(binaryOf({kOneEntry, "Qa", "R\xC3("})).isNothing());
}

TEST_F(PropertyList, AListInsideAListOrAKeyOfNoDictionaryIsDamage) {
  EXPECT_TRUE(read("<plist><plist><dict/></plist></plist>").isNothing());
  EXPECT_TRUE(read("<plist><dict/><plist/></plist>").isNothing());
  EXPECT_TRUE(read("<plist><key>a</key><dict/></plist>").isNothing());
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

TEST_F(PropertyList, ATextWithoutCharactersIsReadHoweverItIsMarked) {
  const std::string wideWithACountOfItsOwn = {'\x6F', '\x10', '\0'};
  for (const std::string& empty : {std::string("P"), std::string("`"), wideWithACountOfItsOwn}) {
    EXPECT_EQ(read(binaryOf({kOneEntry, "Qa", empty})), Value::dictionary({{"a", ""}}));
    EXPECT_EQ(read(binaryOf({kOneEntry, empty, "Qa"})), Value::dictionary({{"", "a"}}));
  }
}

// It stands in the dictionary's own reference to it.
TEST_F(PropertyList, ATextWithoutCharactersInsideAnotherObjectLeavesThatAsItIs) {
  constexpr std::size_t kNumber = 0x60;
  std::vector<std::string> objects(kNumber + 1, "\x09");
  objects[0] = {'\xD1', 1, kNumber};
  objects[1] = "Qa";
  std::string bytes = binaryOf(objects);
  const std::size_t table = bytes.size() - 32 - 8 * objects.size();
  const std::string start = "bplist00";
  bytes.replace(table + 8 * kNumber, 8, eight(start.size() + 2));
  EXPECT_EQ(read(bytes), Value::dictionary({{"a", ""}}));
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
