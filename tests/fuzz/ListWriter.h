// Property lists written apart from what reads them, and from the library that it uses.
#pragma once

#include <string>

#include "platform/Value.h"
#include "tests/fuzz/Bytes.h"

namespace kelvane::fuzz {

// Whether XML has a form for it: not for every control character in a text.
bool hasXmlForm(const platform::Value& value);

// The value as a list, in one of the many ways in which it may be spelled, which `style` picks. It
// holds what property lists have: no null, no number beyond 64 bits with sign but a real one, no
// text with a NUL character, dates of years of four digits.
std::string xmlList(const platform::Value& value, Bytes& style);
std::string binaryList(const platform::Value& value, Bytes& style);

}  // namespace kelvane::fuzz
