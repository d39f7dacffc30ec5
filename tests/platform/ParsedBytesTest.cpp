#include <string>

#include <gtest/gtest.h>

#include "platform/Exception.h"
#include "platform/ParsedBytes.h"
#include "tests/support/TempFolder.h"

namespace kelvane::platform {
namespace {

int parsed = 0;  // how often

Value parse(std::string_view bytes) {
  ++parsed;
  if (bytes == "damaged") throw Exception("damaged");
  return bytes.empty() ? Value() : Value(std::string(bytes) + "!");
}

class ParsedBytesTest : public ::testing::Test {
 protected:
  ParsedBytesTest() { parsed = 0; }
  ParsedBytes last{parse};
};

TEST_F(ParsedBytesTest, EqualOnesAreParsedOnce) {
  EXPECT_EQ(last.valueOf("a"), Value("a!"));
  EXPECT_EQ(last.valueOf("a"), Value("a!"));
  EXPECT_EQ(parsed, 1);
}

TEST_F(ParsedBytesTest, OthersOfTheSameSizeAreParsed) {
  last.valueOf("a");
  EXPECT_EQ(last.valueOf("b"), Value("b!"));
  EXPECT_EQ(last.valueOf("a"), Value("a!"));
  EXPECT_EQ(parsed, 3);
}

TEST_F(ParsedBytesTest, OnesThatAreCutShortAreParsed) {
  last.valueOf("ab");
  EXPECT_EQ(last.valueOf("a"), Value("a!"));
  EXPECT_EQ(last.valueOf("ab"), Value("ab!"));
}

TEST_F(ParsedBytesTest, NoneAreParsedTheFirstTime) {
  EXPECT_TRUE(last.valueOf("").isNothing());
  EXPECT_EQ(parsed, 1);
}

TEST_F(ParsedBytesTest, WhatMeansNothingIsParsedAgain) {
  last.valueOf("a");
  EXPECT_TRUE(last.valueOf("").isNothing());
  EXPECT_TRUE(last.valueOf("").isNothing());
  EXPECT_EQ(parsed, 3);
}

TEST_F(ParsedBytesTest, WhatCannotBeParsedIsTriedAgain) {
  last.valueOf("a");
  EXPECT_THROW(last.valueOf("damaged"), Exception);
  EXPECT_THROW(last.valueOf("damaged"), Exception);
  EXPECT_EQ(last.valueOf("a"), Value("a!"));
  EXPECT_EQ(parsed, 4);
}

TEST_F(ParsedBytesTest, OnesThatWereMadeOfAValueMeanIt) {
  last.keep("a", "A");
  EXPECT_EQ(last.valueOf("a"), Value("A"));
  EXPECT_EQ(parsed, 0);
  EXPECT_EQ(last.valueOf("b"), Value("b!"));
}

TEST_F(ParsedBytesTest, AFileThatIsTheSameIsParsedOnce) {
  const test::TempFolder folder;
  folder.write("file", "a");
  EXPECT_EQ(last.valueOfFile(folder / "file"), Value("a!"));
  EXPECT_EQ(last.valueOfFile(folder / "file"), Value("a!"));
  EXPECT_EQ(parsed, 1);
  folder.write("file", "b");
  EXPECT_EQ(last.valueOfFile(folder / "file"), Value("b!"));
  EXPECT_EQ(parsed, 2);
}

TEST_F(ParsedBytesTest, AFileOfBytesThatMeanNothingIsParsedAgain) {
  const test::TempFolder folder;
  folder.write("file", "");
  EXPECT_TRUE(last.valueOfFile(folder / "file").isNothing());
  EXPECT_TRUE(last.valueOfFile(folder / "file").isNothing());
  EXPECT_EQ(parsed, 2);
  last.keep("a", Value());
  folder.write("file", "a");
  EXPECT_EQ(last.valueOfFile(folder / "file"), Value("a!"));
}

TEST_F(ParsedBytesTest, AFileThatCannotBeReadLeavesWhatIsKnown) {
  last.keep("a", "A");
  EXPECT_THROW(last.valueOfFile("/proc/no such file"), Exception);
  EXPECT_EQ(last.valueOf("a"), Value("A"));
}

}  // namespace
}  // namespace kelvane::platform
