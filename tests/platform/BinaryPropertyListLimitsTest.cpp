#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/BinaryPropertyListLimits.h"

namespace kelvane::platform {
namespace {

// The lowest bytes of the number, the most significant first.
std::string number(std::uint64_t value, std::size_t size = 8) {
  std::string bytes;
  for (; size > 0; --size) {
    bytes += static_cast<char>(size > 8 ? 0 : value >> (8 * (size - 1)) & 0xFFU);
  }
  return bytes;
}

// A binary list as it stands in a file: the objects, the table of their positions, the trailer.
struct List {
  std::vector<std::string> objects;
  std::size_t offsetSize = 8;
  std::size_t referenceSize = 1;
  std::uint64_t root = 0;
  std::size_t filling = 0;                    // bytes between the objects and the table
  std::uint64_t moreObjects = 0;              // than there are, by the trailer
  std::uint64_t tableAt = 0;                  // where the trailer puts it; 0: where it is
  std::vector<std::uint64_t> positions = {};  // of the objects; empty: where they are
  std::string start = "bplist00";

  std::string bytes() const {
    std::string whole = start;
    std::vector<std::uint64_t> found;
    for (const std::string& object : objects) {
      found.push_back(whole.size());
      whole += object;
    }
    whole += std::string(filling, '\0');
    const std::uint64_t table = whole.size();
    if (!positions.empty()) found = positions;
    for (const std::uint64_t position : found) whole += number(position, offsetSize);
    return whole + std::string(6, '\0') + number(offsetSize, 1) + number(referenceSize, 1) +
           number(found.size() + moreObjects) + number(root) +
           number(tableAt == 0 ? table : tableAt);
  }
};

bool isWithin(const List& list) { return isWithinLimits(list.bytes()); }

const std::string kTrue = "\x09";

std::string array(std::size_t references, char object) {
  return "\xAF\x11" + number(references, 2) + std::string(references, object);
}

TEST(BinaryPropertyListLimits, TheSmallestListIsOneByteAndWhatTellsOfIt) {
  const std::string smallest = List{.objects = {kTrue}, .offsetSize = 1, .start = ""}.bytes();
  EXPECT_EQ(smallest.size(), 34U);
  EXPECT_TRUE(isWithinLimits(smallest));
  for (std::size_t size = 0; size < smallest.size(); ++size) {
    EXPECT_FALSE(isWithinLimits(smallest.substr(smallest.size() - size))) << size;
  }
}

TEST(BinaryPropertyListLimits, PositionsAndReferencesHaveOneToEightBytes) {
  for (std::size_t size = 0; size <= 9; ++size) {
    const std::string two = "\xA2" + number(1, size) + number(1, size);
    const bool isSound = size >= 1 && size <= 8;
    EXPECT_EQ(isWithin({.objects = {two, kTrue}, .referenceSize = size}), isSound) << size;
    EXPECT_EQ(isWithin({.objects = {"\xA2\x01\x01", kTrue}, .offsetSize = size}), isSound) << size;
  }
}

TEST(BinaryPropertyListLimits, TheRootIsAnyOfTheObjects) {
  const std::vector<std::string> objects = {{'\xA1', 0}, kTrue, {'\xA1', 1}};
  EXPECT_FALSE(isWithin({.objects = objects, .root = 0}));  // a circle
  EXPECT_TRUE(isWithin({.objects = objects, .root = 1}));
  EXPECT_TRUE(isWithin({.objects = objects, .root = 2}));
  for (const std::size_t offsetSize : {1U, 8U}) {
    EXPECT_FALSE(isWithin({.objects = objects, .offsetSize = offsetSize, .root = 3}));
  }
}

TEST(BinaryPropertyListLimits, TheTableHoldsAsManyPositionsAsThereAreObjects) {
  EXPECT_FALSE(isWithin({.objects = {kTrue}, .moreObjects = 1}));
  EXPECT_FALSE(isWithin({.objects = {kTrue}, .moreObjects = 1, .tableAt = 1}));
  EXPECT_FALSE(isWithin({.objects = {kTrue}, .moreObjects = std::uint64_t{1} << 60U}));
}

TEST(BinaryPropertyListLimits, TheTableStandsBeforeTheTrailer) {
  EXPECT_TRUE(isWithin({.objects = {kTrue}, .tableAt = 9}));
  for (const std::uint64_t table : {17U, 18U, 1000U}) {
    EXPECT_FALSE(isWithin({.objects = {kTrue}, .tableAt = table})) << table;
  }
  EXPECT_FALSE(isWithin({.objects = {kTrue}, .tableAt = ~std::uint64_t{0}}));
}

TEST(BinaryPropertyListLimits, ObjectsStandBeforeTheTable) {
  EXPECT_TRUE(isWithin({.objects = {kTrue + kTrue}, .positions = {9}}));
  EXPECT_FALSE(isWithin({.objects = {kTrue + kTrue}, .positions = {10}}));
  EXPECT_FALSE(isWithin({.objects = {kTrue + kTrue}, .positions = {~std::uint64_t{0}}}));
}

TEST(BinaryPropertyListLimits, AnObjectEndsBeforeTheTable) {
  const std::vector<std::string> whole = {
      "Sxyz",                            // a text of three bytes
      "Cxyz",                            // data of three bytes
      "bx y ",                           // a text of two UTF-16 characters
      "\x5F\x10\x02xy",                  // its size stands apart
      "\x5F\x13" + number(2, 8) + "xy",  // in eight bytes
      {'\xA2', 0, 0},
      {'\xC2', 0, 0},
      {'\xD1', 0, 0},
  };
  for (const std::string& object : whole) {
    EXPECT_TRUE(isWithin({.objects = {kTrue, object}, .root = 1})) << object;
    const std::string cut = object.substr(0, object.size() - 1);
    EXPECT_FALSE(isWithin({.objects = {kTrue, cut}, .root = 1})) << object;
  }
}

TEST(BinaryPropertyListLimits, ASizeThatStandsApartIsAWholeNumberOfAtMostEightBytes) {
  EXPECT_TRUE(isWithin({.objects = {"\x5F\x10\x01x"}}));
  EXPECT_TRUE(isWithin({.objects = {"\x5F\x11" + number(1, 2) + "x"}}));
  EXPECT_FALSE(isWithin({.objects = {"\x5F\x20\x01x"}}));
  EXPECT_FALSE(isWithin({.objects = {std::string("\x5F\0\x01x", 4)}}));
  EXPECT_FALSE(isWithin({.objects = {"\x5F\x14" + number(1, 16) + "x"}}));
}

TEST(BinaryPropertyListLimits, ASizeThatIsCutOffByTheTableIsNone) {
  for (const std::string& object : {std::string("\x5F"), std::string("\x5F\x10"),
                                    "\x5F\x11" + number(0, 1), "\x5F\x13" + number(0, 7)}) {
    EXPECT_FALSE(isWithin({.objects = {object}})) << object.size();
  }
}

// The bytes of so many references could not be counted in 64 bits.
TEST(BinaryPropertyListLimits, ASizeBeyondTheListIsNone) {
  const std::uint64_t most = std::uint64_t{1} << 60U;
  EXPECT_FALSE(isWithin({.objects = {"\xDF\x13" + number(most)}, .referenceSize = 8}));
  EXPECT_FALSE(isWithin({.objects = {"\xAF\x13" + number(2 * most)}, .referenceSize = 8}));
  EXPECT_FALSE(isWithin({.objects = {"\x6F\x13" + number(8 * most)}}));
}

TEST(BinaryPropertyListLimits, OfSixteenBytesAWholeNumberUsesTheLowerEight) {
  const auto wide = [](const std::string& upper) { return "\x14" + upper + "\xFF" + number(0, 7); };
  EXPECT_TRUE(isWithin({.objects = {"\x13" + number(~std::uint64_t{0})}}));
  EXPECT_TRUE(isWithin({.objects = {wide(number(0))}}));
  EXPECT_FALSE(isWithin({.objects = {wide(number(1))}}));
  EXPECT_FALSE(isWithin({.objects = {wide(number(std::uint64_t{1} << 63U))}}));
  EXPECT_FALSE(isWithin({.objects = {"\x15" + number(0, 32)}}));
  EXPECT_FALSE(isWithin({.objects = {"\x14" + number(0, 15)}}));
}

TEST(BinaryPropertyListLimits, ReferencesAreToObjectsThatThereAre) {
  EXPECT_TRUE(isWithin({.objects = {{'\xA1', 1}, kTrue}}));
  EXPECT_FALSE(isWithin({.objects = {{'\xA1', 2}, kTrue}}));
  EXPECT_FALSE(isWithin({.objects = {"\xA1\xFF", kTrue}}));
}

TEST(BinaryPropertyListLimits, EmptyTextsOfUtf16AreLedToOneOfAscii) {
  const List list = {.objects = {{'\xD1', 1, 2}, "\x60", {'\x6F', '\x10', '\0'}}, .offsetSize = 2};
  const std::uint64_t table = 8 + 3 + 1 + 3;
  List changed = list;
  changed.objects[2] += "\x50";
  changed.positions = {8, table, table};
  EXPECT_EQ(withEmptyTextsAsAscii(list.bytes()), changed.bytes());
}

TEST(BinaryPropertyListLimits, WithoutEmptyTextsOfUtf16NothingIsToBeChanged) {
  for (const char* text : {"\x50", "\x61xy", "\x40"}) {
    EXPECT_EQ(withEmptyTextsAsAscii(List{.objects = {text}}.bytes()), std::nullopt);
  }
  EXPECT_EQ(withEmptyTextsAsAscii(List{.objects = {{'\xA1', 2}, "\x60"}}.bytes()), std::nullopt);
}

TEST(BinaryPropertyListLimits, AnEmptyTextHasToBeWithinReachOfTheTable) {
  List list = {.objects = {"\x60"}, .offsetSize = 1, .filling = 255 - 9};
  EXPECT_NE(withEmptyTextsAsAscii(list.bytes()), std::nullopt);
  ++list.filling;
  EXPECT_EQ(withEmptyTextsAsAscii(list.bytes()), std::nullopt);
}

TEST(BinaryPropertyListLimits, SetsReferAsArraysDo) {
  EXPECT_FALSE(isWithin({.objects = {{'\xC1', 0}}}));
  EXPECT_FALSE(isWithin({.objects = {{'\xC1', 1}}}));
}

TEST(BinaryPropertyListLimits, KeysAndValuesOfADictionaryAreReferences) {
  EXPECT_TRUE(isWithin({.objects = {{'\xD1', 1, 1}, kTrue}}));
  EXPECT_FALSE(isWithin({.objects = {{'\xD1', 2, 1}, kTrue}}));
  EXPECT_FALSE(isWithin({.objects = {{'\xD1', 1, 2}, kTrue}}));
}

// So many arrays, each the only element of the one before, and `last` in the deepest.
List nested(int arrays, const std::string& last) {
  List list{.objects = {}, .referenceSize = 2};
  for (int i = 1; i <= arrays; ++i) {
    list.objects.push_back("\xA1" + number(static_cast<std::uint64_t>(i), 2));
  }
  list.objects.push_back(last);
  return list;
}

TEST(BinaryPropertyListLimits, ContainersReachDownToTheLimitAndNotBelow) {
  EXPECT_TRUE(isWithin(nested(510, "\xA0")));
  EXPECT_FALSE(isWithin(nested(511, "\xA0")));
  EXPECT_TRUE(isWithin(nested(511, kTrue)));
  EXPECT_FALSE(isWithin(nested(512, kTrue)));
}

// The first array holds the deepest of the others before those above it are looked at.
TEST(BinaryPropertyListLimits, AContainerThatWasSeenBeforeCountsWhereItStandsDeeper) {
  const auto list = [](int arrays) {
    List made = nested(arrays, "\xA1" + number(static_cast<std::uint64_t>(arrays) + 1, 2));
    made.objects.push_back(kTrue);
    made.objects.push_back("\xA2" + number(static_cast<std::uint64_t>(arrays) - 1, 2) +
                           number(0, 2));
    made.root = made.objects.size() - 1;
    return made;
  };
  EXPECT_TRUE(isWithin(list(509)));
  EXPECT_FALSE(isWithin(list(510)));
}

// A hundred arrays of 14 references each, to object 0xAE, in a row of 0xAE bytes: each starts a
// byte behind the one before, and takes the same bytes for its own.
TEST(BinaryPropertyListLimits, AllReferencesTogetherAreNoMoreThanTheListsBytes) {
  constexpr std::uint64_t kArrays = 100;
  std::string root = "\xAF\x10" + number(kArrays, 1);
  std::vector<std::uint64_t> positions = {8};
  for (std::uint64_t i = 1; i <= kArrays; ++i) {
    root += number(i, 1);
    positions.push_back(8 + 3 + kArrays + i - 1);
  }
  const std::string row(kArrays + 14, '\xAE');
  positions.resize(0xAF, 8 + root.size() + row.size());  // the others are "true"
  List list{.objects = {root, row, kTrue}, .offsetSize = 2, .positions = positions};
  const std::size_t references = kArrays + 14 * kArrays;
  ASSERT_LT(list.bytes().size(), references);
  list.filling = references - list.bytes().size();
  EXPECT_TRUE(isWithin(list));
  --list.filling;
  EXPECT_FALSE(isWithin(list));
}

// An array of arrays of texts, each shared by all that stand above it.
List shared(std::size_t arrays, std::size_t texts, std::size_t size, std::size_t filling) {
  return {.objects = {array(arrays, 1), array(texts, 2),
                      "\x5F\x10" + number(size, 1) + std::string(size, 'x')},
          .filling = filling};
}

// 101 arrays of 101 texts of 37 bytes take 1,118,841 bytes, with 64 for each object and four for
// each level that each line is indented by. So many may a list of 1,081 bytes take: a mebibyte, and
// 65 for each of them.
TEST(BinaryPropertyListLimits, WhatIsSharedTakesAMebibyteMoreAtTheMost) {
  EXPECT_TRUE(isWithin(shared(101, 101, 37, 767)));
  EXPECT_FALSE(isWithin(shared(101, 101, 37, 766)));
  EXPECT_FALSE(isWithin(shared(101, 100, 38, 753)));  // a byte more than it may take
  EXPECT_TRUE(isWithin(shared(101, 100, 38, 754)));
}

TEST(BinaryPropertyListLimits, AListInWhichNothingIsSharedIsWithinThemHoweverLarge) {
  List list{.objects = {"\xAF\x12" + number(40'000, 4)}, .referenceSize = 3};
  for (std::uint64_t i = 1; i <= 40'000; ++i) {
    list.objects[0] += number(i, 3);
    list.objects.emplace_back("\xA0");
  }
  EXPECT_TRUE(isWithin(list));
}

}  // namespace
}  // namespace kelvane::platform
