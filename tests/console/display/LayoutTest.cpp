// The lines of a job's status in terminals of several sizes.

#include <gtest/gtest.h>

#include "console/display/JobText.h"
#include "console/display/Layout.h"

namespace kelvane::console {
namespace {

using Lines = std::vector<std::string>;

const JobStatus kJob = {
    "18", "RUN", {{"5000A1B2C3D4E5F6", 100, 37, 68}, {"5000A1B2C3D4", 0, 0, 0}}, "0", "no error"};

std::vector<std::string> statusLines(const JobStatus& status, TerminalSize size, Charset charset) {
  return console::statusLines({{}, status}, size, charset);
}

TEST(Layout, SideBySideIn80Columns) {
  EXPECT_EQ(
      statusLines(kJob, {80, 24}, Charset::ascii),
      (Lines{"job 18: running, 0:00",
             "5000A1B2C3D4E5F6  firmware  cpld ###### 100%  fw ##----  37%  total ####--  68%",
             "5000A1B2C3D4      waiting   cpld ------   0%  fw ------   0%  total ------   0%"}));
}

TEST(Layout, SideBySideIn80ColumnsWithBlocks) {
  EXPECT_EQ(
      statusLines(kJob, {80, 24}, Charset::utf8),
      (Lines{"job 18: running, 0:00",
             "5000A1B2C3D4E5F6  firmware  cpld ██████ 100%  fw ██░░░░  37%  total ████░░  68%",
             "5000A1B2C3D4      waiting   cpld ░░░░░░   0%  fw ░░░░░░   0%  total ░░░░░░   0%"}));
}

TEST(Layout, StackedIn40Columns) {
  EXPECT_EQ(statusLines(kJob, {40, 24}, Charset::ascii),
            (Lines{"job 18: running, 0:00",  //
                   "5000A1B2C3D4E5F6  firmware", "  cpld     ####################### 100%",
                   "  firmware ########---------------  37%",
                   "  total    ###############--------  68%",  //
                   "5000A1B2C3D4  waiting", "  cpld     -----------------------   0%",
                   "  firmware -----------------------   0%",
                   "  total    -----------------------   0%"}));
}

TEST(Layout, StackedIn40ColumnsWithBlocks) {
  const JobStatus status = {"18", "RUN", {{"5000A1B2C3D4E5F6", 50, 0, 25}}, "0", "no error"};
  EXPECT_EQ(statusLines(status, {40, 24}, Charset::utf8),
            (Lines{"job 18: running, 0:00",  //
                   "5000A1B2C3D4E5F6  CPLD", "  cpld     ███████████░░░░░░░░░░░░  50%",
                   "  firmware ░░░░░░░░░░░░░░░░░░░░░░░   0%",
                   "  total    █████░░░░░░░░░░░░░░░░░░  25%"}));
}

TEST(Layout, In200ColumnsBarsGrowToTheirLimit) {
  const JobStatus status = {"18", "RUN", {{"5000A1B2C3D4E5F6", 50, 0, 25}}, "0", "no error"};
  EXPECT_EQ(statusLines(status, {200, 24}, Charset::ascii)[1],
            "5000A1B2C3D4E5F6  CPLD      cpld ###############---------------  50%"
            "  fw ------------------------------   0%"
            "  total #######-----------------------  25%");
  EXPECT_EQ(statusLines(status, {200, 24}, Charset::utf8)[1],
            "5000A1B2C3D4E5F6  CPLD      cpld ███████████████░░░░░░░░░░░░░░░  50%"
            "  fw ░░░░░░░░░░░░░░░░░░░░░░░░░░░░░░   0%"
            "  total ███████░░░░░░░░░░░░░░░░░░░░░░░  25%");
}

TEST(Layout, LongWwnIsShortened) {
  const JobStatus status = {
      "18", "RUN", {{"5000A1B2C3D4E5F65000A1B2C3D4E5F65000A1B2C3D4E5F6", 0, 0, 0}}, "", ""};
  EXPECT_EQ(statusLines(status, {200, 24}, Charset::utf8)[1].substr(0, 33),
            "5000A1B2C3D4…1B2C3D4E5F6  waiti");
  EXPECT_EQ(statusLines(status, {200, 24}, Charset::ascii)[1].substr(0, 32),
            "5000A1B2C3D...B2C3D4E5F6  waitin");
  EXPECT_EQ(statusLines(status, {40, 24}, Charset::utf8)[1],
            "5000A1B2C3D4E5F…00A1B2C3D4E5F6  waiting");
}

TEST(Layout, WwnIsShownSafely) {
  const JobStatus status = {"18", "RUN", {{"\x1b[2J\xC2\x9B", 0, 0, 0}}, "", ""};
  EXPECT_EQ(statusLines(status, {40, 24}, Charset::utf8)[1], "?[2J?  waiting");
}

TEST(Layout, JobWithoutControllersIsItsLineOnly) {
  EXPECT_EQ(statusLines({"18", "WAIT", {}, "", ""}, {80, 24}, Charset::ascii),
            (Lines{"job 18: waiting, 0:00"}));
}

TEST(Layout, TheJobsLineIsWrappedWhereItHasNoRoom) {
  Look look = {{}, {"1", "FREE", {}, "0", ""}};
  look.elapsed = std::chrono::seconds(5);
  EXPECT_EQ(console::statusLines(look, {20, 24}, Charset::utf8),
            (Lines{"job 1: finished,", "0:05"}));
  const Look endless = {{}, {std::string(100, 'x'), "FREE", {}, "0", ""}};
  EXPECT_LE(console::statusLines(endless, {20, 24}, Charset::utf8).size(), 5U);
}

TEST(Layout, NoLineIsAsWideAsTheTerminal) {
  for (std::size_t columns = 2; columns <= 250; ++columns) {
    for (const std::string& line : statusLines(kJob, {columns, 24}, Charset::ascii)) {
      EXPECT_LT(line.size(), columns) << line;
    }
  }
}

TEST(Layout, ALongSilenceIsToldBelow) {
  Look look = {{}, {"18", "RUN", {}, "", "", "updateFW"}};
  look.elapsed = std::chrono::seconds(3600 + 62);
  look.silence = std::chrono::milliseconds(9999);
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii),
            (Lines{"job 18: running, 1:01:02"}));
  look.silence = std::chrono::seconds(14);
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii),
            (Lines{"job 18: running, 1:01:02",
                   "no news for 14 s; a flash may be silent for minutes, do not unplug"}));
  EXPECT_EQ(console::statusLines(look, {40, 24}, Charset::ascii),
            (Lines{"job 18: running, 1:01:02", "no news for 14 s; a flash may be silent",
                   "for minutes, do not unplug"}));
}

