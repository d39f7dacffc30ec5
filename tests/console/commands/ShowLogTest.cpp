// The sub-command log.

#include <filesystem>

#include "console/commands/ShowLog.h"
#include "console/job/ExitCode.h"
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

}  // namespace
}  // namespace kelvane::console
