// How long a job took, as show, explain and watch tell it.

#include "console/commands/Explain.h"
#include "console/commands/Jobs.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/job/TimedLog.h"

namespace kelvane::console {
namespace {

namespace kt = kelvane::test;

using platform::Value;

class JobTimesShown : public ConsoleWorld {
 protected:
  JobTimesShown() {
    folder.write(kelvane::test::kJobFile, "[" + kt::jobAt("FREE", 100, 100, 100) + "]");
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", kt::wholeJob());
  }
  std::chrono::seconds timeOfDay() override { return std::chrono::hours(16); }

  int runShow() { return runHere(show, OneJobOptions{folder / "shared", "17"}); }
  int runWatch() { return runHere(watch, OneJobOptions{folder / "shared", "17"}); }
  int runExplain() { return runHere(explain, ExplainOptions{folder / "shared", "17"}); }
  bool shows(const std::string& text) const { return shown.str().find(text) != std::string::npos; }
};

constexpr char kPhases[] =
    R"([{"wwn":"A1","phase":"CPLD","seconds":12},{"wwn":"A1","phase":"firmware","seconds":48}])";

TEST_F(JobTimesShown, Show) {
  EXPECT_EQ(runShow(), kSuccess);
  EXPECT_TRUE(shows("took 1:03\nA1: CPLD 0:12, firmware 0:48\n")) << shown.str();
}

TEST_F(JobTimesShown, ShowForMachines) {
  screen.json = true;
  EXPECT_EQ(runShow(), kSuccess);
  const Value times = platform::parseJson(shown.str()).get("console_times");
  EXPECT_EQ(times.get("seconds"), Value::integer(63));
  EXPECT_EQ(times.get("phases"), platform::parseJson(kPhases));
}

TEST_F(JobTimesShown, Explain) {
  EXPECT_EQ(runExplain(), kSuccess);
  EXPECT_TRUE(shows("\n  took       1:03; A1: CPLD 0:12, firmware 0:48\n")) << shown.str();
}

TEST_F(JobTimesShown, ExplainForMachines) {
  screen.json = true;
  EXPECT_EQ(runExplain(), kSuccess);
  const Value told = platform::parseJson(shown.str()).at(0);
  EXPECT_EQ(told.get("seconds"), Value::integer(63));
  EXPECT_EQ(told.get("phases"), platform::parseJson(kPhases));
}

TEST_F(JobTimesShown, WatchOfAFinishedJobTellsWhatItTook) {
  EXPECT_EQ(runWatch(), kSuccess);
  EXPECT_TRUE(shows("result 0: \ntook 1:03\nA1: CPLD 0:12, firmware 0:48\n")) << shown.str();
}

TEST_F(JobTimesShown, WithoutALogNoneIsTold) {
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
  EXPECT_EQ(runShow(), kSuccess);
  EXPECT_EQ(runWatch(), kSuccess);
  EXPECT_FALSE(shows("took"));
  screen.json = true;
  shown.str("");
  EXPECT_EQ(runExplain(), kSuccess);
  const Value told = platform::parseJson(shown.str()).at(0);
  EXPECT_EQ(told.get("seconds"), Value::null());
  EXPECT_EQ(told.get("phases"), Value::array());
}

}  // namespace
}  // namespace kelvane::console
