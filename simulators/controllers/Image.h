// The firmware images of the simulated controllers: one file that holds parts, each of a version.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane::simulator {

// A file holds, one after the other: the magic (8 bytes), the length of the manifest (4 bytes,
// little-endian), the manifest (JSON), the bytes of the parts in the order firmware, CPLD, USB, and
// the CRC-32 of all before (4 bytes, little-endian). Nothing may follow.
inline constexpr std::string_view kImageMagic = "ZORIMG1\n";
inline constexpr std::size_t kImageSizeLimit = 256U << 20U;
// Versions are short texts, so that they fit into the framework's records.
inline constexpr std::size_t kVersionLengthLimit = 23;

struct ImagePart {
  std::string version;
  std::string bytes;
};

struct Image {
  enum class Kind { standard, qvxf };
  Kind kind = Kind::standard;
  // Identifiers ("0x4301") or families, by the high byte ("0x43"), that the image fits.
  std::vector<std::string> products;
  ImagePart firmware;
  std::optional<ImagePart> cpld;
  std::optional<ImagePart> usb;

  bool fits(std::uint16_t product) const;
};

inline constexpr std::string_view kKindStandard = "standard";
inline constexpr std::string_view kKindQvxf = "qvxf";

// Whether the text may stand as a version: 1 to 23 visible ASCII characters.
bool isVersion(std::string_view text);
// Whether the text names a product identifier or a family.
bool isProduct(std::string_view text);

std::uint32_t checksum(std::string_view bytes);

// The image as a file holds it. The image must be sound (versions, products, size).
std::string encodeImage(const Image& image);
// Nothing where the bytes are not a whole and undamaged image.
std::optional<Image> decodeImage(std::string_view bytes);

// The outcome of reading an image file: either an image, or the status that tells why not.
struct ImageFile {
  std::uint32_t status = 0;
  Image image;
};
// Reads regular files up to the size limit and nothing else.
ImageFile readImage(const std::string& path);

}  // namespace kelvane::simulator
