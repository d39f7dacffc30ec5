// The sub-command values: what the completions offer.

#include <filesystem>

#include "console/command_line/completion/ValuesCommand.h"
#include "console/job/ExitCode.h"
#include "tests/console/ConsoleWorld.h"

namespace kelvane::console {
namespace {

class Values : public ConsoleWorld {
 protected:
  Values() {
    folder.write(test::kJobFile, R"([
      {"log_id": "1", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0, "output": [
        {"ProductID": "old", "Version": "1"}]},
      {"log_id": "2", "job_id": "getOnlineUpdateData", "state_id": "FREE", "result": 0, "output": [
        {"ProductID": "manager", "Version": "2.0"}, {"ProductID": "fw3", "Version": "3.4.0"},
        {"ProductID": "fw3", "Version": "3.5.0"}, {"ProductID": "-x"}, {"Version": "1"}, 5]},
      {"log_id": "3", "job_id": "getOnlineUpdateData", "state_id": "RUN"},
      {"log_id": "17", "job_id": "updateFW", "state_id": "FREE", "result": 32852},
      {"log_id": "18", "job_id": "update\tFW", "state_id": "WAIT"},
      5, {"log_id": 9}, {"log_id": "-h"}, {"log_id": "two\nlines"}, {"log_id": ""}])");
  }

  // What is shown for that kind.
  std::string offered(const std::string& kind, const TypedWords& words = {}) {
    shown.str("");
    EXPECT_EQ(runHere(showValues, ValuesOptions{sharedFolder, kind, words}), kSuccess);
    EXPECT_EQ(messages.str(), "");
    return shown.str();
  }

  std::string sharedFolder = folder / "shared";
};

TEST_F(Values, JobsAreLogIdsWithCommandAndStateTheNewestFirst) {
  screen.charset = Charset::ascii;
  EXPECT_EQ(offered("jobs"),
            "18\tupdate?FW, WAIT\n"
            "17\tupdateFW, FREE, 32852 (0x8054)\n"
            "3\tgetOnlineUpdateData, RUN\n"
            "2\tgetOnlineUpdateData, FREE\n"
            "1\tgetOnlineUpdateData, FREE\n");
}

TEST_F(Values, ProductsAreThoseOfTheLastQueryWithTheirVersions) {
  EXPECT_EQ(offered("products"), "manager\t2.0\nfw3\t3.4.0, 3.5.0\n");
}

TEST_F(Values, WhatIsTypedAlreadyIsNotOfferedAgain) {
  EXPECT_EQ(offered("products", {"download", "fw3"}), "manager\t2.0\n");
}

TEST_F(Values, TheFolderOnTheLineIsTheOneThatIsMeant) {
  sharedFolder = "/nowhere";
  EXPECT_EQ(offered("products", {"--shared=" + (folder / "shared"), "download", "fw3"}),
            "manager\t2.0\n");
  sharedFolder = folder / "shared";
  EXPECT_EQ(offered("products", {"download", "--shared", "/nowhere"}), "");
}

TEST_F(Values, WhatCannotBeFoundOutIsNoFailure) {
  folder.write(test::kJobFile, "[{");
  EXPECT_EQ(offered("jobs"), "");
  std::filesystem::remove(folder / test::kJobFile);
  EXPECT_EQ(offered("jobs"), "");
  EXPECT_EQ(offered("products"), "");
  sharedFolder = "";
  EXPECT_EQ(offered("jobs"), "");
}

}  // namespace
}  // namespace kelvane::console