TEST(Layout, WhatIsLeftIsToldBelowUnlessThereIsASilence) {
  Look look = {{}, kJob};
  const std::chrono::seconds time(200);
  look.left = TimeLeft{"5000A1B2C3D4E5F6", "firmware", time, time, 2 * time};
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii).back(),
            "about 3:20 left for 5000A1B2C3D4E5F6, 6:40 for the job");
  const Lines narrow = console::statusLines(look, {20, 24}, Charset::utf8);
  EXPECT_EQ((Lines{narrow.end() - 3, narrow.end()}),
            (Lines{"about 3:20 left for", "5000A1B2C3D4E5F6,", "6:40 for the job"}));
  look.silence = std::chrono::seconds(14);
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii).back(), "no news for 14 s");
  look.patience = std::chrono::seconds(36);
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii).back().substr(0, 10),
            "about 3:20");
}

TEST(Layout, AJobWhoseBeginningIsNotKnownHasNoTimeOfItsOwn) {
  Look look = {{}, {"18", "RUN", {}, "", ""}};
  look.elapsed.reset();
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii), (Lines{"job 18: running"}));
  look.followed = std::chrono::seconds(12);
  EXPECT_EQ(console::statusLines(look, {80, 24}, Charset::ascii),
            (Lines{"job 18: running, watched for 0:12"}));
}

