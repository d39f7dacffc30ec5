#include "tests/fuzz/laws/ImageLaws.h"

#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using simulator::Image;
using simulator::ImagePart;

bool isSame(const std::optional<ImagePart>& one, const std::optional<ImagePart>& other) {
  if (!one || !other) return !one && !other;
  return one->version == other->version && one->bytes == other->bytes;
}

bool isSame(const Image& one, const Image& other) {
  return one.kind == other.kind && one.products == other.products &&
         isSame(one.firmware, other.firmware) && isSame(one.cpld, other.cpld) &&
         isSame(one.usb, other.usb);
}

}  // namespace

void requireSound(const Image& image) {
  for (const std::optional<ImagePart>& part :
       {std::optional(image.firmware), image.cpld, image.usb}) {
    if (part) require(simulator::isVersion(part->version), "a part has a version", part->version);
  }
  require(!image.products.empty(), "an image fits something");
  for (const std::string& product : image.products) {
    require(simulator::isProduct(product), "an image fits products or families", product);
  }
}

void requireFitting(const std::vector<std::string>& products,
                    const std::function<bool(std::uint16_t)>& fits) {
  for (const std::string& product : products) {
    const auto number = static_cast<std::uint16_t>(std::stoul(product, nullptr, 16));
    require(fits(product.size() == 4 ? static_cast<std::uint16_t>(number << 8U) : number),
            "an image fits what it names", product);
  }
}

void requireReadAgain(const Image& image, const std::optional<Image>& read,
                      const std::string& bytes) {
  require(read && isSame(image, *read), "an image is read as it was written", bytes);
}

void requireDamaged(const std::optional<Image>& read) { require(!read, "a damaged image is none"); }

}  // namespace kelvane::fuzz
