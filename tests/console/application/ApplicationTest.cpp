// What is an application, and which version it tells.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "console/application/Application.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

class Application : public ::testing::Test {
 protected:
  std::string fault() const { return applicationFault(folder / "A.app"); }
  std::string versionIn(const std::string& entries) const {
    folder.write("A.app/Contents/Info.plist", "<plist><dict>" + entries + "</dict></plist>");
    return versionOf(folder / "A.app");
  }

  test::TempFolder folder;
};

TEST_F(Application, HasContentsWithAProgram) {
  folder.write("A.app/program", "");
  EXPECT_EQ(fault(), "it has no folder Contents");
  const std::string program = folder.write("A.app/Contents/Resources/deep/program", "");
  EXPECT_EQ(fault(), "there is no program in its Contents");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  EXPECT_EQ(fault(), "");
}

TEST_F(Application, IsAFolder) {
  folder.write("A.app", "");
  EXPECT_EQ(fault(), "it is a file");
}

TEST_F(Application, ALinkToAProgramElsewhereIsNone) {
  std::filesystem::create_directories(folder / "A.app/Contents");
  std::filesystem::create_symlink("/bin/sh", folder / "A.app/Contents/sh");
  EXPECT_EQ(fault(), "there is no program in its Contents");
}

TEST_F(Application, TellsItsVersion) {
  EXPECT_EQ(versionIn("<key>CFBundleVersion</key><string>17</string>"), "17");
  EXPECT_EQ(versionIn("<key>CFBundleVersion</key><string>17</string>"
                      "<key>CFBundleShortVersionString</key><string>2.0</string>"),
            "2.0");
}

TEST_F(Application, WithoutAVersionTellsNone) {
  EXPECT_EQ(versionOf(folder / "A.app"), "");
  EXPECT_EQ(versionIn(""), "");
  EXPECT_EQ(versionIn("<key>CFBundleVersion</key><integer>5</integer>"), "");
  folder.write("A.app/Contents/Info.plist", "no property list");
  EXPECT_EQ(versionOf(folder / "A.app"), "");
  folder.write("A.app/Contents/Info.plist", "<plist><array/></plist>");
  EXPECT_EQ(versionOf(folder / "A.app"), "");
}

}  // namespace
}  // namespace kelvane::console
