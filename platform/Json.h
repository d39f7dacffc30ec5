// JSON text to values and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Value.h"

namespace kelvane::platform {

// Arrays and objects inside one another, deeper than this, are neither read nor written.
inline constexpr int kJsonDepthLimit = 512;

// The value of a strict JSON text (UTF-8, with or without a byte order mark) whose top level is an
// array or an object; nothing where the text is not that. Never raises for what the text holds.
// Numbers keep their digits, keys their order; of a key that stands twice the last value counts.
Value parseJson(std::string_view text);

// The value as JSON text with line breaks and two blanks of indentation per level; no value where
// it holds something that JSON has no form for, so that what is written can always be read again.
std::optional<std::string> printJson(const Value& value);

// The same on one line, without blanks or line breaks between the pieces.
std::optional<std::string> printJsonLine(const Value& value);

}  // namespace kelvane::platform
