// A stretch of the log on a page: folded, and in bounds.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/report/LogSection.h"

namespace kelvane::console {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

struct Section {
  std::string page;
  std::string leftOut;
};

Section shown(const std::string& log, const LogBounds& bounds = {}) {
  const auto entries = parseLog(log);
  Html page;
  const std::string leftOut = showEntries(page, entries, bounds);
  return {page.printed(), leftOut};
}

std::string line(const std::string& message, const std::string& level = "debug") {
  return "[14:03:07] [x.cpp][1][run][" + level + "] " + message + "\n";
}

TEST(LogSection, AnObjectIsFoldedBehindItsFirstLine) {
  const Section section = shown(line("a = {\n    b = 1;\n}"));
  EXPECT_EQ(section.page,
            "<ol class=\"log\"><li><details><summary><time>14:03:07</time> <b>run</b> a = {"
            "</summary><pre>    b = 1;\n}</pre></details></li></ol>");
  EXPECT_EQ(section.leftOut, "");
}

TEST(LogSection, AnErrorIsCalledOne) {
  EXPECT_THAT(shown(line("no", "error")).page,
              HasSubstr("<li class=\"error\"><time>14:03:07</time> <strong>error</strong> <b>run"));
}

TEST(LogSection, AnEqualObjectIsShownOnce) {
  const std::string object = "a = {\n    b = 1;\n}";
  EXPECT_THAT(shown(line(object) + line(object)).page,
              HasSubstr("a = { (2 lines, the same as at 14:03:07 in run)</li>"));
}

TEST(LogSection, OfManyEntriesTheMiddleIsLeftOut) {
  std::string log;
  for (int i = 0; i < 10; ++i) log += line("step " + std::to_string(i));
  const Section section = shown(log, {.entries = 4});
  EXPECT_THAT(section.page, AllOf(HasSubstr("step 1<"), HasSubstr("step 8<"),
                                  Not(HasSubstr("step 2<")), Not(HasSubstr("step 7<"))));
  EXPECT_THAT(section.page, HasSubstr("<li class=\"gap\">6 entries are left out here</li>"));
  EXPECT_EQ(section.leftOut, "6 entries");
}

TEST(LogSection, OfManyObjectsThoseInTheMiddleAreLeftOut) {
  std::string log;
  for (const char* name : {"first", "second", "third"}) {
    log += line(std::string("x = {\n    ") + name + "\n}");
  }
  const Section section = shown(log, {.objectBytes = 25});
  EXPECT_THAT(section.page, AllOf(HasSubstr("first"), HasSubstr("third"),
                                  HasSubstr("(2 lines, left out)"), Not(HasSubstr("second"))));
  EXPECT_EQ(section.leftOut, "1 object");
}

TEST(LogSection, ALongLineIsCut) {
  EXPECT_THAT(shown(line(std::string(100, 'x')), {.lineBytes = 90}).page,
              HasSubstr("x ... (10 bytes are left out)"));
}

TEST(LogSection, OfManyLongLinesEachIsCut) {
  const std::string log = line(std::string(4000, 'x')) + line(std::string(4000, 'y'));
  const std::string page = shown(log, {.linesBytes = 5000}).page;
  EXPECT_THAT(page, AllOf(HasSubstr("x ... (1952 bytes are left out)</li>"),
                          HasSubstr("y ... (1952 bytes are left out)</li>")));
}

TEST(LogSection, ALongNameOfAFunctionIsCut) {
  EXPECT_THAT(shown("[14:03:07] [x][1][" + std::string(1000, 'f') + "][debug] x\n").page,
              HasSubstr("f ... (872 bytes are left out)</b>"));
}

TEST(LogSection, WhatStandsThereIsText) {
  EXPECT_THAT(
      shown("[14:03:07] [x.cpp][1][<b>][<i>] </li>\x1B\xFF\n").page,
      HasSubstr("<strong>&lt;i&gt;</strong> <b>&lt;b&gt;</b> &lt;/li&gt;\xEF\xBF\xBD\xEF\xBF\xBD"));
}

}  // namespace
}  // namespace kelvane::console
