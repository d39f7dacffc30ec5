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

TEST(JobLine, AnEmptyLogIdIsToldAsOne) {
  EXPECT_EQ(jobLine({"", "FREE", {}, "", ""}, Charset::ascii), "job \"\": finished");
}

TEST(JobLine, UnknownStateIsShownSafely) {
  EXPECT_EQ(jobLine({"\t", "\x1b[1m", {}, "", ""}, Charset::ascii), "job ?: ?[1m");
}

TEST(ResultLine, ShowsResultAndText) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "0", "no error"}, Charset::ascii), "result 0: no error");
  EXPECT_EQ(resultLine({"18", "FREE", {}, "32852", "bad\nimage"}, Charset::ascii),
            "result 32852 (0x8054): bad?image");
  EXPECT_EQ(resultLine({"18", "FREE", {}, "0.5", ""}, Charset::ascii), "result 0.5: ");
}

TEST(ResultLine, TellsThatThereIsNoResult) {
  EXPECT_EQ(resultLine({"18", "FREE", {}, "", ""}, Charset::ascii), "result missing: ");
}

TEST(JobLine, SaysThatThereIsNoWorker) {
  Look look = {{}, {"18", "WAIT", {}, "", ""}};
  EXPECT_EQ(noWorkerText(look, Charset::ascii), "");
  markWithoutWorker(look.status);
  EXPECT_EQ(jobLine(look.status, Charset::ascii), "job 18: waiting, no worker");
  EXPECT_EQ(noWorkerText(look, Charset::ascii),
            "no worker is seen; the job goes on when one is started with its log id");
  look.status.state = "RUN";
  EXPECT_EQ(noWorkerText(look, Charset::ascii), "");
}

TEST(JobLine, SaysThatNoWorkerShouldBeStarted) {
  Look look = {{}, {"18", "WAIT", {}, "", ""}};
  look.startFault = "its package, /\x1b, does not exist";
  EXPECT_EQ(noWorkerText(look, Charset::ascii), "");
  markWithoutWorker(look.status);
  EXPECT_EQ(noWorkerText(look, Charset::ascii),
            "no worker is seen, and none should be started for the job: its package, /?, does not "
            "exist");
}

TEST(ProgressText, CountsAndNames) {
  const std::vector<ControllerStatus> all = {{"A", 100, 100, 100},
                                             {"B", 100, 100, 100},
                                             {"C", 100, 80, 90, Standing::failed},
                                             {"D", 0, 0, 0, Standing::notStarted}};
  EXPECT_EQ(progressText({"18", "FREE", all, "", ""}), "2 done, C failed at 90%, 1 not started");
  EXPECT_EQ(progressText({"18", "RUN", {{"A", 20, 0, 10}, {"B", 0, 0, 0}}, "", ""}),
            "A at 10% (CPLD), 1 waiting");
  EXPECT_EQ(
      progressText(
          {"18", "FREE", {{"A", 0, kUnknownPercent, kUnknownPercent, Standing::failed}}, "", ""}),
      "A failed");
  EXPECT_EQ(progressText({"18", "FREE", {}, "", ""}), "");
}

TEST(ProgressText, AControllerWithoutAWwnIsNamedSo) {
  EXPECT_EQ(progressText({"18", "FREE", {{"", 0, 0, 0, Standing::failed}}, "", ""}),
            "a controller without a WWN failed at 0%");
}

TEST(ResultLine, ShowsWhatStandsInPlaceOfANumber) {
  JobStatus status = {"18", "FREE", {}, "", "x"};
  status.otherResult = "\"7\"";
  EXPECT_EQ(resultLine(status, Charset::ascii), "result \"7\" (no number): x");
}

}  // namespace
}  // namespace kelvane::console
