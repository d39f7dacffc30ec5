// A controller's percentages over time, drawn and as a table.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/report/HistoryDrawing.h"
#include "tests/console/report/TimedLog.h"

namespace kelvane::console {
namespace {

using test::TimedLog;
using ::testing::HasSubstr;
using ::testing::Not;

std::string drawn(const TimedLog& log) {
  Html page;
  drawHistory(page, log.history(), 0);
  return page.printed();
}

std::string tabulated(const TimedLog& log) {
  const FlashHistory history = log.history();
  Html page;
  tabulateHistory(page, history, history.controllers.at(0));
  return page.printed();
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// 100 seconds: half of the flash at 50, a retry at 20, an error at 100.
TimedLog courseOfAFlash(const std::string& wwn = "A1") {
  TimedLog log({wwn});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(20).step("flashCPLD", "Found error, try to flash CPLD again, retry 1 times...");
  log.pass(20).step("updateFW", "Start flashing image, please wait ...");
  log.pass(10).written({{0, 40, 70}});
  log.pass(50).step("updateFW", "Flash Error");
  return log;
}

TEST(HistoryDrawing, ALineGoesUpWhereThePercentageChanged) {
  const std::string drawing = drawn(courseOfAFlash());
  EXPECT_THAT(drawing, HasSubstr("<polyline class=\"line total\" points=\"0.0,100 0.0,100 "
                                 "500.0,100 500.0,30 1000.0,30\"/>"));
  EXPECT_THAT(drawing, HasSubstr("<polyline class=\"line firmware\" points=\"0.0,100 0.0,100 "
                                 "500.0,100 500.0,60 1000.0,60\"/>"));
  EXPECT_THAT(drawing, Not(HasSubstr("line cpld")));
}

TEST(HistoryDrawing, PhasesAreBandsAndMarksAreSigns) {
  const std::string drawing = drawn(courseOfAFlash());
  EXPECT_THAT(drawing, HasSubstr("<rect class=\"phase odd\" x=\"400.0\" y=\"0\" width=\"600.0\""));
  EXPECT_THAT(drawing, HasSubstr("<text class=\"mark retry\" x=\"20.0%\""));
  EXPECT_THAT(drawing, HasSubstr("<text class=\"mark fault\" x=\"100.0%\""));
}

TEST(HistoryDrawing, ASilenceIsDrawnWithItsLength) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(100).written({{0, 40, 70}});
  log.pass(600).written({{0, 41, 70}});
  log.pass(300).written({{0, 100, 100}});
  const std::string drawing = drawn(log);
  EXPECT_THAT(drawing, HasSubstr("<rect class=\"silence\" x=\"100.0\" y=\"0\" width=\"600.0\""));
  EXPECT_THAT(drawing, HasSubstr(">no change 10:00</text>"));
  EXPECT_THAT(drawing, HasSubstr("no change for 10:00 from 1:40"));
}

TEST(HistoryDrawing, ATitleAndADescriptionStandForIt) {
  const std::string drawing = drawn(courseOfAFlash("<A1>"));
  EXPECT_THAT(drawing, HasSubstr("role=\"img\""));
  EXPECT_THAT(drawing, HasSubstr("aria-labelledby=\"title1 text1\""));
  EXPECT_THAT(drawing, HasSubstr("<title id=\"title1\">&lt;A1&gt;, percentages over time</title>"));
  EXPECT_THAT(drawing, HasSubstr("<desc id=\"text1\">preparation from 0:00 to 0:40; firmware from "
                                 "0:40 to 1:40; at 0:20 the CPLD&#39;s flash is tried again; at "
                                 "1:40 14:01:40 updateFW: Flash Error; total 70% at last</desc>"));
}

TEST(HistoryDrawing, WithoutPercentagesNoneIsToldAtLast) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.pass(20).step("updateFW", "Flash Completed.");
  EXPECT_THAT(drawn(log), HasSubstr("at 0:20 the flash is completed; no percentages</desc>"));
}

TEST(HistoryDrawing, AJobWithinASecondIsDrawn) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  log.written({{0, 100, 100}});
  EXPECT_THAT(drawn(log), HasSubstr("points=\"0.0,100 0.0,100 0.0,100 0.0,0 0.0,0\"/>"));
}

TEST(HistoryDrawing, TheTableHasARowForAllThatIsDrawn) {
  const std::string table = tabulated(courseOfAFlash());
  EXPECT_THAT(table, HasSubstr("<th scope=\"col\">Firmware</th>"));
  EXPECT_THAT(table, HasSubstr("<th scope=\"row\">0:50</th><td>14:00:50</td><td>0%</td>"
                               "<td>40%</td><td>70%</td>"));
  EXPECT_THAT(table, HasSubstr("<td>firmware begins</td>"));
  EXPECT_THAT(table, HasSubstr("<td>14:01:40 updateFW: Flash Error</td>"));
}

TEST(HistoryDrawing, OfALongTableTheMiddleIsLeftOut) {
  TimedLog log({"A1"});
  log.step("updateFW", "devId = 0, filePath = a.img");
  for (int i = 1; i <= 1000; ++i) log.pass(1).written({{0, i % 100, i % 100}});
  const std::string table = tabulated(log);
  EXPECT_EQ(countOf(table, "<th scope=\"row\">"), kMostHistoryRows);
  EXPECT_THAT(table, HasSubstr("602 rows are left out here"));  // of 1000, the start and its phase
}

TEST(HistoryDrawing, LengthsAreToldAsOnAClock) {
  EXPECT_EQ(lengthText(JobTime(65)), "1:05");
  EXPECT_EQ(lengthText(JobTime(3605)), "1:00:05");
}

}  // namespace
}  // namespace kelvane::console
