// The log as it is written: entries, each once and whole.

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/LogFollower.h"
#include "tests/console/job/LogLines.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using test::runLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> inShort(const std::vector<LogNews>& news) {
  std::vector<std::string> all;
  for (const LogNews& one : news) {
    if (one.kind == LogNews::Kind::entry) all.push_back(one.entry.message);
    if (one.kind == LogNews::Kind::gone) all.emplace_back("(gone)");
    if (one.kind == LogNews::Kind::anew) all.emplace_back("(anew)");
  }
  return all;
}

class LogFollowerTest : public ::testing::Test {
 protected:
  void append(const std::string& text) const {
    std::ofstream(folder / "log", std::ios::app) << text;
  }
  std::vector<std::string> look() { return inShort(log.look()); }

  test::TempFolder folder;
  LogFollower log{folder / "log"};
};

TEST_F(LogFollowerTest, TheLastEntryComesWhenNothingMoreDoes) {
  append(runLine("one") + runLine("two"));
  EXPECT_THAT(look(), ElementsAre("one"));
  EXPECT_THAT(look(), ElementsAre("two"));
  EXPECT_THAT(look(), IsEmpty());
}

TEST_F(LogFollowerTest, AnEntryThatComesInPiecesIsOne) {
  append(runLine("jobs = ("));
  EXPECT_THAT(look(), IsEmpty());
  append("    17,\n    1");
  EXPECT_THAT(look(), IsEmpty());
  append("8\n)\n[14:03");
  EXPECT_THAT(look(), IsEmpty());
  append(":08] [x.cpp][1][run][debug] next\n");
  EXPECT_THAT(look(), ElementsAre("jobs = (\n    17,\n    18\n)"));
  EXPECT_THAT(look(), ElementsAre("next"));
}

TEST_F(LogFollowerTest, ARotationPartsEntries) {
  append(runLine("one"));
  look();
  append("more\n");
  std::filesystem::rename(folder / "log", folder / "old");
  append(runLine("two"));
  EXPECT_THAT(look(), ElementsAre("one\nmore", "(anew)"));
  EXPECT_THAT(look(), ElementsAre("two"));
}

TEST_F(LogFollowerTest, WhatIsHeldBackCanBeHad) {
  append(runLine("one"));
  look();
  EXPECT_THAT(inShort(log.rest()), ElementsAre("one"));
  EXPECT_THAT(inShort(log.rest()), IsEmpty());
}

TEST_F(LogFollowerTest, ALogThatIsGoneIsToldBehindItsLastEntry) {
  append(runLine("one"));
  look();
  std::filesystem::remove(folder / "log");
  EXPECT_THAT(look(), ElementsAre("one", "(gone)"));
  EXPECT_FALSE(log.isThere());
}

TEST_F(LogFollowerTest, ALogWithoutEntriesIsShownAsItIs) {
  append("no entry\nat all");
  EXPECT_THAT(look(), IsEmpty());
  EXPECT_THAT(look(), ElementsAre("no entry\nat all"));
}

}  // namespace
}  // namespace kelvane::console