TEST(Layout, OnlyARunningFlashIsNotToBeUnplugged) {
  Look look = {{}, {"18", "WAIT", {}, "", "", "updateFW"}};
  look.silence = std::chrono::seconds(14);
  EXPECT_EQ(silenceText(look), "no news for 14 s");
  look.status.state = "RUN";
  look.status.command = "updateSW";
  EXPECT_EQ(silenceText(look), "no news for 14 s");
  look.status.state = "FREE";
  EXPECT_EQ(silenceText(look), "");
}

TEST(Layout, FailedAndNotStartedControllersAreNotDone) {
  const JobStatus status = {
      "18",
      "FREE",
      {{"5000A1B2C3D4E5F6", 100, kUnknownPercent, kUnknownPercent, Standing::failed},
       {"5000A1B2C3D4E5F7", 0, 0, 0, Standing::notStarted}},
      "32852",
      ""};
  EXPECT_EQ(
      statusLines(status, {80, 24}, Charset::ascii),
      (Lines{"job 18: finished, 0:00",
             "5000A1B2C3D4E5F6  failed       cpld ##### 100%  fw -----    -  total -----    -",
             "5000A1B2C3D4E5F7  not started  cpld -----   0%  fw -----   0%  total -----   0%"}));
  EXPECT_EQ(statusLines(status, {40, 24}, Charset::ascii)[3],
            "  firmware -----------------------    -");
}

TEST(Layout, TerminalOfNoSizeIsNoHarm) {
  EXPECT_EQ(statusLines(kJob, {0, 0}, Charset::ascii), (Lines{"j", "o", "b", "5", " ", " ", " "}));
}

JobStatus jobOfFour(int done) {
  JobStatus status = {"18", "RUN", {}, "", ""};
  for (int i = 0; i < 4; ++i) {
    status.controllers.push_back(
        {std::string(1, static_cast<char>('A' + i)), 0, 0, i < done ? 100 : 0});
  }
  return status;
}

// The first letters of the controllers' lines.
std::string shownIn(std::size_t rows, int done) {
  std::string names;
  for (const std::string& line : statusLines(jobOfFour(done), {80, rows}, Charset::ascii)) {
    names += line.front();
  }
  return names.substr(1);
}

TEST(Layout, WhereRowsAreFewTheDoneControllersLeaveFirst) {
  EXPECT_EQ(shownIn(6, 0), "ABCD");
  EXPECT_EQ(shownIn(4, 0), "AB");
  EXPECT_EQ(shownIn(4, 1), "BC");
  EXPECT_EQ(shownIn(4, 3), "CD");
  EXPECT_EQ(shownIn(4, 4), "CD");
  EXPECT_EQ(shownIn(1, 2), "C");
}

TEST(Layout, WhereNotAllControllersFitTheirNumberIsTold) {
  const auto head = [](std::size_t columns, std::size_t rows) {
    const Lines lines = statusLines(jobOfFour(1), {columns, rows}, Charset::ascii);
    return columns > 20 ? lines.front() : lines[0] + "|" + lines[1];
  };
  EXPECT_EQ(head(80, 6), "job 18: running, 0:00");
  EXPECT_EQ(head(80, 5), "job 18: running, 0:00, 3 of 4 controllers");
  EXPECT_EQ(head(40, 12), "job 18: running, 0:00, 2 of 4");
  EXPECT_EQ(head(20, 12), "job 18: running,|0:00, 2 of 4");
}

TEST(Layout, In20ColumnsAWwnIsWholeAndThePhaseBelowIt) {
  const JobStatus status = {"18", "RUN", {{"5000A1B2C3D4E5F6", 100, 37, 68}}, "0", "no error"};
  EXPECT_EQ(statusLines(status, {20, 24}, Charset::ascii),
            (Lines{"job 18: running,", "0:00", "5000A1B2C3D4E5F6", "  firmware",
                   "  cpld     ### 100%", "  firmware #--  37%", "  total    ##-  68%"}));
}

}  // namespace
}  // namespace kelvane::console
