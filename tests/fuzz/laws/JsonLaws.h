// What was read from JSON, and what is written of it, beside what stands there by a reader of the
// tests' own.
#pragma once

#include <string>

#include "platform/Value.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {

void requireRead(const test::PlainJson& plain, const platform::Value& value);
// Over lines, and in one.
void requirePrinted(const test::PlainJson& plain, const std::string& text);
void requireLineOfJson(const test::PlainJson& plain, const std::string& line);

}  // namespace kelvane::fuzz
