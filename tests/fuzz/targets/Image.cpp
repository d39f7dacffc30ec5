// The simulated controllers' firmware images: as they are, and put together from a manifest and
// bytes, with the right checksum.

#include "simulators/controllers/Image.h"

#include <string>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using simulator::Image;

bool isSame(const std::optional<simulator::ImagePart>& one,
            const std::optional<simulator::ImagePart>& other) {
  if (!one || !other) return !one && !other;
  return one->version == other->version && one->bytes == other->bytes;
}

bool isSame(const Image& one, const Image& other) {
  return one.kind == other.kind && one.products == other.products &&
         isSame(one.firmware, other.firmware) && isSame(one.cpld, other.cpld) &&
         isSame(one.usb, other.usb);
}

void judge(const Image& image) {
  require(simulator::isVersion(image.firmware.version), "a part has a version",
          image.firmware.version);
  require(!image.products.empty(), "an image fits something");
  for (const std::string& product : image.products) {
    require(simulator::isProduct(product), "an image fits products or families", product);
    const auto number = static_cast<std::uint16_t>(std::stoul(product, nullptr, 16));
    require(image.fits(product.size() == 4 ? static_cast<std::uint16_t>(number << 8U) : number),
            "an image fits what it names", product);
  }
  std::string bytes = simulator::encodeImage(image);
  const auto again = simulator::decodeImage(bytes);
  require(again && isSame(image, *again), "an image that is written is read again");
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  require(!simulator::decodeImage(bytes), "a damaged image is none");
}

std::string word(std::size_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(number & 0xFFU);
    number >>= 8U;
  }
  return bytes;
}

std::string withChecksum(const std::string& manifest, const std::string& parts) {
  std::string bytes(simulator::kImageMagic);
  bytes.append(word(manifest.size())).append(manifest).append(parts);
  return bytes.append(word(simulator::checksum(bytes)));
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  if (const auto image = simulator::decodeImage(fuzz::Bytes(data, size).rest())) {
    fuzz::judge(*image);
  }
  const std::string manifest = bytes.part();
  if (const auto image = simulator::decodeImage(fuzz::withChecksum(manifest, bytes.rest()))) {
    fuzz::judge(*image);
  }
  return 0;
}
