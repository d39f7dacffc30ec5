// Images of controllers, as files.

#include <filesystem>

#include <gtest/gtest.h>

#include "console/checks/ImageChecks.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

TEST(ImageChecks, TellWhatIsWrongWithTheFile) {
  const test::TempFolder folder;
  EXPECT_EQ(imageFault(folder / "no.img"), " does not exist");
  EXPECT_EQ(imageFault(folder.path()), " is a folder");
  EXPECT_EQ(imageFault("/dev/null"), " is no regular file");
  EXPECT_EQ(imageFault(folder.write("empty.img", "")), " has no bytes");
  EXPECT_EQ(imageFault(folder.write("whole.img", "x")), "");
  EXPECT_EQ(imageFault(""), " is empty");
  EXPECT_EQ(imageFault("a.img"), " is relative: it is looked for in the worker's current folder");
  EXPECT_EQ(imageFault("/" + std::string(255, 'x')),
            " is longer than 255 bytes: the rest of it is cut off");
}

TEST(ImageChecks, TellAnImageThatMayNotBeRead) {
  const test::TempFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
  const std::string image = folder.write("secret.img", "x");
  const test::PermissionBits bits(image, 0);
  EXPECT_EQ(test::asOrdinaryUser([&] { return imageFault(image); }),
            " cannot be read: Permission denied");
}

}  // namespace
}  // namespace kelvane::console
