// Images of controllers, as files.
#pragma once

#include <string>

namespace kelvane::console {

// What is wrong with the image at this path, behind the path: " does not exist"; empty where
// nothing is.
std::string imageFault(const std::string& path);

// The same of the path alone, without a look at what stands there.
std::string imagePathFault(const std::string& path);

}  // namespace kelvane::console
