// Property lists, XML and binary.
#pragma once

#include <string>
#include <string_view>

#include "platform/Json.h"
#include "platform/ParsedBytes.h"
#include "platform/Value.h"

namespace kelvane::platform {

// Containers inside one another, deeper than this, are not read. What is read from a list is stored
// in JSON one container deeper, so that all that can be read can be written, too.
inline constexpr int kPropertyListDepthLimit = kJsonDepthLimit - 1;

// The dictionary at the root of the property list; nothing where it has another root or is damaged:
// one value that is none damages the whole. Raises std::bad_alloc alone.
Value parsePropertyList(std::string_view bytes);

// The same of a file; nothing, too, where it cannot be read. What `last` remembers, and parses by
// parsePropertyList(), is not parsed again.
Value readPropertyList(const std::string& path, ParsedBytes& last);
Value readPropertyList(const std::string& path);

}  // namespace kelvane::platform
