// The simulated controllers' firmware images: as they are, put together from a manifest and bytes,
// with the right checksum, and written of what the bytes make.

#include "simulators/controllers/Image.h"

#include <string>
#include <utility>

#include <fmt/format.h>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/laws/ImageLaws.h"

namespace kelvane::fuzz {
namespace {

using simulator::Image;

void judge(const Image& image) {
  requireSound(image);
  requireFitting(image.products, [&](std::uint16_t product) { return image.fits(product); });
  std::string bytes = simulator::encodeImage(image);
  requireReadAgain(image, simulator::decodeImage(bytes), bytes);
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  requireDamaged(simulator::decodeImage(bytes));
}

std::string word(std::size_t number) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(number & 0xFFU);
    number >>= 8U;
  }
  return bytes;
}

// CRC-32, bit by bit.
std::uint32_t checksumOf(const std::string& bytes) {
  std::uint32_t sum = ~std::uint32_t{0};
  for (const char each : bytes) {
    sum ^= static_cast<unsigned char>(each);
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1U ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

std::string withChecksum(const std::string& manifest, const std::string& parts) {
  std::string bytes = "ZORIMG1\n";
  bytes.append(word(manifest.size())).append(manifest).append(parts);
  return bytes.append(word(checksumOf(bytes)));
}

simulator::ImagePart madePart(Bytes& bytes) {
  simulator::ImagePart part;
  const unsigned size = 1 + bytes.pick(23);
  for (unsigned i = 0; i < size; ++i) {
    part.version += static_cast<char>('!' + bytes.pick('~' - '!' + 1));
  }
  part.bytes = bytes.text();
  return part;
}

Image madeImage(Bytes& bytes) {
  Image image;
  image.kind = bytes.flag() ? Image::Kind::qvxf : Image::Kind::standard;
  const unsigned products = 1 + bytes.pick(3);
  for (unsigned i = 0; i < products; ++i) {
    const std::uint32_t product = bytes.word();
    image.products.push_back(bytes.flag() ? fmt::format("0x{:02x}", product & 0xFFU)
                                          : fmt::format("0x{:04X}", product & 0xFFFFU));
  }
  image.firmware = madePart(bytes);
  if (bytes.flag()) image.cpld = madePart(bytes);
  if (bytes.flag()) image.usb = madePart(bytes);
  return image;
}

std::string manifestPart(const char* name, const simulator::ImagePart& part) {
  std::string version;
  for (const char each : part.version) {
    version.append(each == '"' || each == '\\' ? 1 : 0, '\\').append(1, each);
  }
  return fmt::format(R"("{}": {{"version": "{}", "size": {}}})", name, version, part.bytes.size());
}

// As a file holds it. The bytes of the parts have an order of their own, the manifest has none.
std::string imageFile(const Image& image) {
  std::string parts = manifestPart("firmware", image.firmware);
  std::string bytes = image.firmware.bytes;
  for (const auto& [name, part] : {std::pair("cpld", &image.cpld), std::pair("usb", &image.usb)}) {
    if (!*part) continue;
    parts = manifestPart(name, **part) + ", " + parts;
    bytes += (*part)->bytes;
  }
  return withChecksum(fmt::format(R"({{"product": ["{}"], "parts": {{{}}}, "kind": "{}"}})",
                                  fmt::join(image.products, R"(", ")"), parts,
                                  image.kind == Image::Kind::qvxf ? "qvxf" : "standard"),
                      bytes);
}

void judgeMade(const Image& made) {
  const std::string file = imageFile(made);
  requireReadAgain(made, simulator::decodeImage(file), file);
  judge(made);
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
  fuzz::Bytes parts(data, size);
  fuzz::judgeMade(fuzz::madeImage(parts));
  return 0;
}
