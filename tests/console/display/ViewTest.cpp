// The views, written to a string.

#include <sstream>

#include <gtest/gtest.h>

#include "console/display/JsonView.h"
#include "console/display/PlainView.h"
#include "console/display/TerminalView.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

JobStatus running(int cpld, int firmware, int total) {
  return {"18", "RUN", {{"5000A1B2C3D4E5F6", cpld, firmware, total}}, "0", "no error"};
}

JobStatus finished(const std::string& result, const std::string& text) {
  return {"18", "FREE", {{"5000A1B2C3D4E5F6", 100, 100, 100}}, result, text};
}

class PlainViewTest : public ::testing::Test {
 protected:
  // What showing the status adds.
  std::string shownFor(const JobStatus& status) {
    out.str("");
    view.show({{}, status});
    return out.str();
  }

  std::ostringstream out;
  PlainView view{out, Charset::ascii};
};

TEST_F(PlainViewTest, OneLinePerChange) {
  EXPECT_EQ(shownFor(running(0, 0, 0)),
            "job 18: running\n5000A1B2C3D4E5F6  cpld 0%  firmware 0%  total 0%\n");
  EXPECT_EQ(shownFor(running(0, 0, 0)), "");
  EXPECT_EQ(shownFor(running(50, 0, 25)), "5000A1B2C3D4E5F6  cpld 50%  firmware 0%  total 25%\n");
}

TEST_F(PlainViewTest, OnlyTheControllerThatChanged) {
  JobStatus status = {"18", "RUN", {{"A", 0, 0, 0}, {"B", 0, 0, 0}}, "0", "no error"};
  shownFor(status);
  status.controllers[1].cpld = 10;
  EXPECT_EQ(shownFor(status), "B  cpld 10%  firmware 0%  total 0%\n");
}

TEST_F(PlainViewTest, ResultAtTheEnd) {
  shownFor(running(100, 100, 100));
  EXPECT_EQ(shownFor(finished("0", "no error")), "result 0: no error\n");
  EXPECT_EQ(shownFor(finished("0", "no error")), "");
}

TEST_F(PlainViewTest, NothingTheJobFileSaysSteersTheOutput) {
  EXPECT_EQ(shownFor({"1\n8", "R\x1b", {{"\x1b]0;x\x07", 1, 2, 3}}, "0", ""}),
            "job 1?8: R?\n?]0;x?  cpld 1%  firmware 2%  total 3%\n");
  EXPECT_EQ(shownFor({"18", "FREE", {}, "1", "\x1b[2J\r"}), "result 1 (0x0001): ?[2J?\n");
}

TEST_F(PlainViewTest, AControllerThatFailedIsNotDone) {
  shownFor(running(100, 88, 94));
  JobStatus status = finished("32852", "failed");
  status.controllers[0] = {"5000A1B2C3D4E5F6", 100, 88, 94, Standing::failed};
  EXPECT_EQ(shownFor(status),
            "5000A1B2C3D4E5F6  failed  cpld 100%  firmware 88%  total 94%\n"
            "result 32852 (0x8054): failed\n");
}

TEST_F(PlainViewTest, AWaitingJobWithoutAWorkerIsTold) {
  JobStatus status = {"18", "WAIT", {}, "", ""};
  EXPECT_EQ(shownFor(status), "job 18: waiting\n");
  markWithoutWorker(status);
  EXPECT_EQ(shownFor(status),
            "job 18: waiting, no worker\n"
            "no worker is seen; the job goes on when one is started with its log id\n");
  EXPECT_EQ(shownFor(status), "");
}

TEST_F(PlainViewTest, ASilenceIsToldOnceAMinute) {
  Look look = {{}, running(0, 0, 0)};
  look.status.command = "updateFW";
  view.show(look);
  const auto shownAt = [&](int seconds) {
    out.str("");
    look.silence = std::chrono::seconds(seconds);
    view.show(look);
    return out.str();
  };
  EXPECT_EQ(shownAt(59), "");
  EXPECT_EQ(shownAt(61), "no news for 61 s; a flash may be silent for minutes, do not unplug\n");
  EXPECT_EQ(shownAt(62), "");
  EXPECT_EQ(shownAt(120), "no news for 120 s; a flash may be silent for minutes, do not unplug\n");
  EXPECT_EQ(shownAt(0), "");
  EXPECT_EQ(shownAt(60), "no news for 60 s; a flash may be silent for minutes, do not unplug\n");
}

// About how long it takes still, at some seconds of the following.
class PlainTimeLeft : public PlainViewTest {
 protected:
  std::string shownAt(int second, std::optional<TimeLeft> left) {
    out.str("");
    Look look = {{}, running(100, 10, 55)};
    look.followed = std::chrono::seconds(second);
    look.left = std::move(left);
    view.show(look);
    return out.str();
  }
  static TimeLeft left(const std::string& phase, int seconds) {
    return {"5000A1B2C3D4E5F6", phase, std::chrono::seconds(seconds),
            std::chrono::seconds(seconds)};
  }
};

TEST_F(PlainTimeLeft, IsToldOnceAPhaseAndOnceAMinute) {
  shownAt(0, {});
  EXPECT_EQ(shownAt(1, left("CPLD", 200)), "about 3:20 left\n");
  EXPECT_EQ(shownAt(2, left("CPLD", 199)), "");
  EXPECT_EQ(shownAt(30, {}), "");
  EXPECT_EQ(shownAt(60, left("CPLD", 141)), "");
  EXPECT_EQ(shownAt(61, left("CPLD", 140)), "about 2:20 left\n");
  EXPECT_EQ(shownAt(62, left("firmware", 100)), "about 1:40 left\n");
}

