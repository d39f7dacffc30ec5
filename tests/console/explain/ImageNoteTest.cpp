// The image that a controller was given.

#include <gtest/gtest.h>

#include "console/explain/ImageNote.h"
#include "platform/Json.h"

namespace kelvane::console {
namespace {

std::string note(const std::string& entry, const std::string& product = "", bool isQvxf = false) {
  FailedController failed;
  failed.wwn = "A1";
  failed.product = product;
  failed.isQvxf = isQvxf;
  return imageNote(platform::parseJson(R"({"input_parameters": [)" + entry + "]}"), failed);
}

TEST(ImageNote, TellsWhichKindTheControllerTakes) {
  const std::string entry = R"({"wwn": "A", "file_path": "/no.img"})";
  EXPECT_EQ(note(entry), "A1: its image: /no.img does not exist");
  EXPECT_EQ(note(entry, "4801", true),
            "A1: its image: /no.img does not exist; product 0x4801 takes QVXF images");
  EXPECT_EQ(note(entry, "4301"),
            "A1: its image: /no.img does not exist; product 0x4301 takes standard images");
}

TEST(ImageNote, OfACopyTheImageIsNotLookedFor) {
  FailedController failed;
  failed.wwn = "A1";
  failed.product = "4301";
  EXPECT_EQ(imageNote(platform::parseJson(
                          R"({"input_parameters": [{"wwn": "A", "file_path": "/no.img"}]})"),
                      failed, true),
            "A1: its image: /no.img; product 0x4301 takes standard images");
}

TEST(ImageNote, TellsAnEntryWithoutAnImage) {
  EXPECT_EQ(note(R"({"wwn": "A"})"), "A1: its image: none is given");
  EXPECT_EQ(note(R"({"file_path": 5})"), "A1: its image: file_path is no string");
  EXPECT_EQ(note(R"({"wwn": "A", "file_path": ""})"), "A1: its image: the path is empty");
  EXPECT_EQ(note(""), "");
}

}  // namespace
}  // namespace kelvane::console
