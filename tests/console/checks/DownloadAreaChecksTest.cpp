// The checks of the download area.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/checks/DownloadAreaChecks.h"
#include "tests/console/checks/FindingTexts.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DownloadAreaChecks : public ::testing::Test {
 protected:
  std::vector<std::string> leftovers() const {
    return inShort(leftoverDownloadFindings(folder / ""));
  }
  test::TempFolder folder;
};

TEST_F(DownloadAreaChecks, PackagesAreNoLeftovers) {
  EXPECT_THAT(leftovers(), IsEmpty());
  folder.write("tmp/OnlineUpdate/FW/FW_T3.img", "");
  folder.write("tmp/OnlineUpdate/FW/.hidden", "");
  folder.write("tmp/OnlineUpdate/.incoming-x", "");
  EXPECT_THAT(leftovers(), IsEmpty());
}

TEST_F(DownloadAreaChecks, LeftoversOfEveryProductAreNamed) {
  folder.write("tmp/OnlineUpdate/SW/.incoming-Manager.app/Contents/file", "");
  folder.write("tmp/OnlineUpdate/FW/.outgoing-b", "");
  folder.write("tmp/OnlineUpdate/FW/.incoming-a", "");
  folder.write("tmp/OnlineUpdate/KORFW/.incoming-a", "");
  folder.write("tmp/OnlineUpdate/ZENTANAS/.incoming-a", "");
  const std::string area = "warning: " + (folder / "tmp/OnlineUpdate/");
  EXPECT_THAT(leftovers(), ElementsAre(area + "FW/.incoming-a is left over",
                                       area + "FW/.outgoing-b is left over",
                                       area + "KORFW/.incoming-a is left over",
                                       area + "SW/.incoming-Manager.app is left over",
                                       area + "ZENTANAS/.incoming-a is left over"));
}

TEST_F(DownloadAreaChecks, TheTwoKindsAreTold) {
  folder.write("tmp/OnlineUpdate/FW/.incoming-a", "");
  folder.write("tmp/OnlineUpdate/FW/.outgoing-a", "");
  const Findings found = leftoverDownloadFindings(folder / "");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].meaning,
            "A worker was killed, or the computer went down, while it copied a package there. The "
            "package is not in the download area.");
  EXPECT_EQ(found[1].meaning,
            "A worker was killed, or the computer went down, while it removed an older package. "
            "Nobody uses what is left of it.");
  EXPECT_EQ(found[0].advice,
            "Remove it while no worker runs, or leave it: a later download of the same package "
            "removes it.");
}

}  // namespace
}  // namespace kelvane::console
