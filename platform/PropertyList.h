// Property lists, XML and binary.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::platform {

// The dictionary at the root of the property list in the file; nothing where the file cannot be
// read, is damaged, or has another root. Never raises.
Value readPropertyList(const std::string& path);

}  // namespace kelvane::platform
