// The image that a controller was given.

#include <filesystem>

#include <gtest/gtest.h>

#include "console/explain/ImageNote.h"
#include "platform/Json.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TempFolder.h"

namespace kelvane::console {
namespace {

class ImageNote : public ::testing::Test {
 protected:
  static std::string note(const std::string& entry, const std::string& product = "",
                          bool isQvxf = false) {
    FailedController failed;
    failed.product = product;
    failed.isQvxf = isQvxf;
    return imageNote(platform::parseJson(R"({"input_parameters": [)" + entry + "]}"), failed);
  }

  test::TempFolder folder;
};

TEST_F(ImageNote, TellsWhatIsWrongWithTheFile) {
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

TEST_F(ImageNote, TellsAnImageThatMayNotBeRead) {
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
  const std::string image = folder.write("secret.img", "x");
  const test::PermissionBits bits(image, 0);
  EXPECT_EQ(test::asOrdinaryUser([&] { return imageFault(image); }),
            " cannot be read: Permission denied");
}

TEST_F(ImageNote, TellsWhichKindTheControllerTakes) {
  const std::string entry = R"({"wwn": "A", "file_path": "/no.img"})";
  EXPECT_EQ(note(entry), "its image: /no.img does not exist");
  EXPECT_EQ(note(entry, "4801", true),
            "its image: /no.img does not exist; product 0x4801 takes QVXF images");
  EXPECT_EQ(note(entry, "4301"),
            "its image: /no.img does not exist; product 0x4301 takes standard images");
}

TEST_F(ImageNote, TellsAnEntryWithoutAnImage) {
  EXPECT_EQ(note(R"({"wwn": "A"})"), "its image: none is given");
  EXPECT_EQ(note(R"({"file_path": 5})"), "its image: file_path is no string");
  EXPECT_EQ(note(""), "");
}

}  // namespace
}  // namespace kelvane::console
