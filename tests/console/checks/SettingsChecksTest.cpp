// The checks of the two settings files.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/SettingsChecks.h"
#include "platform/Json.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

namespace fs = std::filesystem;

using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SettingsChecks : public ::testing::Test {
 protected:
  SettingsChecks() {
    ::chmod(folder.path().c_str(), 0755);
    ::chmod(folder.write("Manager.app/Contents/Resources/EngineRunner", "#!/bin/sh\n").c_str(),
            0755);
    for (const ProductSetting& setting : productSettings()) product.set(setting.key, "x");
    product.set("AppPath", folder / "Manager.app");
    writeShared(R"({"AppPath": ")" + (folder / "Manager.app") + "\"}");
  }
  void writeShared(const std::string& text) const { folder.write("shared.json", text); }
  std::vector<std::string> foundInShared() const {
    return inShort(sharedSettingsFindings(folder / "shared.json"));
  }
  std::string foundByOrdinaryUser() const {
    return test::asOrdinaryUser(
        [this] { return asLines(sharedSettingsFindings(folder / "shared.json")); });
  }
  std::vector<std::string> foundInProduct() const {
    folder.write("product.json", *platform::printJson(product));
    return inShort(productSettingsFindings(folder / "product.json"));
  }
  std::string productKey(const std::string& key) const {
    return (folder / "product.json") + ": \"" + key + "\"";
  }

  test::TempFolder folder;
  std::string engine = folder / "Manager.app/Contents/Resources/EngineRunner";
  Value product = Value::dictionary();
};

TEST_F(SettingsChecks, WholeSettingsAreFine) {
  EXPECT_THAT(foundInShared(), IsEmpty());
  EXPECT_THAT(foundInProduct(), IsEmpty());
}

TEST_F(SettingsChecks, MissingSharedSettingsAreAnError) {
  fs::remove(folder / "shared.json");
  EXPECT_EQ(
      sharedSettingsFindings(folder / "shared.json"),
      (Findings{
          {Code::settingsUnreadable, Severity::error,
           "open " + (folder / "shared.json") + ": No such file or directory",
           "The update engine cannot be started: queries and downloads stay in state RUN, "
           "with an error line in the log. Firmware jobs and installations are not concerned.",
           "Install the application anew, or write the file as the settings' reference page "
           "shows it.",
           folder / "shared.json"}}));
}

TEST_F(SettingsChecks, DamagedSharedSettingsAreAnError) {
  writeShared("");
  EXPECT_THAT(foundInShared(),
              ElementsAre("error: " + (folder / "shared.json") + " is not JSON: it is empty"));
  writeShared("[]");
  EXPECT_THAT(foundInShared(),
              ElementsAre("error: " + (folder / "shared.json") + " is an array, not an object"));
}

TEST_F(SettingsChecks, AppPathHasToBeAText) {
  writeShared("{}");
  EXPECT_THAT(foundInShared(),
              ElementsAre("error: " + (folder / "shared.json") + ": \"AppPath\" is missing"));
  writeShared(R"({"AppPath": 5})");
  EXPECT_THAT(foundInShared(),
              ElementsAre("error: " + (folder / "shared.json") + ": \"AppPath\" is no string"));
}

TEST_F(SettingsChecks, AppPathHasToLeadToABundleWithAnEngine) {
  writeShared(R"({"AppPath": "/nowhere/Manager.app"})");
  EXPECT_THAT(foundInShared(),
              ElementsAre("error: " + (folder / "shared.json") +
                          ": AppPath leads to /nowhere/Manager.app, which is no bundle"));
  writeShared(R"({"AppPath": ")" + folder.path() + "\"}");
  EXPECT_THAT(foundInShared(), ElementsAre("error: the update engine " + folder.path() +
                                           "/Contents/Resources/EngineRunner does not exist"));
}

TEST_F(SettingsChecks, EngineHasToBeAnExecutableFile) {
  ::chmod(engine.c_str(), 0644);
  EXPECT_THAT(foundInShared(), ElementsAre("error: the update engine " + engine +
                                           " cannot be executed: Permission denied"));
  fs::remove(engine);
  fs::create_directory(engine);
  EXPECT_THAT(foundInShared(), ElementsAre("error: the update engine " + engine + " is no file"));
}

TEST_F(SettingsChecks, EngineInAFolderThatCannotBeEnteredIsToldByItsCause) {
  ::chmod((folder / "shared.json").c_str(), 0644);
  const test::PermissionBits bits(folder / "Manager.app/Contents/Resources", 0);
  EXPECT_EQ(foundByOrdinaryUser(),
            "error: the update engine " + engine + " cannot be executed: Permission denied\n");
}

TEST_F(SettingsChecks, EveryMissingProductKeyIsToldWithWhatThenHappens) {
  const Value whole = product;
  for (const ProductSetting& setting : productSettings()) {
    product = Value::dictionary();
    for (const auto& [key, value] : whole.entries()) {
      if (key != setting.key) product.set(key, value);
    }
    const char* severity = setting.severity == Severity::error ? "error: " : "warning: ";
    EXPECT_THAT(foundInProduct(), ElementsAre(severity + productKey(setting.key) + " is missing"));
    EXPECT_EQ(productSettingsFindings(folder / "product.json")[0].meaning, setting.missing);
  }
}

TEST_F(SettingsChecks, ProductKeyThatIsNoStringIsAnError) {
  product.set("product_id_sw", Value::integer(5));
  EXPECT_THAT(foundInProduct(),
              ElementsAre("error: " + productKey("product_id_sw") + " is no string"));
}

TEST_F(SettingsChecks, MissingProductSettingsAreOneError) {
  EXPECT_THAT(inShort(productSettingsFindings("/nowhere/setting.json")),
              ElementsAre("error: open /nowhere/setting.json: No such file or directory"));
}

TEST_F(SettingsChecks, InstalledApplicationThatIsNotThereIsAWarning) {
  product.set("AppPath", "/nowhere/Manager.app");
  EXPECT_THAT(foundInProduct(),
              ElementsAre("warning: " + (folder / "product.json") +
                          ": AppPath leads to /nowhere/Manager.app, where no application stands"));
}

TEST_F(SettingsChecks, ApplicationWhoseFolderCannotBeChangedIsAnError) {
  fs::create_directories(folder / "fixed/Manager.app");
  product.set("AppPath", folder / "fixed/Manager.app");
  EXPECT_THAT(foundInProduct(), IsEmpty());
  const test::PermissionBits bits(folder / "fixed", 0555);
  EXPECT_EQ(test::asOrdinaryUser(
                [this] { return asLines(productSettingsFindings(folder / "product.json")); }),
            "error: the application's folder cannot be changed: " + (folder / "fixed") +
                ": Permission denied\n");
}

TEST_F(SettingsChecks, ApplicationThatCanBeRemovedInPartOnlyIsAnError) {
  fs::create_directories(folder / "open/Manager.app/Contents/deep");
  for (const char* place : {"open", "open/Manager.app", "open/Manager.app/Contents"}) {
    fs::permissions(folder / place, fs::perms::all);
  }
  product.set("AppPath", folder / "open/Manager.app");
  EXPECT_THAT(foundInProduct(), IsEmpty());
  const test::PermissionBits bits(folder / "open/Manager.app/Contents/deep", 0555);
  EXPECT_EQ(test::asOrdinaryUser(
                [this] { return asLines(productSettingsFindings(folder / "product.json")); }),
            "error: the application cannot be replaced: " +
                (folder / "open/Manager.app/Contents/deep") + ": Permission denied\n");
}

}  // namespace
}  // namespace kelvane::console
