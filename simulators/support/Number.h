// Numbers as files and command lines spell them: whole numbers within a range, and "0x" texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Value.h"

namespace kelvane::simulator {

std::string lowerCase(std::string_view text);

// "0x" and at least `digits` lower-case hexadecimal digits.
std::string hexText(std::uint64_t number, unsigned digits);
// The number of a text like "0x8050", up to `most`; nothing where it is another text.
std::optional<std::uint64_t> hexNumber(std::string_view text, std::uint64_t most);
// A number value without sign, fraction or exponent, up to `most`; otherwise nothing.
std::optional<std::uint64_t> wholeNumber(const platform::Value& value, std::uint64_t most);
// Either of the two.
std::optional<std::uint64_t> codeNumber(const platform::Value& value, std::uint64_t most);
// A number value from 0 to a thousand million, fractions allowed; otherwise nothing.
std::optional<double> seconds(const platform::Value& value);

// Pairs of hexadecimal digits as bytes; nothing where the text is not made of them.
std::optional<std::string> hexBytes(std::string_view text);
std::string hexOfBytes(std::string_view bytes);

}  // namespace kelvane::simulator
