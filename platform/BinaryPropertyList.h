// Property lists in their binary form.
#pragma once

#include <string_view>

#include "platform/Value.h"

namespace kelvane::platform {

// Whether the bytes say that they are one.
bool isBinaryPropertyList(std::string_view bytes);

// The value at the root; nothing where the list is damaged, or asks for more than its reader should
// give (BinaryPropertyListLimits.h). Where memory fails the library that reads it may end the
// process.
Value parseBinaryPropertyList(std::string_view bytes);

}  // namespace kelvane::platform
