// How long a job still takes, over scripted looks and a scripted clock.

#include <gtest/gtest.h>

#include "console/job/Pace.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

struct Percentages {
  int cpld = 0;
  int firmware = 0;
};

// A job of controllers A, B, C... with these images.
class PaceTest : public ::testing::Test {
 protected:
  void begin() { take("WAIT", {}); }
  // A look some seconds after the last one, with these percentages of the first controllers.
  void after(int wait, const std::vector<Percentages>& all) {
    now += seconds(wait);
    take("RUN", all);
  }
  // What is left of phase, controller and job, in seconds; -1 where it is not told.
  std::vector<int> left() const {
    const std::optional<TimeLeft> told = pace.left(now);
    if (!told) return {};
    return {inSeconds(told->ofPhase), inSeconds(told->ofController), inSeconds(told->ofJob)};
  }
  bool isTold() const { return pace.left(now).has_value(); }

  std::vector<std::string> images = {"/a"};
  milliseconds now{1'000'000};
  Pace pace;

 private:
  static int inSeconds(std::optional<milliseconds> time) {
    return time ? static_cast<int>(std::chrono::round<seconds>(*time).count()) : -1;
  }

  void take(const std::string& state, const std::vector<Percentages>& all) {
    platform::Value output = platform::Value::array();
    for (std::size_t i = 0; i < images.size(); ++i) {
      const Percentages one = i < all.size() ? all[i] : Percentages{};
      const int total = one.firmware > 0 ? 50 + one.firmware / 2 : one.cpld / 2;
      output.append(
          platform::Value::dictionary({{"wwn", std::string(1, static_cast<char>('A' + i))},
                                       {"file_path", images[i]},
                                       {"cpld_percentage", platform::Value::integer(one.cpld)},
                                       {"fw_percentage", platform::Value::integer(one.firmware)},
                                       {"total_percentage", platform::Value::integer(total)}}));
    }
    const auto record = platform::Value::dictionary(
        {{"log_id", "18"}, {"job_id", "updateFW"}, {"state_id", state}, {"output", output}});
    pace.take(now, statusOf(record), record);
  }
};

TEST_F(PaceTest, IsToldFromTheSecondChangeOn) {
  begin();
  after(0, {{0, 0}});
  EXPECT_FALSE(isTold());
  after(4, {{0, 10}});
  EXPECT_FALSE(isTold());
  after(1, {{0, 10}});
  EXPECT_FALSE(isTold());
  after(3, {{0, 20}});
  EXPECT_EQ(left(), (std::vector<int>{32, 32, 32}));
  EXPECT_EQ(pace.left(now)->wwn, "A");
  EXPECT_EQ(pace.left(now)->phase, "firmware");
}

TEST_F(PaceTest, WhereTheFollowingBeginsLateTheFirstPercentageIsNoChange) {
  after(0, {{0, 40}});
  after(2, {{0, 50}});
  EXPECT_FALSE(isTold());
  after(2, {{0, 60}});
  EXPECT_EQ(left(), (std::vector<int>{8, 8, 8}));
}

TEST_F(PaceTest, BetweenChangesItGoesDownByTheClock) {
  begin();
  for (int percent = 0; percent <= 30; percent += 10) after(5, {{0, percent}});
  EXPECT_EQ(left()[0], 35);
  for (int second = 1; second <= 5; ++second) {
    after(1, {{0, 30}});
    EXPECT_EQ(left()[0], 35 - second);
  }
  after(0, {{0, 40}});
  EXPECT_EQ(left()[0], 30);
}

TEST_F(PaceTest, ItDoesNotJumpWithOneChangeThatComesEarlyOrLate) {
  begin();
  for (int percent = 0; percent <= 20; ++percent) after(4, {{0, percent}});
  EXPECT_EQ(left()[0], 320);
  after(2, {{0, 21}});
  EXPECT_NEAR(left()[0], 318, 12);
  after(6, {{0, 22}});
  EXPECT_NEAR(left()[0], 312, 12);
}

TEST_F(PaceTest, IsGoneInASilenceAndBackWithTheNextNewsAsIfThereHadBeenNone) {
  begin();
  for (int percent = 0; percent <= 40; percent += 10) after(2, {{0, percent}});
  EXPECT_EQ(left()[0], 12);
  now += seconds(9);
  EXPECT_EQ(left()[0], 3);
  now += seconds(1);
  EXPECT_FALSE(isTold());
  after(600, {{0, 40}});
  EXPECT_FALSE(isTold());
  after(0, {{0, 50}});
  EXPECT_EQ(left()[0], 10);
}

