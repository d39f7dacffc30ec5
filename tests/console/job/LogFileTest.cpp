// The worker's log, taken apart.

#include <gtest/gtest.h>

#include "console/job/ExitCode.h"
#include "console/job/LogFile.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

TEST(ParseLog, TakesALineApart) {
  const auto entries = parseLog("[14:03:07] [JobRunner.cpp][109][run][debug] logId = 1]\n");
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].time, "14:03:07");
  EXPECT_EQ(entries[0].file, "JobRunner.cpp");
  EXPECT_EQ(entries[0].line, "109");
  EXPECT_EQ(entries[0].function, "run");
  EXPECT_EQ(entries[0].level, "debug");
  EXPECT_EQ(entries[0].message, "logId = 1]");
}

TEST(ParseLog, AMessageGoesOnUntilTheNextTime) {
  const auto entries =
      parseLog("[14:03:07] [a][1][f][debug] x = (\n    [12]\n)\n\n[14:03:08] [b][2][g][error] y\n");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].message, "x = (\n    [12]\n)");
  EXPECT_EQ(entries[1].message, "y");
  EXPECT_EQ(entries[1].level, "error");
}

TEST(ParseLog, WhatStandsBeforeTheFirstEntryIsOneWithoutFields) {
  const auto entries = parseLog("rest of a cut line\n[14:03:08] [b][2][g][error] y");
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].message, "rest of a cut line");
  EXPECT_EQ(entries[0].function, "");
}

TEST(ParseLog, WhatOnlyLooksLikeAnEntryGoesOnWithTheOneBefore) {
  const std::string start = "[14:03:07] [a][1][f][debug] x";
  for (const char* odd : {"[14:03:07]", "[14:03:0x] [a][1][f][debug] y", "[14:03:07] [a][1][f",
                          "[14:03:07] [a] [1][f][debug] y", "[14-03-07] [a][1][f][debug] y"}) {
    const auto entries = parseLog(start + "\n" + odd);
    ASSERT_EQ(entries.size(), 1U) << odd;
    EXPECT_EQ(entries[0].message, std::string("x\n") + odd);
  }
}

TEST(ParseLog, AnEmptyMessageAndAnEmptyLogAreFine) {
  EXPECT_EQ(parseLog("[14:03:07] [a][1][f][debug]")[0].message, "");
  EXPECT_EQ(parseLog("[14:03:07] [a][1][f][debug] ")[0].message, "");
  EXPECT_TRUE(parseLog("").empty());
}

TEST(ReadLog, GivesTheTextOrSaysThatThereIsNone) {
  const test::TempFolder folder;
  try {
    readLog(folder / "");
    ADD_FAILURE();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.exitCode(), kNotFound);
    EXPECT_EQ(failure.what(), logPath(folder / "") +
                                  " does not exist: the worker never creates it, and logs nothing");
  }
  folder.write("utility/logs/TarselVistrelUtility.txt", "text");
  EXPECT_EQ(readLog(folder / ""), "text");
}

}  // namespace
}  // namespace kelvane::console
