// Values for property lists, made of bytes: every kind, as deep and as often the same as the bytes
// have it.
#pragma once

#include "platform/Value.h"
#include "tests/fuzz/Bytes.h"

namespace kelvane::fuzz {

// A dictionary, no larger than what has to be read however it is written; it may be deeper.
platform::Value madeList(Bytes& bytes);

// A catalogue: rules for the products of kProductSettings, and some for none.
platform::Value madeCatalogue(Bytes& bytes);

// How many containers stand inside one another.
int depthOfList(const platform::Value& value);

}  // namespace kelvane::fuzz