TEST_F(PaceTest, SlowNewsAreNoSilence) {
  begin();
  for (int percent = 0; percent <= 3; ++percent) after(12, {{0, percent}});
  EXPECT_EQ(pace.patience(), seconds(36));
  now += seconds(35);
  EXPECT_EQ(left()[0], 97 * 12 - 35);
  now += seconds(1);
  EXPECT_FALSE(isTold());
}

TEST_F(PaceTest, ASilenceBetweenTheFirstTwoChangesIsNotTakenForThePace) {
  begin();
  after(2, {{0, 10}});
  after(600, {{0, 20}});
  EXPECT_FALSE(isTold());
  after(2, {{0, 30}});
  EXPECT_EQ(left()[0], 14);
}

TEST_F(PaceTest, IsGoneWhereItHasRunOut) {
  begin();
  after(2, {{0, 97}});
  after(2, {{0, 98}});
  EXPECT_EQ(left()[0], 4);
  now += seconds(4);
  EXPECT_FALSE(isTold());
}

TEST_F(PaceTest, ANewPhaseBeginsAnew) {
  begin();
  after(2, {{50, 0}});
  after(2, {{60, 0}});
  EXPECT_EQ(left(), (std::vector<int>{8, -1, -1}));
  EXPECT_EQ(pace.left(now)->phase, "CPLD");
  after(2, {{100, 0}});
  EXPECT_FALSE(isTold());
  after(2, {{100, 10}});
  EXPECT_FALSE(isTold());
  after(2, {{100, 20}});
  EXPECT_EQ(left(), (std::vector<int>{16, 16, 16}));
}

TEST_F(PaceTest, ARetryBeginsAnew) {
  begin();
  after(2, {{50, 0}});
  after(2, {{60, 0}});
  after(2, {{0, 0}});
  EXPECT_FALSE(isTold());
  after(2, {{20, 0}});
  EXPECT_FALSE(isTold());
  after(2, {{30, 0}});
  EXPECT_EQ(left()[0], 14);
}

// The first takes 10 seconds for its CPLD and then 20 for its firmware.
TEST_F(PaceTest, WaitingControllersAreExpectedToTakeWhatThoseWithTheirImageTake) {
  images = {"/a", "/a", "/a"};
  begin();
  after(5, {{50, 0}});
  after(5, {{100, 0}});
  after(5, {{100, 25}});
  after(5, {{100, 50}});
  // 10 more of its own, 30 for each of the others.
  EXPECT_EQ(left(), (std::vector<int>{10, 10, 70}));
  after(10, {{100, 100}});
  after(2, {{100, 100}, {40, 0}});
  after(2, {{100, 100}, {60, 0}});
  // 4 more of its CPLD, 20 for its firmware, 30 for the last one.
  EXPECT_EQ(left(), (std::vector<int>{4, 24, 54}));
}

TEST_F(PaceTest, OfAnotherImageNothingIsKnown) {
  images = {"/a", "/b"};
  begin();
  after(2, {{0, 10}});
  after(2, {{0, 20}});
  EXPECT_EQ(left(), (std::vector<int>{16, 16, -1}));
  after(16, {{0, 100}});
  after(2, {{0, 100}, {10, 0}});
  after(2, {{0, 100}, {20, 0}});
  EXPECT_EQ(left(), (std::vector<int>{16, -1, -1}));
}

TEST_F(PaceTest, WhereItWasNotSeenToBeginItsLengthIsNoMeasure) {
  images = {"/a", "/a"};
  after(0, {{0, 40}});
  after(2, {{0, 50}});
  after(2, {{0, 60}});
  EXPECT_EQ(left(), (std::vector<int>{8, 8, -1}));
}

TEST_F(PaceTest, OfOtherJobsNothingIsTold) {
  const auto record = platform::parseJson(R"({"log_id": "1", "job_id": "updateSW",
                                              "state_id": "RUN", "output": {"file_path": "/x"}})");
  pace.take(seconds(1), statusOf(record), record);
  EXPECT_EQ(pace.left(seconds(2)), std::nullopt);
  EXPECT_EQ(pace.patience(), kUsualPatience);
}

}  // namespace
}  // namespace kelvane::console
