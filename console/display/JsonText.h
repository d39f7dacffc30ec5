// Values as JSON for machines, which may be shown on a terminal all the same: what would steer it
// is written as an escape, of which a reader of JSON makes the same character.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::console {

// Over several lines, and on one; "null" of what JSON has no form for.
std::string jsonText(const platform::Value& value);
std::string jsonLine(const platform::Value& value);

}  // namespace kelvane::console
