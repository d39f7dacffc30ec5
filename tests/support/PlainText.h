// What "%@" shows, told apart from the platform: what the platform's texts are held against.
#pragma once

#include <string>

#include "platform/Value.h"

namespace kelvane::test {

// Dates only as far as the system's reckoning goes: some have 32 bits for it.
std::string plainlyShown(const platform::Value& value);

}  // namespace kelvane::test
