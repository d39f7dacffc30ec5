// Property lists in XML.
#pragma once

#include <string_view>

#include "platform/Value.h"

namespace kelvane::platform {

// The value at the root; nothing where the text is no property list, or a part of it is damaged:
// not well-formed, of no known kind, a number, date or data that is none, a key without its value.
// Linear in the bytes, in time and memory. Raises std::bad_alloc alone.
Value parseXmlPropertyList(std::string_view bytes);

}  // namespace kelvane::platform
