// Taking the command blocks out of a page.

#include <gtest/gtest.h>

#include "tests/docs/CommandBlocks.h"

namespace kelvane::docs {
namespace {

TEST(CommandBlocks, FenceOfTheShellIsOne) {
  const auto blocks = commandBlocks("a.md", "Text\n\n```sh\nls a\nls b\n```\n");
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].page, "a.md");
  EXPECT_EQ(blocks[0].text, "ls a\nls b\n");
  EXPECT_EQ(blocks[0].firstLine(), "ls a");
  EXPECT_EQ(blocks[0].shown, "");
}

TEST(CommandBlocks, OtherFencesAreNone) {
  EXPECT_TRUE(commandBlocks("a.md", "```json\n{}\n```\n\n```text\n    ls\n```\n").empty());
}

TEST(CommandBlocks, TextThatIsAnnouncedIsItsOutput) {
  const auto blocks = commandBlocks("a.md", "```sh\nls\n```\n\nIt prints:\n\n```text\na\nb\n```\n");
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].shown, "a\nb\n");
}

TEST(CommandBlocks, TextThatIsNotAnnouncedIsNoOutput) {
  const auto blocks = commandBlocks("a.md", "```sh\nls\n```\n\nA log:\n\n```text\na\n```\n");
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].shown, "");
}

TEST(CommandBlocks, IndentedLinesAreOne) {
  const auto blocks = commandBlocks("a.md", "Run:\n\n    ls \\\n      a\n\nAnd:\n\n    ls b\n");
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].text, "ls \\\n  a\n");
  EXPECT_EQ(blocks[1].text, "ls b\n");
}

TEST(CommandBlocks, IndentedLinesOfAListAreNone) {
  EXPECT_TRUE(commandBlocks("a.md", "- one\n    goes on\n").empty());
}

TEST(CommandBlocks, WhatFollowsACommandAfterAPromptIsItsOutput) {
  const auto blocks =
      commandBlocks("a.md", "\n    $ ls \\\n        a\n    one\n    $ pwd\n    /\n");
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].text, "ls \\\n    a\npwd\n");
  EXPECT_EQ(blocks[0].shown, "one\n/\n");
}

}  // namespace
}  // namespace kelvane::docs
