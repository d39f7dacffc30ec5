// What the log tells of a job over time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/JobTimes.h"
#include "console/job/Past.h"
#include "platform/Json.h"
#include "tests/console/job/TimedLog.h"

namespace kelvane::console {
namespace {

using platform::Value;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using test::endedAt;
using test::jobAt;
using test::takenAt;
using test::timedLine;
using test::wholeJob;
using test::writtenAt;
using ::testing::IsEmpty;

std::optional<JobHistory> history(const std::string& log) { return historyOf(parseLog(log), "17"); }

Value recordIn(const std::string& state) { return platform::parseJson(jobAt(state, 0, 0, 0)); }

LogStretch stretchOfLog(const std::string& log) {
  return stretchOf(parseLog(log), recordIn("RUN"));
}

TEST(JobHistory, HasTheRecordsThatDiffer) {
  const auto found = history(wholeJob());
  ASSERT_TRUE(found);
  EXPECT_EQ(found->length, seconds(63));
  EXPECT_EQ(found->lastLine, hours(15) + minutes(1) + seconds(1));
  const std::vector<Moment> moments = momentsOf(*found);
  ASSERT_EQ(moments.size(), 6U);
  EXPECT_EQ(moments[1].time, seconds(6));
  EXPECT_EQ(statusOf(moments[1].record).controllers,
            (std::vector<ControllerStatus>{{"A1", 50, 0, 25}}));
  EXPECT_EQ(moments[5].record.get("result"), Value::integer(0));
}

TEST(JobHistory, GoesOnAfterMidnight) {
  EXPECT_EQ(
      history(timedLine("23:59:50", "x") + timedLine("00:00:10", "y") + timedLine("23:00:00", "z"))
          ->length,
      hours(23) + seconds(10));
}

TEST(JobHistory, AClockThatWasSetBackALittleHasLetNoTimePass) {
  EXPECT_EQ(
      history(timedLine("14:00:05", "x") + timedLine("14:00:04", "y") + timedLine("14:00:06", "z"))
          ->length,
      seconds(2));
}

TEST(JobHistory, LinesWithoutATimeTellNothing) {
  EXPECT_FALSE(history(""));
  EXPECT_FALSE(history("no entry\n"));
}

TEST(JobHistory, AVersionThatCannotBeReadIsLeftOut) {
  const std::string cut = "writeJSONFile, newArray = (\n    {\n    \"log_id\" = 17;";
  EXPECT_THAT(momentsOf(*history(timedLine("14:00:05", cut, "writeJSONFile"))), IsEmpty());
}

TEST(JobTimes, AreThoseOfTheLog) {
  const JobTimes times = timesOf(stretchOfLog(wholeJob()));
  EXPECT_EQ(times.length, seconds(63));
  EXPECT_EQ(
      times.controllers,
      (std::vector<ControllerTimes>{{"A1", {{"CPLD", seconds(12)}, {"firmware", seconds(48)}}}}));
}

TEST(JobTimes, AJobThatWasLeftHasNoLengthButItsPhases) {
  const JobTimes times =
      timesOf(stretchOfLog(takenAt("14:59:58") + writtenAt("14:59:58", jobAt("RUN", 0, 0, 0)) +
                           writtenAt("15:00:04", jobAt("RUN", 50, 0, 25)) +
                           writtenAt("15:00:10", jobAt("RUN", 100, 0, 50))));
  EXPECT_FALSE(times.length);
  EXPECT_EQ(times.controllers, (std::vector<ControllerTimes>{{"A1", {{"CPLD", seconds(12)}}}}));
}

TEST(JobTimes, OfAMixedStretchThereAreNone) {
  LogStretch mixed = stretchOfLog(wholeJob());
  mixed.isMixed = true;
  EXPECT_FALSE(timesOf(mixed).length);
  EXPECT_THAT(timesOf(mixed).controllers, IsEmpty());
}

// A clock whose time of day stands.
class StandingClock : public Clock {
 public:
  milliseconds now() override { return hours(100); }
  bool wait(milliseconds /*time*/) override { return true; }
  seconds timeOfDay() override { return today; }
  seconds today = hours(15) + minutes(1);
};

std::string jobUnderWay() {
  return takenAt("14:59:58") + writtenAt("15:00:00", jobAt("RUN", 0, 0, 0)) +
         writtenAt("15:00:04", jobAt("RUN", 50, 0, 25));
}

TEST(Past, ARunningJobBeganWithItsFirstLine) {
  StandingClock clock;
  const Past past = pastOf(recordIn("RUN"), stretchOfLog(jobUnderWay()), clock);
  EXPECT_EQ(past.start, hours(100) - seconds(62));
  ASSERT_EQ(past.moments.size(), 2U);
  EXPECT_EQ(past.moments[1].time, hours(100) - seconds(56));
}

TEST(Past, TheLastLineMayBeOfYesterdayOrAMomentAhead) {
  StandingClock clock;
  clock.today = minutes(1);
  EXPECT_EQ(pastOf(recordIn("RUN"), stretchOfLog(jobUnderWay()), clock).start,
            hours(100) - (hours(9) + minutes(1) + seconds(2)));
  clock.today = hours(15) + seconds(3);
  EXPECT_EQ(pastOf(recordIn("RUN"), stretchOfLog(jobUnderWay()), clock).start,
            hours(100) - seconds(6));
}

TEST(Past, OfAJobThatRunsAgainAnEarlierRunTellsNothing) {
  StandingClock clock;
  EXPECT_FALSE(pastOf(recordIn("RUN"), stretchOfLog(wholeJob()), clock).start);
  EXPECT_FALSE(pastOf(recordIn("WAIT"), stretchOfLog(jobUnderWay()), clock).start);
}

TEST(Past, OfAFinishedJobThereIsItsLength) {
  StandingClock clock;
  const Past past = pastOf(recordIn("FREE"), stretchOfLog(wholeJob()), clock);
  EXPECT_EQ(past.times.length, seconds(63));
  EXPECT_FALSE(past.start);
}

TEST(Past, WithoutALogNothingIsKnown) {
  StandingClock clock;
  const Past past = pastOf(recordIn("RUN"), {}, clock);
  EXPECT_FALSE(past.start);
  EXPECT_FALSE(past.times.length);
  EXPECT_THAT(past.moments, IsEmpty());
}

TEST(JobTimes, ACpldThatWasFlashedBetweenTwoWritesHasItsOwnTime) {
  const std::string log =
      takenAt("15:00:00") + timedLine("15:00:00", "devId = 0, filePath = (null)") +
      timedLine("15:00:00", "flashCPLD start", "flashCPLD") +
      timedLine("15:00:00", "Start transferring CPLD image, please wait ...", "flashCPLD") +
      timedLine("15:00:02", "flashCPLD end", "flashCPLD") +
      timedLine("15:00:02", "Start transferring image, please wait ...") +
      timedLine("15:00:05", "Flash Completed.") + endedAt("15:00:09");
  const JobTimes times =
      timesOf(stretchOf(parseLog(log), platform::parseJson(R"({"log_id": "17", "job_id": "updateFW",
                                             "input_parameters": [{"wwn": "A1"}]})")));
  const ControllerTimes expected = {
      "A1", {{"CPLD", std::chrono::seconds(2)}, {"firmware", std::chrono::seconds(3)}}};
  EXPECT_EQ(times.controllers, std::vector<ControllerTimes>{expected});
}

}  // namespace
}  // namespace kelvane::console
