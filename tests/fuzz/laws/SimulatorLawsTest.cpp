// The laws of the simulated controllers' files bite.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/fuzz/laws/FleetLaws.h"
#include "tests/fuzz/laws/ImageLaws.h"

namespace kelvane::fuzz {
namespace {

using simulator::Fleet;
using simulator::Image;
using simulator::ImagePart;
using simulator::Reading;

Reading shows(std::uint8_t percent, bool isDone) {
  Reading reading;
  reading.percent = percent;
  reading.done = isDone;
  return reading;
}

TEST(CourseLaw, IsBrokenBeyondTheEndAndByAFlashThatIsNoLongerDone) {
  requireCourse({});
  requireCourse({shows(0, false), shows(50, false), shows(20, false), shows(100, true)});
  EXPECT_DEATH(requireCourse({shows(101, false)}), "comes beyond its end");
  EXPECT_DEATH(requireCourse({shows(100, true), shows(100, false)}), "is done stays so");
}

Fleet twoControllers() {
  Fleet fleet;
  fleet.controllers.resize(2);
  for (simulator::ControllerRecord& controller : fleet.controllers) controller.firmware = "1.0";
  return fleet;
}

TEST(FlashedLaw, IsOfOneVersionAlone) {
  Fleet after = twoControllers();
  after.controllers[0].firmware = "9.9";
  requireFlashed(twoControllers(), "9.9", after, "");
  EXPECT_DEATH(requireFlashed(twoControllers(), "9.9", std::nullopt, "text"),
               "was written is one\ntext");
  EXPECT_DEATH(requireFlashed(twoControllers(), "9.9", twoControllers(), ""), "is kept");
  Fleet other = after;
  other.controllers[1].cpld = "2";
  EXPECT_DEATH(requireFlashed(twoControllers(), "9.9", other, ""), "others stay");
  other = after;
  other.controllers.pop_back();
  EXPECT_DEATH(requireFlashed(twoControllers(), "9.9", other, ""), "others stay");
}

TEST(KeptLaw, IsOfWhatTheFileSaysNotOfItsBlanks) {
  requireKept(R"({"a":1.0})", "{\n  \"a\": 1.0\n}\n");
  EXPECT_DEATH(requireKept(R"({"a":1.0})", R"({"a":1})"), "all else in the file stays");
}

Image soundImage() {
  Image image;
  image.products = {"0x43", "0x4301"};
  image.firmware = {"1.0", "f"};
  image.usb = ImagePart{"2.0", "u"};
  return image;
}

TEST(ImageLaws, AreOfEveryPartsVersionAndOfTheProducts) {
  requireSound(soundImage());
  Image image = soundImage();
  image.firmware.version.clear();
  EXPECT_DEATH(requireSound(image), "a part has a version");
  image = soundImage();
  image.usb->version = "2 0";
  EXPECT_DEATH(requireSound(image), "a part has a version\n2 0");
  image = soundImage();
  image.cpld = ImagePart{std::string(24, '1'), ""};
  EXPECT_DEATH(requireSound(image), "a part has a version");
  image = soundImage();
  image.products.clear();
  EXPECT_DEATH(requireSound(image), "fits something");
  image.products = {"0x43", "0x431"};
  EXPECT_DEATH(requireSound(image), "products or families");
}

TEST(ImageLaws, AreOfProductsAndFamiliesThatAreFitted) {
  const auto fitsAlone = [](std::uint16_t fitted) {
    return [fitted](std::uint16_t product) { return product == fitted; };
  };
  requireFitting({"0x43"}, fitsAlone(0x4300));
  requireFitting({"0x4301"}, fitsAlone(0x4301));
  EXPECT_DEATH(requireFitting({"0x43"}, fitsAlone(0x43)), "fits what it names");
  EXPECT_DEATH(requireFitting({"0x43", "0x4301"}, fitsAlone(0x4300)), "fits what it names");
}

TEST(ImageLaws, AreOfAllThatWasWritten) {
  requireReadAgain(soundImage(), soundImage(), "");
  EXPECT_DEATH(requireReadAgain(soundImage(), std::nullopt, "bytes"), "as it was written\nbytes");
  Image read = soundImage();
  read.kind = Image::Kind::qvxf;
  EXPECT_DEATH(requireReadAgain(soundImage(), read, ""), "as it was written");
  read = soundImage();
  read.products.pop_back();
  EXPECT_DEATH(requireReadAgain(soundImage(), read, ""), "as it was written");
  read = soundImage();
  read.firmware.version = "1.1";
  EXPECT_DEATH(requireReadAgain(soundImage(), read, ""), "as it was written");
  read = soundImage();
  read.cpld = ImagePart{"1", ""};
  EXPECT_DEATH(requireReadAgain(soundImage(), read, ""), "as it was written");
  read = soundImage();
  read.usb->bytes = "v";
  EXPECT_DEATH(requireReadAgain(soundImage(), read, ""), "as it was written");
}

TEST(ImageLaws, AreOfDamageThatIsSeen) {
  requireDamaged(std::nullopt);
  EXPECT_DEATH(requireDamaged(soundImage()), "a damaged image is none");
}

}  // namespace
}  // namespace kelvane::fuzz
