#include "simulators/engine/Items.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "platform/Exception.h"
#include "platform/File.h"
#include "simulators/engine/Service.h"
#include "simulators/support/Files.h"

namespace kelvane::simulator {

using platform::Exception;

namespace fs = std::filesystem;

namespace {

bool isAmong(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Bytes that are no property list.
std::string garbage(std::size_t size) {
  std::string bytes(size, '\0');
  std::uint32_t state = 1;
  for (char& byte : bytes) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<char>(state >> 24U);
  }
  return bytes;
}

std::string damaged(std::string bytes, const ServiceFaults& faults) {
  using Catalogue = ServiceFaults::Catalogue;
  if (faults.catalogue == Catalogue::garbage) return garbage(bytes.size());
  if (faults.catalogue == Catalogue::cut && faults.catalogueBytes < bytes.size()) {
    bytes.resize(static_cast<std::size_t>(faults.catalogueBytes));
  }
  return bytes;
}

Item copied(const std::string& from) {
  return {fs::path(from).filename().string(),
          [from](const std::string& to) { copyEntry(from, to); }};
}

Item sparse(const std::string& name, std::uint64_t size) {
  return {name, [size](const std::string& to) {
            writeFile(to, "");
            std::error_code failed;
            fs::resize_file(to, size, failed);
            if (failed) throw Exception("make " + to + ": " + failed.message());
          }};
}

Item written(const std::string& name, const std::string& bytes) {
  return {name, [bytes](const std::string& to) { writeFile(to, bytes); }};
}

}  // namespace

std::vector<Item> catalogueItems(const std::string& service, const std::string& name,
                                 const ServiceFaults& faults) {
  if (faults.catalogue == ServiceFaults::Catalogue::none) return {};
  return {written(name, damaged(platform::readFile(service + "/" + kCatalogueFile), faults))};
}

std::vector<Item> packageItems(const std::string& service, const std::string& productId,
                               const ServiceFaults& faults) {
  if (isAmong(faults.missingProducts, productId)) return {};
  std::vector<Item> items;
  for (const std::string& path : packagesOf(service, productId)) items.push_back(copied(path));
  for (const auto& [name, size] : faults.sparsePackages) items.push_back(sparse(name, size));
  std::erase_if(items, [&](const Item& item) { return isAmong(faults.missingFiles, item.name); });
  return items;
}

}  // namespace kelvane::simulator
