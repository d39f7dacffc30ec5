#include "simulators/controllers/Image.h"

#include <algorithm>

#include <sys/stat.h>
#include <zlib.h>

#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "simulators/controllers/Status.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {

using platform::Value;

namespace {

constexpr std::size_t kWordSize = 4;
constexpr std::size_t kFamilyLength = 4;   // "0x43"
constexpr std::size_t kProductLength = 6;  // "0x4301"
constexpr char kKind[] = "kind";
constexpr char kProduct[] = "product";
constexpr char kParts[] = "parts";
constexpr char kFirmware[] = "firmware";
constexpr char kCpld[] = "cpld";
constexpr char kUsb[] = "usb";
constexpr char kVersion[] = "version";
constexpr char kSize[] = "size";

std::string word(std::uint32_t number) {
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<char>((number >> shift) & 0xFFU));
  }
  return bytes;
}

std::uint32_t wordAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = kWordSize; i-- > 0;) {
    number = (number << 8U) | static_cast<unsigned char>(bytes[offset + i]);
  }
  return number;
}

Value manifestPart(const ImagePart& part) {
  return Value::dictionary({{kVersion, part.version},
                            {kSize, Value::integer(static_cast<std::int64_t>(part.bytes.size()))}});
}

Value manifestOf(const Image& image) {
  Value products = Value::array();
  for (const std::string& product : image.products) products.append(product);
  Value parts = Value::dictionary({{kFirmware, manifestPart(image.firmware)}});
  if (image.cpld) parts.set(kCpld, manifestPart(*image.cpld));
  if (image.usb) parts.set(kUsb, manifestPart(*image.usb));
  return Value::dictionary({{kKind, image.kind == Image::Kind::qvxf ? kKindQvxf : kKindStandard},
                            {kProduct, products},
                            {kParts, parts}});
}

// Takes an image apart. What is asked of a manifest of another shape raises.
class Decoder {
 public:
  Decoder(const Value& manifest, std::string_view rest) : manifest_(manifest), rest_(rest) {}

  std::optional<Image> decode() {
    Image image;
    const std::string& kind = manifest_.get(kKind).string();
    if (kind != kKindStandard && kind != kKindQvxf) return {};
    image.kind = kind == kKindQvxf ? Image::Kind::qvxf : Image::Kind::standard;
    if (!takeProducts(image)) return {};
    const std::optional<ImagePart> firmware = takePart(kFirmware);
    if (!firmware) return {};
    image.firmware = *firmware;
    image.cpld = takePart(kCpld);
    image.usb = takePart(kUsb);
    if (damaged_ || !rest_.empty()) return {};
    return image;
  }

 private:
  bool takeProducts(Image& image) const {
    for (const Value& product : manifest_.get(kProduct).elements()) {
      if (!isProduct(product.string())) return false;
      image.products.push_back(product.string());
    }
    return !image.products.empty();
  }

  std::optional<ImagePart> takePart(const char* name) {
    const Value& part = manifest_.get(kParts).get(name);
    if (part.isNothing()) return {};
    const std::optional<std::uint64_t> size = wholeNumber(part.get(kSize), rest_.size());
    if (!size || !isVersion(part.get(kVersion).string())) {
      damaged_ = true;
      return {};
    }
    const auto length = static_cast<std::size_t>(*size);
    ImagePart taken{part.get(kVersion).string(), std::string(rest_.substr(0, length))};
    rest_.remove_prefix(length);
    return taken;
  }

  const Value& manifest_;
  std::string_view rest_;
  bool damaged_ = false;
};

}  // namespace

bool Image::fits(std::uint16_t product) const {
  const std::string identifier = hexText(product, 4);
  return std::any_of(products.begin(), products.end(), [&](const std::string& known) {
    const std::string lower = lowerCase(known);
    return lower == identifier || lower == identifier.substr(0, kFamilyLength);
  });
}

bool isVersion(std::string_view text) {
  return !text.empty() && text.size() <= kVersionLengthLimit &&
         std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

bool isProduct(std::string_view text) {
  return (text.size() == kFamilyLength || text.size() == kProductLength) &&
         hexNumber(text, 0xFFFF).has_value();
}

std::uint32_t checksum(std::string_view bytes) {
  return static_cast<std::uint32_t>(
      ::crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::string encodeImage(const Image& image) {
  const std::string manifest = platform::printJson(manifestOf(image)).value_or("");
  std::string bytes(kImageMagic);
  bytes += word(static_cast<std::uint32_t>(manifest.size()));
  bytes += manifest;
  bytes += image.firmware.bytes;
  if (image.cpld) bytes += image.cpld->bytes;
  if (image.usb) bytes += image.usb->bytes;
  return bytes + word(checksum(bytes));
}

std::optional<Image> decodeImage(std::string_view bytes) {
  const std::size_t head = kImageMagic.size() + kWordSize;
  if (bytes.size() < head + kWordSize || !bytes.starts_with(kImageMagic)) return {};
  const std::string_view summed = bytes.substr(0, bytes.size() - kWordSize);
  if (wordAt(bytes, summed.size()) != checksum(summed)) return {};
  const std::size_t length = wordAt(bytes, kImageMagic.size());
  if (length > summed.size() - head) return {};
  try {
    const Value manifest = platform::parseJson(summed.substr(head, length));
    return Decoder(manifest, summed.substr(head + length)).decode();
  } catch (const platform::Exception&) {
    return {};  // a sound checksum over a manifest of another shape
  }
}

ImageFile readImage(const std::string& path) {
  struct stat entry = {};
  if (::stat(path.c_str(), &entry) != 0 || !S_ISREG(entry.st_mode) ||
      static_cast<std::uint64_t>(entry.st_size) > kImageSizeLimit) {
    return {kStatusImageUnreadable, {}};
  }
  try {
    std::optional<Image> image = decodeImage(platform::readFile(path));
    if (!image) return {kStatusImageDamaged, {}};
    return {kZorSuccess, std::move(*image)};
  } catch (const platform::Exception&) {
    return {kStatusImageUnreadable, {}};
  }
}

}  // namespace kelvane::simulator
