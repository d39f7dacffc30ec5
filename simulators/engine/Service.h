// The update service: a folder that holds a catalogue, packages, and faults to play.
#pragma once

#include <string>
#include <vector>

namespace kelvane::simulator {

// What a service folder holds.
inline constexpr char kCatalogueFile[] = "catalogue.plist";
inline constexpr char kPackagesFolder[] = "packages";
inline constexpr char kFaultsFile[] = "service.json";

// The folder that the URL names: a plain path, or a file URL of this host. Raises where it names
// something else or no folder is there.
std::string serviceFolder(const std::string& url);

// A product's packages in the service: their paths, in the order of their names; none where the
// service has no folder for the product.
std::vector<std::string> packagesOf(const std::string& service, const std::string& productId);

}  // namespace kelvane::simulator
