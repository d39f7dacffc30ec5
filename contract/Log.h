// The worker's log: what its readers know of it.
#pragma once

#include <cstdint>

namespace kelvane::logging {

// The levels' names, in ascending order.
inline constexpr const char* kLevels[] = {"debug", "info", "warning", "error", "critical"};

// A log of this size or more is rotated, into the lowest generation that is free.
inline constexpr std::uint64_t kRotatedFrom = 104'857'600;  // bytes
inline constexpr unsigned long kGenerations = 100;

}  // namespace kelvane::logging
