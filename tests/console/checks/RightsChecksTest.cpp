// The checks of who else may write what the worker reads.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "console/checks/RightsChecks.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using test::PermissionBits;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kSettings[] = "utility/config/setting.json";

class RightsChecks : public ::testing::Test {
 protected:
  RightsChecks() {
    folder.write(kSettings, "{}");
    for (const char* place : {"", "utility", "utility/config"})
      ::chmod((folder / place).c_str(), 0755);
    ::chmod((folder / kSettings).c_str(), 0644);
  }
  std::vector<std::string> found() const { return inShort(rightsFindings(folder / "")); }

  test::TempFolder folder;
};

TEST_F(RightsChecks, WhatItsOwnerAloneMayWriteIsFine) { EXPECT_THAT(found(), IsEmpty()); }

TEST_F(RightsChecks, WhatEveryoneMayWriteIsAWarningWithTheReason) {
  const PermissionBits bits(folder / kSettings, 0666);
  EXPECT_EQ(rightsFindings(folder / ""),
            (Findings{{Code::othersMayWrite, Severity::warning,
                       (folder / kSettings) + " can be written by everyone",
                       "AppPath in the shared folder's settings names the program that queries and "
                       "downloads start: whoever may write there runs programs with the worker's "
                       "rights.",
                       "Take the right to write away from others, and run the worker as the "
                       "folder's owner.",
                       folder / kSettings}}));
}

TEST_F(RightsChecks, EveryFolderAboveTheSettingsCounts) {
  for (const char* place : {"", "utility", "utility/config"}) {
    const PermissionBits bits(folder / place, 0757);
    EXPECT_THAT(found(),
                ElementsAre("warning: " + (folder / place) + " can be written by everyone"));
  }
}

TEST_F(RightsChecks, WhatIsMissingIsNoConcernHere) {
  EXPECT_THAT(rightsFindings("/nowhere/"), IsEmpty());
}

// --- who may write

constexpr uid_t kAnn = 4711;  // no user and no group has this number

std::string others(mode_t bits, uid_t owner, gid_t group) {
  struct stat entry = {};
  entry.st_mode = S_IFREG | bits;
  entry.st_uid = owner;
  entry.st_gid = group;
  return othersWhoMayWrite(entry, kAnn);
}

TEST(OthersWhoMayWrite, OfOnesOwnNobodyUnlessTheBitsAllowIt) {
  EXPECT_EQ(others(0755, kAnn, kAnn), "");
  EXPECT_EQ(others(0775, kAnn, kAnn), "its group, group 4711");
  EXPECT_EQ(others(0757, kAnn, kAnn), "everyone");
  EXPECT_EQ(others(0777, kAnn, kAnn), "everyone");
}

TEST(OthersWhoMayWrite, AnotherOwnerMayWhateverTheBitsAre) {
  EXPECT_EQ(others(0644, kAnn + 1, kAnn), "its owner, user 4712");
  EXPECT_EQ(others(0444, kAnn + 1, kAnn), "its owner, user 4712");  // who may change the bits
}

TEST(OthersWhoMayWrite, TheSuperUserAndAGroupOfItsOwnDoNotCount) {
  EXPECT_EQ(others(0755, 0, kAnn), "");
  EXPECT_EQ(others(0775, 0, 0), "");
  EXPECT_EQ(others(0775, 0, kAnn), "its group, group 4711");
}

TEST(OthersWhoMayWrite, AreToldByTheirNames) {
  EXPECT_EQ(others(0775, kAnn, 0), "its group, root");
}

}  // namespace
}  // namespace kelvane::console
