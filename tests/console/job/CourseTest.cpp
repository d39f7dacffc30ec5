// Phases over scripted looks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/Course.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::IsEmpty;

using Times = std::vector<ControllerTimes>;

class CourseTest : public ::testing::Test {
 protected:
  // A look at this second.
  void at(int second, const std::string& state, std::vector<ControllerStatus> controllers) {
    course.take(seconds(second), {"18", state, std::move(controllers), "", ""});
  }

  Course course;
};

TEST_F(CourseTest, HasThePhasesOfEachController) {
  at(0, "WAIT", {{"A", 0, 0, 0}, {"B", 0, 0, 0}});
  at(1, "RUN", {{"A", 0, 0, 0}, {"B", 0, 0, 0}});
  at(3, "RUN", {{"A", 50, 0, 25}, {"B", 0, 0, 0}});
  at(10, "RUN", {{"A", 100, 0, 50}, {"B", 0, 0, 0}});
  at(20, "RUN", {{"A", 100, 40, 70}, {"B", 0, 0, 0}});
  at(30, "RUN", {{"A", 100, 100, 100}, {"B", 0, 0, 0}});
  EXPECT_EQ(course.active(), 1U);
  EXPECT_EQ(course.activeSince(), seconds(30));
  EXPECT_EQ(course.phase(), "");
  at(35, "RUN", {{"A", 100, 100, 100}, {"B", 0, 20, 60}});
  EXPECT_EQ(course.phase(), "firmware");
  at(50, "FREE", {{"A", 100, 100, 100}, {"B", 0, 100, 100}});
  EXPECT_EQ(course.times(), (Times{{"A", {{"CPLD", seconds(10)}, {"firmware", seconds(20)}}},
                                   {"B", {{"firmware", seconds(20)}}}}));
  EXPECT_EQ(course.lengthOf(0), seconds(30));
  EXPECT_EQ(course.lengthOf(0, "firmware"), seconds(20));
  EXPECT_EQ(course.active(), 2U);
}

TEST_F(CourseTest, WhatWasNotSeenToBeginHasNoLength) {
  at(0, "RUN", {{"A", 30, 0, 15}});
  at(10, "RUN", {{"A", 100, 0, 50}});
  EXPECT_EQ(course.activeSince(), std::nullopt);
  at(40, "FREE", {{"A", 100, 100, 100}});
  EXPECT_EQ(course.times(), (Times{{"A", {{"firmware", seconds(30)}}}}));
  EXPECT_EQ(course.lengthOf(0), std::nullopt);
}

TEST_F(CourseTest, AJobThatRunsUntouchedMayHaveBegunLongAgo) {
  at(0, "RUN", {{"A", 0, 0, 0}});
  at(10, "RUN", {{"A", 0, 10, 55}});
  at(40, "FREE", {{"A", 0, 100, 100}});
  EXPECT_THAT(course.times(), IsEmpty());
}

TEST_F(CourseTest, TheBeginningMayBeKnownFromElsewhere) {
  course = Course(seconds(0));
  at(5, "RUN", {{"A", 0, 0, 0}});
  at(40, "FREE", {{"A", 0, 100, 100}});
  EXPECT_EQ(course.times(), (Times{{"A", {{"firmware", seconds(40)}}}}));
}

TEST_F(CourseTest, ARetryOfTheCpldIsOneCpldPhase) {
  at(0, "WAIT", {{"A", 0, 0, 0}});
  at(2, "RUN", {{"A", 80, 0, 40}});
  at(4, "RUN", {{"A", 0, 0, 0}});
  EXPECT_EQ(course.phase(), "CPLD");
  at(6, "RUN", {{"A", 30, 0, 15}});
  at(9, "RUN", {{"A", 100, 0, 50}});
  at(12, "FREE", {{"A", 100, 100, 100}});
  EXPECT_EQ(course.times()[0].phases[0], (PhaseTime{"CPLD", seconds(9)}));
}

TEST_F(CourseTest, APhaseThatFailedEndsWithTheJob) {
  at(0, "WAIT", {{"A", 0, 0, 0}, {"B", 0, 0, 0}});
  at(10, "RUN", {{"A", 0, 50, 75}, {"B", 0, 0, 0}});
  at(20, "FREE", {{"A", 0, 50, 75, Standing::failed}, {"B", 0, 0, 0, Standing::notStarted}});
  EXPECT_EQ(course.times(), (Times{{"A", {{"firmware", seconds(20)}}}}));
}

TEST_F(CourseTest, PhasesOfLessThanASecondAreNotTold) {
  at(0, "WAIT", {{"A", 0, 0, 0}});
  course.take(milliseconds(999), {"18", "FREE", {{"A", 0, 100, 100}}, "", ""});
  EXPECT_THAT(course.times(), IsEmpty());
}

TEST_F(CourseTest, AJobThatNobodyRunsGoesNowhere) {
  at(0, "WAIT", {{"A", 0, 0, 0}});
  at(1, "RUN", {{"A", 0, 10, 55}});
  JobStatus dead = {"18", "RUN", {{"A", 0, 10, 55}}, "", ""};
  markWithoutWorker(dead);
  course.take(seconds(90), dead);
  EXPECT_THAT(course.times(), IsEmpty());
}

TEST_F(CourseTest, AJobWithoutControllersHasNone) {
  at(0, "WAIT", {});
  at(1, "RUN", {});
  at(9, "FREE", {});
  EXPECT_THAT(course.times(), IsEmpty());
  EXPECT_EQ(course.phase(), "");
}

}  // namespace
}  // namespace kelvane::console
