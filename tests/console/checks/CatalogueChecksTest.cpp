// The checks of the update catalogue.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/CatalogueChecks.h"
#include "platform/Json.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using ::testing::IsEmpty;

class CatalogueChecks : public ::testing::Test {
 protected:
  // Of a job in this state with these parameters, where FOLDER is the folder's path.
  std::vector<std::string> found(const std::string& state, std::string inputs) const {
    if (const std::size_t at = inputs.find("FOLDER"); at != std::string::npos) {
      inputs.replace(at, 6, folder.path());
    }
    return inShort(catalogueFindings(
        platform::parseJson(R"([5, {"log_id": "1", "job_id": "x", "state_id": ")" + state +
                            R"(", "input_parameters": )" + inputs + "}]"),
        "Offers"));
  }
  void makePipe() const { ASSERT_EQ(::mkfifo((folder / "Offers.plist").c_str(), 0600), 0); }
  std::vector<std::string> told() const {
    return {"warning: the catalogue " + (folder / "Offers.plist") + " is no regular file"};
  }

  test::TempFolder folder;
};

constexpr char kQuery[] = R"({"folder": "FOLDER"})";

TEST_F(CatalogueChecks, AFolderThatHoldsOtherFilesIsAWarningOfAWaitingJob) {
  const auto folders = [this](const std::string& state) {
    return inShort(engineFolderFindings(
        platform::parseJson(R"([5, {"log_id": "1", "state_id": ")" + state +
                            R"(", "input_parameters": {"folder": ")" + folder.path() + "\"}}]"),
        "/shared/"));
  };
  EXPECT_THAT(folders("WAIT"), IsEmpty());
  folder.write("letter", "");
  const std::string told =
      "warning: the update engine's folder " + folder.path() + " is not empty: it holds letter";
  EXPECT_THAT(folders("WAIT"), ::testing::ElementsAre(told));
  EXPECT_THAT(folders("RUN"), IsEmpty());
  folder.write("photo", "");
  EXPECT_THAT(folders("WAIT"), ::testing::ElementsAre(told + " and others"));
}

TEST_F(CatalogueChecks, TheConsolesOwnFolderMayHoldWhatAKilledEngineLeft) {
  folder.write("tmp/EngineRunner/half", "");
  const platform::Value records = platform::parseJson(
      R"([{"log_id": "1", "state_id": "WAIT", "input_parameters": {"folder": ")" +
      (folder / "tmp/EngineRunner") + "\"}}]");
  EXPECT_THAT(engineFolderFindings(records, folder / ""), IsEmpty());
  EXPECT_EQ(engineFolderFindings(records, "/elsewhere/").size(), 1U);
}

TEST_F(CatalogueChecks, AFileOrNoneIsFine) {
  EXPECT_THAT(found("WAIT", kQuery), IsEmpty());
  folder.write("Offers.plist", "");
  EXPECT_THAT(found("WAIT", kQuery), IsEmpty());
}

TEST_F(CatalogueChecks, APipeIsAWarningForQueriesAndDownloads) {
  makePipe();
  EXPECT_EQ(found("WAIT", kQuery), told());
  EXPECT_EQ(found("RUN", R"([{"folder": "FOLDER"}, {}])"), told());
}

TEST_F(CatalogueChecks, AFolderIsAWarning) {
  folder.write("Offers.plist/file", "");
  EXPECT_EQ(found("RUN", kQuery), told());
}

TEST_F(CatalogueChecks, FinishedJobsAndOtherParametersAreNoConcern) {
  makePipe();
  EXPECT_THAT(found("FREE", kQuery), IsEmpty());
  for (const char* inputs : {"5", "[]", "[5]", "{}", R"({"folder": 5})"}) {
    EXPECT_THAT(found("WAIT", inputs), IsEmpty()) << inputs;
  }
}

}  // namespace
}  // namespace kelvane::console
