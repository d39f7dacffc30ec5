// A job in words.

#include <gtest/gtest.h>

#include "console/display/JobText.h"

namespace kelvane::console {
namespace {

TEST(JobLine, NamesTheState) {
  EXPECT_EQ(jobLine({"18", "WAIT", {}, "", ""}, Charset::ascii), "job 18: waiting");
  EXPECT_EQ(jobLine({"18", "RUN", {}, "", ""}, Charset::ascii), "job 18: running");
  EXPECT_EQ(jobLine({"18", "FREE", {}, "", ""}, Charset::ascii), "job 18: finished");
}

TEST(JobLine, UnknownStateIsShownSafely) {
  EXPECT_EQ(jobLine({"\t", "\x1b[1m", {}, "", ""}, Charset::ascii), "job ?: ?[1m");
}

TEST(ResultLine, ShowsResultAndText) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "0", "no error"}, Charset::ascii), "result 0: no error");
  EXPECT_EQ(resultLine({"18", "FREE", {}, "32852", "bad\nimage"}, Charset::ascii),
            "result 32852: bad?image");
}

TEST(ResultLine, TellsThatThereIsNoResult) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "", ""}, Charset::ascii), "result missing: ");
}

}  // namespace
}  // namespace kelvane::console
