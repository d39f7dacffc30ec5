// What the console's check looks for is all that the contract lays down.

#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/DownloadAreaChecks.h"
#include "console/checks/FindingCodes.h"
#include "console/checks/RecordChecks.h"
#include "console/checks/SettingsChecks.h"
#include "contract/JobFile.h"
#include "contract/Paths.h"
#include "contract/Settings.h"
#include "platform/File.h"
#include "platform/Value.h"
#include "tests/docs/Page.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Checks, LookForEveryProductSetting) {
  std::set<std::string> looked;
  for (const console::ProductSetting& setting : console::productSettings()) {
    looked.insert(setting.key);
  }
  EXPECT_EQ(looked, std::set<std::string>(std::begin(settings::kProductKeys),
                                          std::end(settings::kProductKeys)));
}

TEST(Checks, KnowEveryCommand) {
  const auto fault = [](const std::string& command) {
    return console::whyNotStarted(Value::dictionary(
        {{"job_id", command}, {"state_id", "WAIT"}, {"input_parameters", Value::array()}}));
  };
  for (const char* command : job::kCommands) {
    EXPECT_THAT(fault(command), Not(HasSubstr("no command of the worker's"))) << command;
  }
  EXPECT_THAT(fault("updateHW"), HasSubstr("no command of the worker's"));
}

TEST(Checks, LookForLeftoversInEveryFolderOfTheDownloadArea) {
  const test::TempFolder folder;
  for (const std::string name : paths::kProductFolders) {
    folder.write("tmp/OnlineUpdate/" + name + "/.incoming-a", "");
  }
  EXPECT_EQ(console::leftoverDownloadFindings(folder / "").size(),
            std::size(paths::kProductFolders));
}

TEST(FindingsPage, HasEveryCodeWithWhatItStandsFor) {
  std::vector<Row> rows;
  std::set<std::string> codes;
  for (const console::CodeText& text : console::kCodeTexts) {
    rows.push_back({std::string("`") + text.code + "`", text.meaning});
    codes.insert(text.code);
  }
  EXPECT_EQ(codes.size(), rows.size());
  EXPECT_EQ(tableRows(section(readSource("docs/findings.md"), "## The codes")), rows);
}

TEST(Checks, LookForTheLeftoversThatThePageNames) {
  const std::string page = section(readSource("docs/job-file.md"), "### What a kill leaves");
  for (const char* prefix : {platform::kArrivingPrefix, platform::kLeavingPrefix}) {
    const test::TempFolder folder;
    folder.write(std::string("tmp/OnlineUpdate/FW/") + prefix + "a", "");
    EXPECT_EQ(console::leftoverDownloadFindings(folder / "").size(), 1U) << prefix;
    EXPECT_THAT(page, HasSubstr(std::string("`") + prefix + "`"));
  }
  EXPECT_THAT(page,
              HasSubstr(std::string("`") + platform::kReplacementPrefix + "` and six characters"));
}

}  // namespace
}  // namespace kelvane::docs
