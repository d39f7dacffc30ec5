// A value that remembers nothing.
#pragma once

#include "platform/Value.h"

namespace kelvane::test {

// The same value, made anew container by container, so that none remembers a text.
platform::Value fresh(const platform::Value& value);

}  // namespace kelvane::test
