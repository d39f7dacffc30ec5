// make-image: makes firmware images for the simulated controllers, and shows what one holds.

#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "platform/File.h"
#include "simulators/controllers/Image.h"
#include "simulators/controllers/Status.h"

namespace {

using kelvane::simulator::Image;
using kelvane::simulator::ImageFile;
using kelvane::simulator::ImagePart;

constexpr std::size_t kDefaultSize = 65536;
constexpr std::size_t kMostSize = 64U << 20U;
constexpr std::size_t kShareOfSmallParts = 4;  // CPLD and USB, of the firmware's size

struct Options {
  std::vector<std::string> products;
  std::string firmware;
  std::string cpld;
  std::string usb;
  std::size_t size = kDefaultSize;
  std::string file;
};

// Bytes that look like code, and are the same whenever they are made of the same text.
std::string bytesFor(const std::string& seed, std::size_t size) {
  std::uint32_t state = kelvane::simulator::checksum(seed) | 1U;
  std::string bytes(size, '\0');
  for (char& byte : bytes) {
    state ^= state << 13U;
    state ^= state >> 17U;
    state ^= state << 5U;
    byte = static_cast<char>(state & 0xFFU);
  }
  return bytes;
}

ImagePart part(const std::string& name, const std::string& version, std::size_t size) {
  return {version, bytesFor(name + version, size)};
}

std::string checkedVersion(const std::string& text) {
  return kelvane::simulator::isVersion(text)
             ? ""
             : "a version has 1 to 23 visible ASCII characters: " + text;
}

std::string checkedProduct(const std::string& text) {
  return kelvane::simulator::isProduct(text)
             ? ""
             : "a product is an identifier (0x4301) or a family (0x43): " + text;
}

void addCommonOptions(CLI::App& command, Options& options) {
  command.add_option("--product", options.products, "Product or family it fits; may be repeated")
      ->required()
      ->check(checkedProduct);
  command.add_option("--firmware", options.firmware, "Version of the controller firmware")
      ->required()
      ->check(checkedVersion);
  command.add_option("--size", options.size, "Size of the firmware part in bytes")
      ->capture_default_str()
      ->check(CLI::Range(std::size_t{0}, kMostSize));
  command.add_option("file", options.file, "The image to write")->required();
}

int make(Image::Kind kind, const Options& options) {
  Image image;
  image.kind = kind;
  image.products = options.products;
  image.firmware = part("firmware", options.firmware, options.size);
  const std::size_t small = options.size / kShareOfSmallParts;
  if (!options.cpld.empty()) image.cpld = part("cpld", options.cpld, small);
  if (!options.usb.empty()) image.usb = part("usb", options.usb, small);
  if (kelvane::platform::replaceFile(options.file, kelvane::simulator::encodeImage(image))) {
    return 0;
  }
  std::cerr << "make-image: " << options.file << ": cannot be written\n";
  return 1;
}

void showPart(const char* name, const std::optional<ImagePart>& part) {
  if (part) std::cout << name << " " << part->version << ", " << part->bytes.size() << " bytes\n";
}

int show(const std::string& path) {
  const ImageFile file = kelvane::simulator::readImage(path);
  if (file.status != 0) {
    std::cerr << "make-image: " << path << ": " << kelvane::simulator::describeStatus(file.status)
              << '\n';
    return 1;
  }
  const Image& image = file.image;
  std::cout << "kind " << (image.kind == Image::Kind::qvxf ? "qvxf" : "standard") << "\nproduct";
  for (const std::string& product : image.products) std::cout << " " << product;
  std::cout << '\n';
  showPart("firmware", image.firmware);
  showPart("cpld", image.cpld);
  showPart("usb", image.usb);
  return 0;
}

int run(int argc, char** argv) {
  CLI::App app("Makes and shows firmware images for the simulated controllers.", "make-image");
  app.set_version_flag("--version", "make-image " KELVANE_VERSION, "Show the version");
  app.require_subcommand(1);
  Options options;
  CLI::App* standard = app.add_subcommand("standard", "Make a standard image");
  addCommonOptions(*standard, options);
  standard->add_option("--cpld", options.cpld, "Version of the CPLD")->check(checkedVersion);
  standard->add_option("--usb", options.usb, "Version of the USB bridge")->check(checkedVersion);
  CLI::App* qvxf = app.add_subcommand("qvxf", "Make a QVXF image");
  addCommonOptions(*qvxf, options);
  CLI::App* shown = app.add_subcommand("show", "Show what an image holds");
  shown->add_option("file", options.file, "The image to read")->required();
  CLI11_PARSE(app, argc, argv);
  if (shown->parsed()) return show(options.file);
  return make(qvxf->parsed() ? Image::Kind::qvxf : Image::Kind::standard, options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& caught) {
    std::cerr << "make-image: " << caught.what() << '\n';
    return 1;
  }
}
