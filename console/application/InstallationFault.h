// What became of an application that was to be replaced.
#pragma once

#include <string>

namespace kelvane::console {

// Why what stands at `installed` is not the package: "no application stands at ...", "what stands
// at ... is not the package: Contents/a differs"; empty where it is.
std::string installationFault(const std::string& package, const std::string& installed);

}  // namespace kelvane::console
