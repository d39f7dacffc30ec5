// Firmware images: what is written is read again, and nothing damaged is taken for an image.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/File.h"
#include "simulators/controllers/Image.h"
#include "simulators/controllers/Status.h"
#include "tests/support/TempFolder.h"

namespace kelvane::simulator {
namespace {

using kelvane::test::TempFolder;

Image smallImage() {
  Image image;
  image.products = {"0x4301", "0x88"};
  image.firmware = {"2.4.0", "firmware bytes"};
  image.cpld = ImagePart{"1.7", "cpld"};
  image.usb = ImagePart{"3.1", "usb"};
  return image;
}

// The image with another manifest, the checksum made to fit.
std::string withManifest(const std::string& manifest) {
  std::string bytes(kImageMagic);
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<char>((manifest.size() >> shift) & 0xFFU));
  }
  bytes += manifest;
  const std::uint32_t sum = checksum(bytes);
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<char>((sum >> shift) & 0xFFU));
  }
  return bytes;
}

TEST(SimulatedImage, KeepsEveryPart) {
  const std::optional<Image> read = decodeImage(encodeImage(smallImage()));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->kind, Image::Kind::standard);
  EXPECT_EQ(read->products, smallImage().products);
  EXPECT_EQ(read->firmware.version, "2.4.0");
  EXPECT_EQ(read->firmware.bytes, "firmware bytes");
  ASSERT_TRUE(read->cpld && read->usb);
  EXPECT_EQ(read->cpld->bytes, "cpld");
  EXPECT_EQ(read->usb->version, "3.1");
}

TEST(SimulatedImage, KeepsTheQvxfKindWithoutOtherParts) {
  Image image = smallImage();
  image.kind = Image::Kind::qvxf;
  image.cpld.reset();
  image.usb.reset();
  const std::optional<Image> read = decodeImage(encodeImage(image));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->kind, Image::Kind::qvxf);
  EXPECT_FALSE(read->cpld || read->usb);
}

TEST(SimulatedImage, NoPrefixIsAnImage) {
  const std::string bytes = encodeImage(smallImage());
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_FALSE(decodeImage(bytes.substr(0, length))) << length;
  }
}

TEST(SimulatedImage, NoFlippedBitLeavesAnImage) {
  const std::string bytes = encodeImage(smallImage());
  for (std::size_t i = 0; i < bytes.size() * 8; ++i) {
    std::string flipped = bytes;
    flipped[i / 8] = static_cast<char>(flipped[i / 8] ^ (1 << (i % 8)));
    EXPECT_FALSE(decodeImage(flipped)) << "bit " << i;
  }
}

TEST(SimulatedImage, NothingMayFollow) {
  EXPECT_FALSE(decodeImage(encodeImage(smallImage()) + '\0'));
}

TEST(SimulatedImage, ManifestOfAnotherShapeIsDamaged) {
  const std::string sound =
      R"({"kind":"standard","product":["0x43"],"parts":{"firmware":{"version":"1","size":0}}})";
  ASSERT_TRUE(decodeImage(withManifest(sound)));
  for (const char* manifest :
       {"", "[]", "{}", "not JSON", R"({"kind":1})",
        R"({"kind":"other","product":["0x43"],"parts":{"firmware":{"version":"1","size":0}}})",
        R"({"kind":"standard","product":[],"parts":{"firmware":{"version":"1","size":0}}})",
        R"({"kind":"standard","product":["43"],"parts":{"firmware":{"version":"1","size":0}}})",
        R"({"kind":"standard","product":["0x43"],"parts":{}})",
        R"({"kind":"standard","product":["0x43"],"parts":[]})",
        R"({"kind":"standard","product":["0x43"],"parts":{"firmware":{"version":"","size":0}}})",
        R"({"kind":"standard","product":["0x43"],"parts":{"firmware":{"version":"1","size":9}}})",
        R"({"kind":"standard","product":["0x43"],"parts":{"firmware":{"version":"1","size":-1}}})",
        R"({"kind":"standard","product":["0x43"],"parts":{"firmware":{"version":"1"}}})"}) {
    EXPECT_FALSE(decodeImage(withManifest(manifest))) << manifest;
  }
}

TEST(SimulatedImage, FitsItsProductsAndFamilies) {
  const Image image = smallImage();
  EXPECT_TRUE(image.fits(0x4301));
  EXPECT_FALSE(image.fits(0x4302));
  EXPECT_TRUE(image.fits(0x8800));
  EXPECT_TRUE(image.fits(0x88FF));
  EXPECT_FALSE(image.fits(0x0088));
}

TEST(SimulatedImage, VersionsAreShortVisibleTexts) {
  EXPECT_TRUE(isVersion("2.4.0"));
  EXPECT_TRUE(isVersion(std::string(23, '9')));
  EXPECT_FALSE(isVersion(std::string(24, '9')));
  EXPECT_FALSE(isVersion(""));
  EXPECT_FALSE(isVersion("2 4"));
}

TEST(SimulatedImageFile, IsReadBack) {
  const TempFolder folder;
  const ImageFile file = readImage(folder.write("a.img", encodeImage(smallImage())));
  EXPECT_EQ(file.status, 0U);
  EXPECT_EQ(file.image.firmware.version, "2.4.0");
}

TEST(SimulatedImageFile, TellsUnreadableFromDamaged) {
  const TempFolder folder;
  EXPECT_EQ(readImage(folder / "missing").status, kStatusImageUnreadable);
  EXPECT_EQ(readImage(folder.path()).status, kStatusImageUnreadable);
  EXPECT_EQ(readImage("").status, kStatusImageUnreadable);
  EXPECT_EQ(readImage(folder.write("empty", "")).status, kStatusImageDamaged);
  EXPECT_EQ(readImage(folder.write("text", "some text")).status, kStatusImageDamaged);
}

TEST(SimulatedImageFile, PipesAndDevicesAreNotRead) {
  const TempFolder folder;
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(readImage(folder / "pipe").status, kStatusImageUnreadable);
  EXPECT_EQ(readImage("/dev/zero").status, kStatusImageUnreadable);
}

}  // namespace
}  // namespace kelvane::simulator
