// Of numbers in property lists.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>

namespace kelvane::fuzz {

// Whether the digits are a whole number that an integer of a list has room for; all else is a real
// one. A zero with a sign is none.
inline bool isListInteger(const std::string& digits) {
  const char* const end = digits.data() + digits.size();
  const auto isWhole = [&](auto number) {
    const auto [read, error] = std::from_chars(digits.data(), end, number);
    return read == end && error == std::errc();
  };
  return digits != "-0" && (isWhole(std::int64_t{0}) || isWhole(std::uint64_t{0}));
}

}  // namespace kelvane::fuzz
