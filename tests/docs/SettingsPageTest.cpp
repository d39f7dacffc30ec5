// docs/settings.md names the settings of the contract, all of them and no others, and shows the
// lines that the worker writes.

#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contract/Settings.h"
#include "platform/Json.h"
#include "tests/docs/Page.h"
#include "tests/docs/PageWorld.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::HasSubstr;
using ::testing::SizeIs;

using Names = std::set<std::string>;

constexpr char kShared[] = "## The shared folder's settings";
constexpr char kProduct[] = "## The product's settings";

std::string settingsPart(const char* heading) {
  return section(readSource("docs/settings.md"), heading);
}

Names keysInTable(const char* heading) {
  const auto names = namesOf(tableRows(settingsPart(heading)));
  return {names.begin(), names.end()};
}

Names keysInExample(const char* heading) {
  const Value example = platform::parseJson(codeBlocks(settingsPart(heading), "json").at(0));
  Names keys;
  for (const auto& [key, value] : example.entries()) keys.insert(key);
  return keys;
}

TEST(SettingsPage, NamesEveryKeyAndNoOther) {
  Names named = keysInTable(kShared);
  named.merge(keysInTable(kProduct));
  EXPECT_EQ(named, Names(std::begin(settings::kProductKeys), std::end(settings::kProductKeys)));
}

TEST(SettingsPage, ItsExamplesHoldTheKeysOfTheirTables) {
  for (const char* heading : {kShared, kProduct}) {
    EXPECT_EQ(keysInExample(heading), keysInTable(heading)) << heading;
  }
}

class SettingsPageLog : public PageWorld {
 protected:
  // The log line that this part of the page shows.
  static std::string shown(const char* heading) {
    const auto blocks = codeBlocks(settingsPart(heading), "text");
    EXPECT_THAT(blocks, SizeIs(1));
    return comparableLog(blocks.at(0));
  }
};

TEST_F(SettingsPageLog, AMissingSharedFileIsToldWhenTheEngineIsToBeStarted) {
  std::filesystem::remove(shared() + "utility/config/setting.json");
  run(workedExample("getOnlineUpdateData").before);
  EXPECT_THAT(writtenLog(), ::testing::EndsWith(shown(kShared)));
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("RUN"));
}

TEST_F(SettingsPageLog, AMissingProductFileIsToldAtTheStart) {
  std::filesystem::remove(bundle / "Contents/Resources/Config/setting.json");
  run("[]");
  EXPECT_THAT(writtenLog(), ::testing::StartsWith(shown(kProduct)));
}

TEST_F(SettingsPageLog, ADamagedProductFileIsNotTold) {
  bundle.write("Contents/Resources/Config/setting.json", "no json");
  run("[]");
  EXPECT_THAT(writtenLog(), ::testing::Not(HasSubstr("[error]")));
}

TEST_F(SettingsPageLog, SettingsThatAreNoObjectLeaveTheInstallationWaiting) {
  bundle.write("Contents/Resources/Config/setting.json", "[]");
  run(workedExample("updateSW").before);
  EXPECT_THAT(writtenLog(), HasSubstr("[updateSW][error]"));
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("WAIT"));
}

TEST_F(SettingsPageLog, WithoutTheApplicationsPathAnInstallationEndsWithZero) {
  bundle.write("Contents/Resources/Config/setting.json", "{}");
  run(workedExample("updateSW").before);
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("FREE"));
  EXPECT_EQ(result(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder / "Applications/Manager.app/Contents/Resources"));
}

TEST_F(SettingsPageLog, WithoutTheCataloguesNameAQueryHasNoOutput) {
  bundle.write("Contents/Resources/Config/setting.json", "{}");
  run(workedExample("getOnlineUpdateData").before);
  EXPECT_EQ(jobs().at(0).get("state_id"), Value("FREE"));
  EXPECT_FALSE(jobs().at(0).has("output"));
}

}  // namespace
}  // namespace kelvane::docs
