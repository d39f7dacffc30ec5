// Values as property lists.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::simulator {

enum class PropertyListForm { xml, binary };

// The value as the bytes of a property list. Raises where it holds something that property lists
// have no form for: nothing, null, a number beyond 64 bits with sign, a text with a NUL character.
std::string printPropertyList(const platform::Value& value, PropertyListForm form);

}  // namespace kelvane::simulator
