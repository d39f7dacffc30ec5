// The sub-command log.

#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

#include "console/commands/ShowLog.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

class ShowLog : public ConsoleWorld {
 protected:
  ShowLog() {
    options.sharedFolder = folder / "shared";
    folder.write("shared/utility/logs/TarselVistrelUtility.txt",
                 "[14:03:07] [a.cpp][1][run][debug] jobs = (\n    1,\n    2\n)\n"
                 "[14:03:08] [a.cpp][2][init][error] open /x\x1b: none\n"
                 "[14:03:09] [a.cpp][3][run][debug] two\nlines\n");
  }

  int run() { return runHere(showLog, options); }

  ShowLogOptions options;
};

TEST_F(ShowLog, OneLineAnEntryObjectsFolded) {
  screen.charset = Charset::ascii;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "14:03:07 run: jobs = ( ... (3 more lines)\n"
            "14:03:08 error init: open /x?: none\n"
            "14:03:09 run: two ... (1 more line)\n");
}

TEST_F(ShowLog, TheLastNoneAreNone) {
  options.tail = "0";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "--tail 0 shows no entries\n");
}

TEST_F(ShowLog, FullShowsObjectsWhole) {
  options.full = true;
  options.function = "run";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "14:03:07 run: jobs = (\n    1,\n    2\n)\n14:03:09 run: two\nlines\n");
}

TEST_F(ShowLog, LevelIsTheLeastThatIsShown) {
  options.level = "warning";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "14:03:08 error init: open /x\xEF\xBF\xBD: none\n");
}

TEST_F(ShowLog, ErrorsAreRedWhereThereAreColours) {
  options.level = "error";
  screen.colour = true;
  screen.charset = Charset::ascii;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "\x1b[31m14:03:08 error init: open /x?: none\x1b[0m\n");
}

TEST_F(ShowLog, ForMachinesALineOfJsonEach) {
  screen.json = true;
  options.function = "run";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            R"j({"time":"14:03:07","file":"a.cpp","line":"1","function":"run","level":"debug",)j"
            R"j("message":"jobs = (\n    1,\n    2\n)"})j"
            "\n"
            R"j({"time":"14:03:09","file":"a.cpp","line":"3","function":"run","level":"debug",)j"
            R"j("message":"two\nlines"})j"
            "\n");
}

TEST_F(ShowLog, WhereNothingIsToBeShownItSaysSo) {
  options.level = "critical";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "no entries at this level\n");
  shown.str("");
  options = {.sharedFolder = options.sharedFolder, .function = "updateFW"};
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "no entries of updateFW\n");
  shown.str("");
  screen.json = true;
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "");
}

TEST_F(ShowLog, OfALogThatWasMailed) {
  const std::string file = folder.write("mail/log.txt", "[14:03:07] [a.cpp][1][run][debug] mine\n");
  options = {};
  options.copy = {.logFile = file};
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "14:03:07 run: mine\n");
  options = {};
  options.copy = {.jobFile = file};
  EXPECT_EQ(run(), kBadUsage);
  EXPECT_EQ(messages.str(),
            "kelvane-console: the log is not at hand: give it with --log-file, too\n");
}

TEST_F(ShowLog, WithoutALogThereIsNoneToShow) {
  std::filesystem::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  EXPECT_EQ(run(), kNotFound);
}

TEST_F(ShowLog, TheTailIsTheLastOfTheWantedEntries) {
  options.tail = "1";
  options.function = "run";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "14:03:09 run: two ... (1 more line)\n");
  shown.str("");
  options.tail = "9";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(),
            "14:03:07 run: jobs = ( ... (3 more lines)\n"
            "14:03:09 run: two ... (1 more line)\n");
}

TEST_F(ShowLog, ATailThatIsNoNumberIsBadUsage) {
  for (const char* tail : {"-1", "1x", "all", "99999999999999999999"}) {
    options.tail = tail;
    EXPECT_EQ(run(), kBadUsage) << tail;
  }
  EXPECT_EQ(shown.str(), "");
}

// --- of one job

class LogOfJob : public ShowLog {
 protected:
  LogOfJob() {
    options.logId = "17";
    folder.write(test::kJobFile, jobs());
    writeLog(taken("16") + step("other") + taken("17") + step("mine") + end("17") + taken("18"));
  }

  static std::string jobs() {
    return R"([{"log_id": "17", "job_id": "updateFW", "state_id": "FREE", "result": 0,
                "input_parameters": []},
               {"log_id": "20", "job_id": "updateFW", "state_id": "WAIT",
                "input_parameters": []}])";
  }
  static std::string line(const std::string& function, const std::string& message) {
    return "[14:03:07] [x.cpp][1][" + function + "][debug] " + message + "\n";
  }
  static std::string taken(const std::string& logId) {
    return line("run", "currentJobArray = (\n)") +
           line("run", "logId = " + logId + ", inputParmsDict = {\n}, stateId = WAIT. jobId = x");
  }
  static std::string step(const std::string& text) { return line("updateFW", text); }
  static std::string end(const std::string& logId) {
    return step("updateAllFW end, retDict = {\n    \"log_id\" = " + logId + ";\n}");
  }
  void writeLog(const std::string& text) const {
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", text);
  }
};

constexpr char kPart[] =
    "14:03:07 run: currentJobArray = ( ... (1 more line)\n"
    "14:03:07 run: logId = 17, inputParmsDict = { ... (1 more line)\n"
    "14:03:07 updateFW: mine\n"
    "14:03:07 updateFW: updateAllFW end, retDict = { ... (2 more lines)\n";

