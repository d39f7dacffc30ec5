// Images of controllers, as files.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// What is wrong with the image at this path, behind the path: " does not exist"; empty where
// nothing is.
std::string imageFault(const std::string& path);

// The same of the path alone, without a look at what stands there.
std::string imagePathFault(const std::string& path);

// As far as it can be told of a copy from another system, or of this one; nothing of what is no
// path at all.
std::string imageFaultOf(const platform::Value& path, bool isCopy);

}  // namespace kelvane::console
