// UTF-8: whether bytes are text, and how bytes that need not be text become it.
#pragma once

#include <string>
#include <string_view>

#include "platform/Value.h"

namespace kelvane::platform {

// Whether the bytes are well-formed UTF-8 (no surrogates, no overlong forms).
bool isUtf8(std::string_view bytes);

// The bytes as text: every byte that is not part of well-formed UTF-8 becomes U+FFFD.
std::string repairedUtf8(std::string_view bytes);

// A C string handed over by the system: a string, or nothing where it is not UTF-8 or null.
Value decodedUtf8(const char* bytes);

}  // namespace kelvane::platform