TEST_F(LogOfJob, IsItsPartAlone) {
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), kPart);
}

TEST_F(LogOfJob, CanBeFilteredAndCut) {
  options.function = "updateFW";
  options.tail = "1";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "14:03:07 updateFW: updateAllFW end, retDict = { ... (2 more lines)\n");
}

TEST_F(LogOfJob, IsFoundByItsLogIdWhereTheJobFileHasItNoLonger) {
  folder.write(test::kJobFile, "[]");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), kPart);
  folder.write(test::kJobFile, "[{ damaged");
  shown.str("");
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), kPart);
}

TEST_F(LogOfJob, ThatWasNotTakenHasNoEntries) {
  options.logId = "20";
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str(), "no entries of job 20\n");
}

TEST_F(LogOfJob, ThatNobodyKnowsIsNotFound) {
  options.logId = "99";
  EXPECT_EQ(run(), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 99 in " + (folder / test::kJobFile) +
                                ", and the log has none either\n");
}

TEST_F(LogOfJob, SaysWhereItIsMixedWithAnothers) {
  writeLog(taken("17") + step("mine") + taken("18") + step("whose") + end("17"));
  EXPECT_EQ(run(), kSuccess);
  EXPECT_EQ(shown.str().rfind("another worker wrote at the same time: some of these entries may be "
                              "its\n14:03:07 run: ",
                              0),
            0U)
      << shown.str();
  screen.json = true;
  shown.str("");
  EXPECT_EQ(run(), kSuccess);
  const std::string first = shown.str().substr(0, shown.str().find('\n'));
  EXPECT_TRUE(platform::parseJson(first).get("mixed").truth()) << first;
}

// --- as it is written

// A log that has its next change at each wait; the user interrupts behind the last one.
class FollowedLog : public LogOfJob {
 protected:
  FollowedLog() { options.logId = ""; }

  bool wait(std::chrono::milliseconds) override {
    if (next == changes.size()) return false;
    changes[next++]();
    return true;
  }
  int follow() {
    return guarded(messages, screen.charset, [&] { return followLog(options, *this, screen); });
  }
  std::string log() const { return folder / "shared/utility/logs/TarselVistrelUtility.txt"; }
  void append(const std::string& text) const { std::ofstream(log(), std::ios::app) << text; }

  std::vector<std::function<void()>> changes;
  std::size_t next = 0;
};

TEST_F(FollowedLog, ShowsWhatComesUntilTheInterrupt) {
  writeLog(step("one") + step("two"));
  changes = {[] {}, [&] { append(step("three")); }, [&] { append(step("four")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(messages.str(), "");
  EXPECT_EQ(shown.str(),
            "14:03:07 updateFW: one\n14:03:07 updateFW: two\n"
            "14:03:07 updateFW: three\n14:03:07 updateFW: four\n");
}

TEST_F(FollowedLog, ShowsNothingTwiceWhereNothingComes) {
  writeLog(step("one"));
  changes = {[] {}, [] {}, [] {}};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(shown.str(), "14:03:07 updateFW: one\n");
}

TEST_F(FollowedLog, BeginsWithTheTail) {
  writeLog(step("one") + step("two"));
  options.tail = "0";
  changes = {[&] { append(step("three")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(shown.str(), "14:03:07 updateFW: three\n");
}

TEST_F(FollowedLog, IsFiltered) {
  options.function = "updateFW";
  writeLog(step("one"));
  changes = {[&] { append(line("run", "two") + step("three")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(shown.str(), "14:03:07 updateFW: one\n14:03:07 updateFW: three\n");
}

TEST_F(FollowedLog, SurvivesRotationTruncationAndDeletion) {
  writeLog(step("one"));
  changes = {[&] {
               append(step("two"));
               std::filesystem::rename(log(), log() + ".1");
               writeLog(step("three"));
             },
             [&] { writeLog(step("4")); }, [&] { std::filesystem::remove(log()); },
             [&] { writeLog(step("five")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(shown.str(),
            "14:03:07 updateFW: one\n14:03:07 updateFW: two\n"
            "the log begins anew\n14:03:07 updateFW: three\n"
            "the log begins anew\n14:03:07 updateFW: 4\n" +
                log() + " is not there: the worker never creates it; waiting for it\n" +
                "the log begins anew\n14:03:07 updateFW: five\n");
}

TEST_F(FollowedLog, IsWaitedForWhereItIsNotThere) {
  std::filesystem::remove(log());
  changes = {[&] { writeLog(step("one")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(shown.str(), log() + " is not there: the worker never creates it; waiting for it\n" +
                             "14:03:07 updateFW: one\n");
}

TEST_F(FollowedLog, ForMachinesIsEntriesAlone) {
  screen.json = true;
  std::filesystem::remove(log());
  changes = {[&] { writeLog(step("one")); }};
  EXPECT_EQ(follow(), kInterrupted);
  EXPECT_EQ(platform::parseJson(shown.str()).get("message"), platform::Value("one"));
}

TEST_F(FollowedLog, AFolderInItsPlaceIsToldAtOnce) {
  std::filesystem::remove(log());
  std::filesystem::create_directory(log());
  EXPECT_EQ(follow(), kNotFound);
}

TEST_F(FollowedLog, IsThatOfAllJobs) {
  options.logId = "17";
  EXPECT_EQ(follow(), kBadUsage);
}

}  // namespace
}  // namespace kelvane::console
