// What the console's check looks for is what the worker's sources lay down.

#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/DownloadAreaChecks.h"
#include "console/checks/Framework.h"
#include "console/checks/RecordChecks.h"
#include "console/checks/SettingsChecks.h"
#include "platform/Value.h"
#include "tests/docs/HeaderNames.h"
#include "tests/docs/Page.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Checks, LookForEveryFunctionOfTheFrameworksHeader) {
  EXPECT_THAT(console::kFrameworkFunctions, ElementsAreArray(frameworkFunctions()));
}

TEST(Checks, LookForEveryProductSetting) {
  std::set<std::string> looked;
  for (const console::ProductSetting& setting : console::productSettings()) {
    looked.insert(setting.key);
  }
  const auto constants = constantsOf("settings");
  EXPECT_EQ(looked, std::set<std::string>(constants.begin(), constants.end()));
}

TEST(Checks, KnowEveryCommand) {
  const auto fault = [](const std::string& command) {
    return console::whyNotStarted(Value::dictionary(
        {{"job_id", command}, {"state_id", "WAIT"}, {"input_parameters", Value::array()}}));
  };
  for (const std::string& command : commandNames()) {
    EXPECT_THAT(fault(command), Not(HasSubstr("no command of the worker's"))) << command;
  }
  EXPECT_THAT(fault("updateHW"), HasSubstr("no command of the worker's"));
}

// Every folder of the download area that the worker's source names, in its order.
std::vector<std::string> foldersOfTheDownloadArea() {
  const std::string source =
      readSource("Modules/Mac/FWUpdater/Kelvane_mac/online_update/DownloadArea.cpp");
  const std::string start = "%@tmp/OnlineUpdate/";
  std::vector<std::string> found;
  for (std::size_t at = source.find(start); at != std::string::npos; at = source.find(start, at)) {
    at += start.size();
    found.push_back(source.substr(at, source.find('"', at) - at));
  }
  return found;
}

TEST(Checks, LookForLeftoversInEveryFolderOfTheDownloadArea) {
  const testing::TempFolder folder;
  const std::vector<std::string> names = foldersOfTheDownloadArea();
  EXPECT_EQ(names.size(), 4U);
  for (const std::string& name : names) {
    folder.write("tmp/OnlineUpdate/" + name + "/.incoming-a", "");
  }
  EXPECT_EQ(console::leftoverDownloadFindings(folder / "").size(), names.size());
}

TEST(Checks, LookForTheLeftoversThatTheWorkersSourcesMakeAndThePageNames) {
  const std::string page = section(readSource("docs/job-file.md"), "### What a kill leaves");
  for (const char* prefix : {".incoming-", ".outgoing-"}) {
    const testing::TempFolder folder;
    folder.write(std::string("tmp/OnlineUpdate/FW/") + prefix + "a", "");
    EXPECT_EQ(console::leftoverDownloadFindings(folder / "").size(), 1U) << prefix;
    EXPECT_THAT(readSource("platform/FileTree.cpp"), HasSubstr(std::string("\"") + prefix + "\")"));
    EXPECT_THAT(page, HasSubstr(std::string("`") + prefix + "`"));
  }
  EXPECT_THAT(readSource("platform/File.cpp"), HasSubstr("\"/.replace-XXXXXX\""));
  EXPECT_THAT(page, HasSubstr("`.replace-` and six characters"));
}

}  // namespace
}  // namespace kelvane::docs