TEST_F(PlainTimeLeft, AFewSecondsAreNotWorthALine) {
  shownAt(0, {});
  EXPECT_EQ(shownAt(1, left("firmware", 9)), "");
}

TEST_F(PlainViewTest, AJobThatTookItsTimeIsToldWithIt) {
  Look look = {{}, finished("0", "no error")};
  look.elapsed = std::chrono::seconds(65);
  view.show(look);
  EXPECT_EQ(out.str(),
            "5000A1B2C3D4E5F6  cpld 100%  firmware 100%  total 100%\n"
            "result 0: no error\n"
            "took 1:05\n");
}

TEST(JsonView, OneLineForEachChangeOfTheRecord) {
  std::ostringstream out;
  JsonView view(out);
  const platform::Value record = platform::parseJson(R"({"log_id": "1\n8", "n": 0.10})");
  view.show({record, {}});
  view.show({record, {}, std::chrono::seconds(1)});
  EXPECT_EQ(out.str(), "{\"log_id\":\"1\\n8\",\"n\":0.10}\n");
  view.show({platform::parseJson("{}"), {}});
  EXPECT_EQ(out.str(), "{\"log_id\":\"1\\n8\",\"n\":0.10}\n{}\n");
}

TEST(JsonView, TheLastObjectTellsWhatTheResultDoesNot) {
  std::ostringstream out;
  JsonView view(out);
  Look look = {platform::parseJson(R"({"log_id": "18"})"), finished("0", "no error")};
  look.status.command = "updateFW";
  look.shortfall = "the CPLD of A was not flashed";
  view.show(look);
  EXPECT_EQ(platform::printJsonLine(platform::parseJson(out.str()).get("console_status")),
            R"({"controllers":[{"wwn":"5000A1B2C3D4E5F6","standing":"done","cpld_percentage":100,)"
            R"("fw_percentage":100,"total_percentage":100}],)"
            R"("shortfall":"the CPLD of A was not flashed"})");
}

TEST(JsonView, ThatNoWorkerIsSeenIsALineOfItsOwn) {
  std::ostringstream out;
  JsonView view(out);
  Look look = {platform::parseJson(R"({"log_id": "18"})"), {"18", "RUN", {}, "", ""}};
  view.show(look);
  markWithoutWorker(look.status);
  view.show(look);
  view.show(look);
  EXPECT_EQ(out.str(),
            "{\"log_id\":\"18\"}\n"
            "{\"log_id\":\"18\",\"console_status\":{\"no_worker\":true}}\n");
}

class TerminalViewTest : public ::testing::Test {
 protected:
  std::string shownFor(const JobStatus& status) {
    out.str("");
    view.show({{}, status, std::chrono::seconds(65)});
    return out.str();
  }

  TerminalSize size{80, 24};
  std::ostringstream out;
  TerminalView view{out, [this] { return size; }, Charset::ascii};
};

TEST_F(TerminalViewTest, DrawsAndThenDrawsAgainInPlace) {
  EXPECT_EQ(shownFor(running(50, 0, 25)),
            "job 18: running, 1:05\x1b[K\n"
            "5000A1B2C3D4E5F6  CPLD      cpld ###---  50%  fw ------   0%  "
            "total #-----  25%\x1b[K\n"
            "\x1b[J");
  EXPECT_EQ(shownFor(running(100, 0, 50)),
            "\r\x1b[2A"
            "job 18: running, 1:05\x1b[K\n"
            "5000A1B2C3D4E5F6  firmware  cpld ###### 100%  fw ------   0%  "
            "total ###---  50%\x1b[K\n"
            "\x1b[J");
}

TEST_F(TerminalViewTest, DrawsNothingWhereNothingChanged) {
  shownFor(running(50, 0, 25));
  EXPECT_EQ(shownFor(running(50, 0, 25)), "");
}

TEST_F(TerminalViewTest, DrawsAgainAtANewWidth) {
  shownFor(running(50, 0, 25));
  size.columns = 40;
  EXPECT_EQ(shownFor(running(50, 0, 25)),
            "\r\x1b[2A"
            "job 18: running, 1:05\x1b[K\n"
            "5000A1B2C3D4E5F6  CPLD\x1b[K\n"
            "  cpld     ###########------------  50%\x1b[K\n"
            "  firmware -----------------------   0%\x1b[K\n"
            "  total    #####------------------  25%\x1b[K\n"
            "\x1b[J");
}

TEST_F(TerminalViewTest, ResultStandsBelowTheBars) {
  shownFor(running(100, 98, 99));
  EXPECT_EQ(shownFor(finished("32852", "flash\x1b[31m error")),
            "\r\x1b[2A"
            "job 18: finished, 1:05\x1b[K\n"
            "5000A1B2C3D4E5F6  done      cpld ###### 100%  fw ###### 100%  "
            "total ###### 100%\x1b[K\n"
            "\x1b[J"
            "result 32852 (0x8054): flash?[31m error\n");
}

TEST_F(TerminalViewTest, TheResultIsWrappedWhereItHasNoRoom) {
  size.columns = 20;
  const std::string all = shownFor(finished("32852", "the flash failed"));
  EXPECT_NE(all.find("\x1b[Jresult 32852\n(0x8054): the flash\nfailed\n"), std::string::npos);
}

}  // namespace
}  // namespace kelvane::console
